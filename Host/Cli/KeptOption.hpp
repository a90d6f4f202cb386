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
    char const* Values;    ///< all that it can be, with commas between; null: much
    char const* Otherwise; ///< its value when it is nowhere given, as far as that is fixed
    bool OfNetwork;        ///< the help shows those together
    char const* Help;
    QString (*WhyNot)(QString const&); ///< see `OptionText`; null: everything will do
    void (*Apply)(Choice&, QString const&);

    bool IsFlag() const { return Takes == nullptr; }
    bool IsFile() const { return QLatin1String(Takes) == QLatin1String("FILE"); }
    /// All that it can be; empty when that is much.
    QStringList Choices() const;
    /// What is done when it is nowhere given; empty: nothing, or what the environment says.
    QString Default() const;
    /// Why a text cannot be its value; empty when it can.
    QString Fault(QString const& p_Text) const;

    /// Every one, in an order that is good to read.
    static std::vector<KeptOption> All();
};

} // namespace Varnholt::Host
