#pragma once

#include <QString>
#include <QStringList>

namespace Varnholt::TestSupport {

/// What a program tells of itself, read from its own words: what is made from its command line
/// can be compared with them.
class ProgramHelp {
public:
    static QStringList Programs()
    {
        return {QStringLiteral("varnholt-host"), QStringLiteral("varnholt-publish"),
                QStringLiteral("varnholt-window")};
    }

    /// Whether its options stand behind commands.
    static bool HasCommands(QString const& p_Program)
    {
        return p_Program != QLatin1String("varnholt-window");
    }

    /// \param p_Command empty: of the program
    explicit ProgramHelp(QString const& p_Program, QString const& p_Command = {});

    QString Text;
    QStringList Commands;
    QStringList Arguments;
    QStringList Options; ///< every name of each
    QStringList Variables;

private:
    void Take(QString const& p_Section, QString const& p_Line);
};

} // namespace Varnholt::TestSupport
