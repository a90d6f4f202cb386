#include "Pages/Options.hpp"

#include <QRegularExpression>

namespace Varnholt::Pages {

QString Text(std::string const& p_Text)
{
    return QString::fromStdString(p_Text);
}

std::vector<CLI::App const*> Commands(CLI::App const& p_Program)
{
    return p_Program.get_subcommands([](CLI::App const*) { return true; });
}

std::vector<CLI::Option const*> Options(CLI::App const& p_App)
{
    // Where options of the program stand behind a command too, its help is one of them.
    bool const hasOwnHelp = p_App.get_parent() == nullptr || !p_App.get_fallthrough();
    return p_App.get_options([&](CLI::Option const* p_Option) {
        return !p_Option->get_positional() && !p_Option->get_group().empty() &&
               (hasOwnHelp || p_Option != p_App.get_help_ptr());
    });
}

std::vector<CLI::Option const*> Arguments(CLI::App const& p_Command)
{
    return p_Command.get_options(
        [](CLI::Option const* p_Option) { return p_Option->get_positional(); });
}

QStringList Names(CLI::Option const& p_Option)
{
    QStringList names;
    for (std::string const& name : p_Option.get_snames())
        names += QLatin1Char('-') + Text(name);
    for (std::string const& name : p_Option.get_lnames())
        names += QStringLiteral("--") + Text(name);
    return names;
}

QString ValueName(CLI::Option const& p_Option)
{
    if (p_Option.get_items_expected_max() == 0)
        return {};
    return Text(p_Option.get_type_name()).section(QLatin1Char(':'), 0, 0);
}

QStringList Choices(CLI::App const& p_Program, CLI::Option const& p_Option)
{
    static QRegularExpression const set(QStringLiteral("\\{(.*)\\}"));
    static QRegularExpression const sentence(QStringLiteral("^One of: ([^;]*)"));

    QStringList choices;
    if (ValueName(p_Option) == QLatin1String("COMMAND"))
        for (CLI::App const* const command : Commands(p_Program))
            choices += Text(command->get_name());
    if (auto const match = set.match(Text(p_Option.get_type_name())); match.hasMatch())
        choices = match.captured(1).split(QLatin1Char(','));
    if (auto const match = sentence.match(Text(p_Option.get_description())); match.hasMatch())
        choices = match.captured(1).split(QStringLiteral(", "));
    return choices;
}

} // namespace Varnholt::Pages
