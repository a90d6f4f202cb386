#include "Host/Cli/CommandParser.hpp"
#include "Host/Cli/OptionText.hpp"

#include <QVariant>

#include <algorithm>

namespace Varnholt::Host {

namespace {

/// Whether the command line or the environment gives an option; the former counts.
QString OriginOf(std::string const& p_Option, int p_Count, char const* const* p_Arguments)
{
    bool const isArgument =
        std::any_of(p_Arguments, p_Arguments + p_Count, [&](std::string const& p_Argument) {
            return p_Argument.substr(0, p_Argument.find('=')) == p_Option;
        });
    return isArgument ? QStringLiteral("command line") : QStringLiteral("environment");
}

} // namespace

int CommandParser::TakeGameArguments(int p_Count, char const* const* p_Arguments)
{
    auto const* const end = p_Arguments + p_Count;
    auto const is = [](std::string const& p_Word) {
        return [p_Word](char const* p_Argument) { return p_Word == p_Argument; };
    };
    auto const* const mark = std::find_if(p_Arguments, end, is("--"));
    if (std::none_of(p_Arguments, mark, is("play")))
        return p_Count;
    for (auto const* word = mark; word != end; ++word)
        if (word != mark)
            GameArguments += QString::fromUtf8(*word);
    return static_cast<int>(mark - p_Arguments);
}

Choice CommandParser::Parse(int p_Count, char const* const* p_Arguments)
{
    Program.parse(TakeGameArguments(p_Count, p_Arguments), p_Arguments);
    if (Program.get_subcommands().empty())
        throw CLI::RequiredError("A command");
    Explain();
    Choice choice;
    choice.Chosen = Choice::Command::Run;
    for (Command const& command : Commands)
        if (command.App->parsed())
            command.Choose(choice);
    for (Value const& value : Kept)
        if (value.Option->count() > 0)
            choice.Given[value.Name] = {
                value.Text.empty() ? QVariant(value.Flag).toString() // "true" or "false"
                                   : QString::fromStdString(value.Text),
                OriginOf("--" + value.Name.toStdString(), p_Count, p_Arguments)};
    choice.Options.SettingsFile = OptionText::Absolute(QString::fromStdString(Settings));
    choice.Request.Confirmed = Yes;
    choice.Json = Json;
    choice.Quiet = Quiet;
    choice.Verbose = Verbose;
    return choice;
}

} // namespace Varnholt::Host
