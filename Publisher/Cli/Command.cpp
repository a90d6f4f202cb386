#include "Publisher/Cli/Command.hpp"

#include "Publisher/Cli/ConsoleText.hpp"

#include <CLI/CLI.hpp>

namespace Varnholt::Publisher {

Command::Command(CLI::App& p_Program, char const* p_Name, char const* p_Description,
                 char const* p_Footer)
    : Words(*p_Program.add_subcommand(p_Name, p_Description))
{
    Words.footer(p_Footer);
}

bool Command::IsChosen() const
{
    return Words.parsed();
}

CLI::Option* Command::AddOutput(char const* p_Description)
{
    return Words.add_option("--output", Folder, p_Description);
}

void Command::AddAppId()
{
    Words.add_option("--app-id", Application, "Application identifier")->capture_default_str();
}

void Command::AddJson(char const* p_Description)
{
    Words.add_flag("--json", Json, p_Description);
}

void Command::Tell(QString const& p_Line, QJsonObject const& p_Object) const
{
    if (Json)
        ConsoleText::PrintJson(p_Object);
    else
        ConsoleText::PrintLine(p_Line);
}

} // namespace Varnholt::Publisher
