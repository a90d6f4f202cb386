#include "Pages/CompletionTable.hpp"

#include "Pages/Options.hpp"

namespace Varnholt::Pages {

namespace {

QString Row(QString const& p_Command, QString const& p_Name, QString const& p_Value,
            std::string const& p_Help)
{
    return QStringList{p_Command, p_Name, p_Value, Text(p_Help).simplified()}.join(
               QLatin1Char('\t')) +
           QLatin1Char('\n');
}

QString ValueCell(CLI::App const& p_Program, CLI::Option const& p_Option)
{
    QString const name = ValueName(p_Option);
    QStringList const choices = Choices(p_Program, p_Option);
    if (!choices.isEmpty())
        return QLatin1Char('=') + choices.join(QLatin1Char(','));
    return name.isEmpty() ? QStringLiteral("-") : name;
}

QString OptionRows(CLI::App const& p_Program, CLI::App const& p_App, QString const& p_Command)
{
    QString rows;
    for (CLI::Option const* const option : Options(p_App))
        rows += Row(p_Command, Names(*option).join(QLatin1Char(',')), ValueCell(p_Program, *option),
                    option->get_description());
    return rows;
}

/// An argument VALUE behind the name of an option is what stands behind that option.
QString ArgumentRows(CLI::App const& p_Program, CLI::App const& p_Command)
{
    QString const command = Text(p_Command.get_name());
    QString rows;
    QStringList before;
    int place = 0;
    for (CLI::Option const* const argument : Arguments(p_Command)) {
        QString const number = QString::number(++place);
        rows += Row(command, number, ValueCell(p_Program, *argument), argument->get_description());
        if (ValueName(*argument) == QLatin1String("VALUE"))
            for (QString const& name : before)
                if (CLI::Option const* const option =
                        p_Program.get_option_no_throw("--" + name.toStdString())) {
                    QString const value = ValueCell(p_Program, *option);
                    rows += Row(command, number + QLatin1Char(':') + name,
                                value == QLatin1String("-") ? QStringLiteral("=true,false") : value,
                                option->get_description());
                }
        before = Choices(p_Program, *argument);
    }
    return rows;
}

} // namespace

QString CompletionTable(CLI::App const& p_Program)
{
    auto const commands = Commands(p_Program);
    bool const everywhere = p_Program.get_fallthrough();
    QString rows = OptionRows(p_Program, p_Program, QLatin1String(everywhere ? "*" : "-"));
    for (CLI::App const* const command : commands)
        rows += Row(QStringLiteral("-"), QStringLiteral("0"),
                    QLatin1Char('=') + Text(command->get_name()), command->get_description());
    for (CLI::App const* const command : commands)
        rows += ArgumentRows(p_Program, *command) +
                OptionRows(p_Program, *command, Text(command->get_name()));
    return rows;
}

} // namespace Varnholt::Pages
