#include "Tests/Pages/ProgramHelp.hpp"

#include "Tests/Pages/ToolRun.hpp"

#include <QRegularExpression>

namespace Varnholt::TestSupport {

ProgramHelp::ProgramHelp(QString const& p_Program, QString const& p_Command)
{
    QStringList arguments{QStringLiteral("--help")};
    if (!p_Command.isEmpty())
        arguments.prepend(p_Command);
    Text = ToolRun(QStringLiteral(VARNHOLT_BUILT_PROGRAMS "/") + p_Program, arguments).Out;
    // "Section:", and below it "  name ..." or, further to the right, the rest of a help text.
    static QRegularExpression const row(QStringLiteral("^  (\\S.*)$"));
    QString section;
    for (QString const& line : Text.split(QLatin1Char('\n'))) {
        if (line.endsWith(QLatin1Char(':')))
            section = line;
        else if (auto const match = row.match(line); match.hasMatch())
            Take(section, match.captured(1));
    }
}

void ProgramHelp::Take(QString const& p_Section, QString const& p_Line)
{
    static QRegularExpression const variable(QStringLiteral("\\(Env:(\\w+)\\)"));
    QString const name = p_Line.section(QLatin1Char(' '), 0, 0);
    if (p_Section == QLatin1String("Subcommands:"))
        Commands += name;
    if (p_Section == QLatin1String("Positionals:"))
        Arguments += name;
    if (!p_Section.endsWith(QLatin1String("ptions:"))) // and "Network options:"
        return;
    Options += name.split(QLatin1Char(','));
    if (auto const match = variable.match(p_Line); match.hasMatch())
        Variables += match.captured(1);
}

} // namespace Varnholt::TestSupport
