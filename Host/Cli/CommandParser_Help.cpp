#include "Host/Cli/CommandParser.hpp"
#include "Host/Core/Failures/ExitStatus.hpp"
#include "Programs/Suggestion.hpp"

#include <sstream>

namespace Varnholt::Host {

std::string CommandParser::ExitStatuses()
{
    constexpr std::size_t c_Column = 5;

    std::string lines = "Exit status:\n";
    for (ExitStatus const& row : c_ExitStatuses) {
        std::string const status = std::to_string(row.Status);
        lines += "  " + status + std::string(c_Column - status.size(), ' ') + row.Meaning + "\n";
    }
    return lines;
}

/// The names alone: with all their explanations the help of each command would be too long.
std::string CommandParser::OptionsOfAll() const
{
    constexpr std::size_t c_Width = 80;

    std::string text = "Options of every command, which \"varnholt-host --help\" explains:\n";
    std::string line = " ";
    for (CLI::Option const* const option : Program.get_options()) {
        std::string const name = ' ' + option->get_name();
        if (option->get_group().empty()) // the help shows no such
            continue;
        if (line.size() + name.size() > c_Width) {
            text += line + '\n';
            line = " ";
        }
        line += name;
    }
    return text + line + "\n\n";
}

QString CommandParser::Answer(CLI::Success const& p_Help) const
{
    std::ostringstream answer;
    if (Explained == nullptr)
        Program.exit(p_Help, answer);
    else
        answer << Program.get_formatter()->make_help(
            Explained, Topic.empty() ? Program.get_name() : Program.get_name() + ' ' + Topic,
            CLI::AppFormatMode::Normal);
    return QString::fromStdString(answer.str());
}

QString CommandParser::Remedy() const
{
    QStringList words{QString::fromStdString(Topic)};
    for (std::string const& word : Program.remaining(true))
        words += QString::fromStdString(word).section(QLatin1Char('='), 0, 0);
    auto const chosen = Program.get_subcommands();
    QStringList known;
    for (Command const& command : Commands)
        if (chosen.empty() || !Topic.empty())
            known += QString::fromStdString(command.App->get_name());
    std::vector<CLI::App const*> apps(chosen.begin(), chosen.end());
    apps.push_back(&Program);
    for (CLI::App const* const app : apps)
        for (CLI::Option const* const option : app->get_options())
            for (std::string const& name : option->get_lnames())
                known += QString::fromStdString("--" + name);
    for (QString const& word : words)
        if (QString suggestion = Programs::Suggestion(word, known); !suggestion.isEmpty())
            return suggestion;
    return QStringLiteral("\"varnholt-host --help\" lists commands and options");
}

/// Throws when help is asked for by a command.
void CommandParser::Explain()
{
    if (!Program.got_subcommand("help"))
        return;
    Explained = Topic.empty() ? &Program : nullptr;
    for (Command const& command : Commands)
        if (command.App->get_name() == Topic)
            Explained = command.App;
    if (Explained == nullptr)
        throw CLI::ExtrasError({Topic});
    throw CLI::CallForHelp();
}

} // namespace Varnholt::Host
