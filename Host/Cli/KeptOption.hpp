#pragma once

#include "Host/Cli/Choice.hpp"

#include <QString>
#include <QStringList>

#include <vector>

namespace Varnholt::Host {

/// An option of the program that the settings file can keep too, for when neither the command line
/// nor the environment gives it.
struct KeptOption {
    char const* Name;      ///< "limit-rate": with "--" before it on the command line
    char const* Takes;     ///< what stands for its value in the help; null: it is a flag
    char const* Values;    ///< its possible values, separated by commas; null: not a fixed set
    char const* Otherwise; ///< its default, as far as that is fixed
    bool OfNetwork;        ///< the help shows those together
    char const* Help;
    QString (*WhyNot)(QString const&); ///< see `OptionText`; null: any text is valid
    void (*Apply)(Choice&, QString const&);

    bool IsFlag() const { return Takes == nullptr; }
    bool IsFile() const { return QLatin1String(Takes) == QLatin1String("FILE"); }
    /// Its possible values; empty when they are no fixed set.
    QStringList Choices() const;
    /// The default; empty: none, or what the environment says.
    QString Default() const;
    /// Why a text is not a valid value; empty when it is one.
    QString Fault(QString const& p_Text) const;

    /// Every one, in an order that is good to read.
    static std::vector<KeptOption> All();
};

} // namespace Varnholt::Host
