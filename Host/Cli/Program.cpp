#include "Host/Cli/Program.hpp"

#include "Host/Cli/Console.hpp"
#include "Host/Cli/Prompt.hpp"
#include "Host/Cli/Reports.hpp"

#include <QCoreApplication>

namespace Varnholt::Host {

namespace {

constexpr int c_UsageStatus = 2;
constexpr int c_InterruptedStatus = 130;

} // namespace

Program::Program(Choice p_Choice, Console& p_Console)
    : Chosen(std::move(p_Choice))
    , Output(p_Console)
    , View(p_Console)
{
    connect(&Signals, &SignalWatch::EndRequested, this, &Program::OnEndRequested);
    connect(&Signals, &SignalWatch::ToggleRequested, this, &Program::OnToggleRequested);
}

int Program::Run()
{
    Session = std::make_unique<HostSession>(Chosen.Options);
    connect(Session.get(), &HostSession::Opened, this, &Program::OnOpened);
    connect(Session.get(), &HostSession::OpenFailed, this, &Program::Fail);
    connect(Session.get(), &HostSession::StatusRead, this, &Program::OnStatus);
    connect(Session.get(), &HostSession::Progressed, this,
            [this](RunSnapshot const& p_Snapshot) { View.Show(p_Snapshot); });
    connect(Session.get(), &HostSession::Noticed, this,
            [this](QString const& p_Text) { Output.Note(p_Text); });
    connect(Session.get(), &HostSession::Ended, this, &Program::OnEnded);
    Session->Open();
    int const status = QCoreApplication::exec();
    View.Clear();
    Session.reset(); // stops what is under way, and waits for it
    return status;
}

void Program::OnOpened(ModuleInfo const& p_Info)
{
    GameName = p_Info.Name;
    RunRequest const& request = Chosen.Request;
    if (Chosen.Chosen == Choice::Command::Info)
        return PrintResults(Reports::Info(p_Info));
    bool const asks =
        (request.Kind == RunRequest::Type::Play && !request.Argument.isEmpty()) ||
        (request.Kind == RunRequest::Type::Uninstall && request.DeletesFiles && !request.Confirmed);
    if (Chosen.Chosen == Choice::Command::Run && !asks)
        return StartRun();
    Session->ReadStatus();
}

void Program::OnStatus(InstallStatus const& p_Status)
{
    if (Chosen.Chosen == Choice::Command::Status)
        return PrintResults(Reports::Status(p_Status));
    if (Chosen.Chosen == Choice::Command::CurrentLocale)
        return PrintResults({p_Status.Locale});
    // Nobody is asked about a game that is not there.
    if (p_Status.IsInstalled && !AskUser(p_Status))
        return;
    StartRun();
}

bool Program::AskUser(InstallStatus const& p_Status)
{
    RunRequest& request = Chosen.Request;
    if (request.Kind == RunRequest::Type::Play) {
        auto const password =
            Prompt::Password(QStringLiteral("Password of %1: ").arg(request.Argument));
        if (SignalWatch::IsEndRequested()) {
            Quit(c_InterruptedStatus);
            return false;
        }
        if (!password || password->isEmpty())
            Output.Note(
                QStringLiteral("No password was given; the game does not log in by itself."));
        request.Password = password.value_or(QString());
        return true;
    }
    if (!Prompt::IsInteractive()) {
        Output.Error(QStringLiteral("the files in %1 are deleted only when that is confirmed")
                         .arg(p_Status.Folder),
                     QStringLiteral("add --yes"));
        Quit(c_UsageStatus);
        return false;
    }
    request.Confirmed = Prompt::Confirm(
        QStringLiteral("Delete the files of %1 in %2?").arg(p_Status.Name, p_Status.Folder));
    if (!request.Confirmed) {
        Output.Note(QStringLiteral("Nothing was deleted."));
        Quit(SignalWatch::IsEndRequested() ? c_InterruptedStatus : EXIT_FAILURE);
    }
    return request.Confirmed;
}

void Program::StartRun()
{
    IsRunning = true;
    Session->Start(Chosen.Request);
}

void Program::OnEnded(RunResult const& p_Result)
{
    IsRunning = false;
    View.Clear();
    for (QString const& line : Reports::Findings(p_Result))
        Output.Result(line);
    if (p_Result.Problem)
        return Fail(*p_Result.Problem);
    PrintResults(Reports::Success(Chosen.Request, p_Result, GameName));
}

void Program::OnEndRequested()
{
    if (!IsRunning)
        return Quit(c_InterruptedStatus);
    Output.Note(QStringLiteral("Stopping; press Ctrl-C again to stop at once."));
    Session->Interrupt();
}

void Program::OnToggleRequested()
{
    if (!IsRunning)
        return;
    IsPaused = !IsPaused;
    if (IsPaused)
        Session->Pause();
    else
        Session->Continue();
}

void Program::PrintResults(QStringList const& p_Lines)
{
    for (QString const& line : p_Lines)
        Output.Result(line);
    Quit(EXIT_SUCCESS);
}

void Program::Fail(Failure const& p_Failure)
{
    Output.Error(p_Failure.Sentence(), p_Failure.Remedy());
    Quit(p_Failure.ExitStatus());
}

void Program::Quit(int p_Status)
{
    QCoreApplication::exit(p_Status);
}

} // namespace Varnholt::Host
