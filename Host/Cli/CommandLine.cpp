#include "Host/Cli/CommandLine.hpp"

#include "Host/Cli/CommandParser.hpp"
#include "Host/Cli/ConfigCommand.hpp"
#include "Host/Cli/ConfigRun.hpp"
#include "Host/Cli/Console.hpp"
#include "Host/Cli/OptionText.hpp"
#include "Host/Cli/Program.hpp"
#include "Host/Cli/WatchRun.hpp"
#include "Host/Core/Session/MessageLog.hpp"
#include "Host/Core/Session/RunFollower.hpp"
#include "Host/Core/Settings/InstallRecord.hpp"
#include "Programs/StandardStreams.hpp"

#include <QRegularExpression>

namespace Varnholt::Host {

namespace {

constexpr int c_UsageStatus = 2;

int Send(HostSettings const& p_Settings, ControlMessage::Type p_Message, Presenter& p_Output)
{
    return RunFollower::Send(InstallRecord::Folders(p_Settings), {p_Message, 0})
               ? EXIT_SUCCESS
               : p_Output.ShowFailure({FailureKind::NothingRunning, p_Settings.File(), {}});
}

/// As a shell would take it, without what may be a password.
QString Quoted(QString const& p_Argument)
{
    static QRegularExpression const plain(
        QRegularExpression::anchoredPattern(QStringLiteral("[\\w@%+=:,./*-]+")));

    QString word = OptionText::Hidden(p_Argument);
    if (plain.match(word).hasMatch())
        return word;
    return QLatin1Char('\'') + word.replace(QLatin1Char('\''), QLatin1String("'\\''")) +
           QLatin1Char('\'');
}

/// What somebody who helps wants to know first.
void WriteBeginning(Choice const& p_Choice, QStringList const& p_Arguments)
{
    HostOptions const& options = p_Choice.Options;
    QString command = QStringLiteral("command: varnholt-host");
    for (QString const& argument : p_Arguments) {
        bool const isKept = !argument.isEmpty() && argument == p_Choice.ConfigValue;
        command += QLatin1Char(' ') + (isKept ? QStringLiteral("***") : Quoted(argument));
    }
    MessageLog::Write(command);
    MessageLog::Write(QStringLiteral("version: " VARNHOLT_VERSION));
    MessageLog::Write(QStringLiteral("module: %1")
                          .arg(options.ModuleFile.isEmpty() ? HostOptions::DefaultModuleFile()
                                                            : options.ModuleFile));
    MessageLog::Write(
        QStringLiteral("server: %1").arg(OptionText::Hidden(options.ContentServer())));
    MessageLog::Write(QStringLiteral("settings: %1").arg(options.SettingsFile));
}

int RunCommand(Choice const& p_Choice, HostSettings& p_Settings,
               std::optional<Failure> const& p_Fault, Presenter& p_Output)
{
    if (auto const& failure = p_Settings.ReadFailure())
        return p_Output.ShowFailure(*failure);
    if (p_Choice.Chosen == Choice::Command::Config)
        return ConfigRun(p_Choice, p_Settings, p_Output);
    if (p_Fault)
        return p_Output.ShowFailure(*p_Fault);
    switch (p_Choice.Chosen) {
    case Choice::Command::Pause:
        return Send(p_Settings, ControlMessage::Type::Pause, p_Output);
    case Choice::Command::Resume:
        return Send(p_Settings, ControlMessage::Type::Resume, p_Output);
    case Choice::Command::Watch:
        return WatchRun(p_Settings, p_Output);
    default:
        return RunProgram(p_Choice, p_Output);
    }
}

/// A command whose results could not be written has failed. \return the exit status
int Conclude(int p_Status, Console& p_Console)
{
    QString const why = Programs::StandardStreams::WhyLost();
    if (why.isEmpty())
        return p_Status;
    p_Console.Error(QStringLiteral("the results cannot be written (%1)").arg(why),
                    QStringLiteral("give standard output another place"));
    return p_Status == EXIT_SUCCESS ? EXIT_FAILURE : p_Status;
}

int Run(Choice p_Choice, QStringList const& p_Arguments)
{
    if (p_Choice.Options.SettingsFile.isEmpty())
        p_Choice.Options.SettingsFile = HostOptions::DefaultSettingsFile();
    HostSettings settings(p_Choice.Options.SettingsFile);
    auto fault = ConfigCommand::TakeEnvironment(p_Choice);
    auto const faults = ConfigCommand::Complete(p_Choice, settings.All());
    if (!fault && !faults.empty())
        fault = faults.front();

    Console console(p_Choice.Colors, p_Choice.Quiet);
    MessageLog const log(p_Choice.LogFile, p_Choice.Options.Names);
    if (!log.Problem().isEmpty())
        console.Note(QStringLiteral("The log file %1 cannot be written (%2).")
                         .arg(p_Choice.LogFile, log.Problem()));
    // Not queued: a fatal message ends the program before the event loop runs again.
    QObject::connect(
        &log, &MessageLog::Logged, &log,
        [&console, isVerbose = p_Choice.Verbose](LogEntry const& p_Entry) {
            if (isVerbose || p_Entry.Type == QtCriticalMsg || p_Entry.Type == QtFatalMsg)
                console.Log(p_Entry.Line());
        },
        Qt::DirectConnection);
    auto const presenter = (p_Choice.Json ? MakeJsonPresenter : MakeTextPresenter)(console);
    WriteBeginning(p_Choice, p_Arguments);
    int const status = Conclude(RunCommand(p_Choice, settings, fault, *presenter), console);
    MessageLog::Write(QStringLiteral("exit status: %1").arg(status));
    return status;
}

} // namespace

int RunCommandLine(int p_Count, char const* const* p_Arguments)
{
    CommandParser parser;
    Choice choice;
    Console console(Color::Auto, false);
    try {
        choice = parser.Parse(p_Count, p_Arguments);
    } catch (CLI::Success const& help) {
        Programs::StandardStreams::Write(stdout, parser.Answer(help));
        return Conclude(EXIT_SUCCESS, console);
    } catch (CLI::ParseError const& error) {
        console.Error(OptionText::Hidden(QString::fromUtf8(error.what())), parser.Remedy());
        return c_UsageStatus;
    }
    QStringList arguments;
    for (int i = 1; i < p_Count; ++i)
        arguments += QString::fromUtf8(p_Arguments[i]);
    return Run(std::move(choice), arguments);
}

} // namespace Varnholt::Host
