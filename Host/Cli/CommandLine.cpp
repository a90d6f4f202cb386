#include "Host/Cli/CommandLine.hpp"

#include "Host/Cli/CommandParser.hpp"
#include "Host/Cli/ConfigCommand.hpp"
#include "Host/Cli/Console.hpp"
#include "Host/Cli/JsonPresenter.hpp"
#include "Host/Cli/MessageLog.hpp"
#include "Host/Cli/Program.hpp"
#include "Host/Cli/TextPresenter.hpp"
#include "Host/Core/ControlSocket.hpp"

#include <QDir>

#include <memory>

namespace Varnholt::Host {

namespace {

constexpr int c_UsageStatus = 2;

Color ColorsNamed(QString const& p_Name)
{
    if (p_Name == QLatin1String("always"))
        return Color::Always;
    return p_Name == QLatin1String("never") ? Color::Never : Color::Auto;
}

/// Fills in from the settings what neither the command line nor the environment gives.
void Complete(Choice& p_Choice, HostSettings const& p_Settings)
{
    auto const absolute = [](QString const& p_Path) {
        return p_Path.isEmpty() ? p_Path
                                : QDir::cleanPath(QDir::current().absoluteFilePath(p_Path));
    };
    auto const fill = [&](QString& p_Option, char const* p_Key) {
        if (p_Option.isEmpty())
            p_Option = ConfigCommand::Value(p_Settings, QLatin1String(p_Key));
    };
    fill(p_Choice.Options.ModuleFile, "module");
    // The variable that the module reads by itself stands above the settings too.
    if (qEnvironmentVariableIsEmpty("VARNHOLT_CONTENT_BASE_URL"))
        fill(p_Choice.Options.ContentUrl, "content-url");
    fill(p_Choice.LogFile, "log-file");
    fill(p_Choice.ColorName, "color");
    p_Choice.Options.ModuleFile = absolute(p_Choice.Options.ModuleFile);
    p_Choice.LogFile = absolute(p_Choice.LogFile);
    if (!p_Choice.IsChannelGiven)
        p_Choice.Options.UseDevChannel =
            ConfigCommand::Flag(p_Settings, QStringLiteral("dev-channel"));
}

int RunConfig(Choice const& p_Choice, HostSettings& p_Settings, Presenter& p_Presenter)
{
    std::optional<Failure> failure;
    if (p_Choice.ConfigKey.isEmpty())
        for (QString const& key : ConfigCommand::SetKeys(p_Settings))
            p_Presenter.ShowOption(key, ConfigCommand::Value(p_Settings, key), true);
    else if (p_Choice.ConfigValue.isNull() && ConfigCommand::Keys().contains(p_Choice.ConfigKey))
        p_Presenter.ShowOption(p_Choice.ConfigKey,
                               ConfigCommand::Value(p_Settings, p_Choice.ConfigKey), false);
    else
        failure = ConfigCommand::Set(p_Settings, p_Choice.ConfigKey, p_Choice.ConfigValue);
    if (!failure)
        return EXIT_SUCCESS;
    p_Presenter.ShowFailure(*failure);
    return failure->ExitStatus();
}

int SendWord(QString const& p_SettingsFile, ControlSocket::Word p_Word, Presenter& p_Presenter)
{
    auto const failure = ControlSocket::Send(p_SettingsFile, p_Word);
    if (!failure)
        return EXIT_SUCCESS;
    p_Presenter.ShowFailure(*failure);
    return failure->ExitStatus();
}

int Run(Choice p_Choice)
{
    if (p_Choice.Options.SettingsFile.isEmpty())
        p_Choice.Options.SettingsFile = HostOptions::DefaultSettingsFile();
    HostSettings settings(p_Choice.Options.SettingsFile);
    Complete(p_Choice, settings);

    Console console(ColorsNamed(p_Choice.ColorName), p_Choice.Quiet);
    MessageLog const log(console, p_Choice.Verbose, p_Choice.LogFile);
    std::unique_ptr<Presenter> presenter = std::make_unique<TextPresenter>(console);
    if (p_Choice.Json)
        presenter = std::make_unique<JsonPresenter>(console);

    switch (p_Choice.Chosen) {
    case Choice::Command::Config:
        return RunConfig(p_Choice, settings, *presenter);
    case Choice::Command::Pause:
        return SendWord(settings.File(), ControlSocket::Word::Pause, *presenter);
    case Choice::Command::Resume:
        return SendWord(settings.File(), ControlSocket::Word::Resume, *presenter);
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
