#include "Host/Cli/CommandLine.hpp"

#include "Host/Cli/CommandParser.hpp"
#include "Host/Cli/ConfigCommand.hpp"
#include "Host/Cli/ConfigRun.hpp"
#include "Host/Cli/Console.hpp"
#include "Host/Cli/JsonPresenter.hpp"
#include "Host/Cli/MessageLog.hpp"
#include "Host/Cli/Program.hpp"
#include "Host/Cli/TextPresenter.hpp"
#include "Host/Core/Session/ControlSocket.hpp"

#include <memory>

namespace Varnholt::Host {

namespace {

constexpr int c_UsageStatus = 2;

int Fail(Failure const& p_Failure, Presenter& p_Presenter)
{
    p_Presenter.ShowFailure(p_Failure);
    return p_Failure.ExitStatus();
}

int Send(QString const& p_SettingsFile, ControlMessage::Type p_Message, Presenter& p_Presenter)
{
    auto const failure = ControlSocket::Send(p_SettingsFile, {p_Message, 0});
    return failure ? Fail(*failure, p_Presenter) : EXIT_SUCCESS;
}

int Run(Choice p_Choice)
{
    if (p_Choice.Options.SettingsFile.isEmpty())
        p_Choice.Options.SettingsFile = HostOptions::DefaultSettingsFile();
    HostSettings settings(p_Choice.Options.SettingsFile);
    auto const fault = ConfigCommand::Complete(p_Choice, settings);

    Console console(p_Choice.Colors, p_Choice.Quiet);
    MessageLog const log(console, p_Choice.Verbose, p_Choice.LogFile, p_Choice.Options.Names);
    std::unique_ptr<Presenter> presenter = std::make_unique<TextPresenter>(console);
    if (p_Choice.Json)
        presenter = std::make_unique<JsonPresenter>(console);

    if (auto const& failure = settings.ReadFailure())
        return Fail(*failure, *presenter);
    if (p_Choice.Chosen == Choice::Command::Config)
        return ConfigRun(p_Choice, settings, *presenter).Run();
    if (fault)
        return Fail(*fault, *presenter);
    switch (p_Choice.Chosen) {
    case Choice::Command::Pause:
        return Send(settings.File(), ControlMessage::Type::Pause, *presenter);
    case Choice::Command::Resume:
        return Send(settings.File(), ControlMessage::Type::Resume, *presenter);
    default:
        return Program(p_Choice, settings, *presenter).Run();
    }
}

} // namespace

int RunCommandLine(int p_Count, char const* const* p_Arguments)
{
    CommandParser parser;
    Choice choice;
    try {
        choice = parser.Parse(p_Count, p_Arguments);
    } catch (CLI::Success const& help) {
        return parser.Exit(help);
    } catch (CLI::ParseError const& error) {
        Console(Color::Auto, false)
            .Error(QString::fromUtf8(error.what()),
                   QStringLiteral("\"varnholt-host --help\" lists commands and options"));
        return c_UsageStatus;
    }
    return Run(std::move(choice));
}

} // namespace Varnholt::Host
