#include "Host/Cli/Program.hpp"

#include "Host/Cli/Login.hpp"
#include "Host/Cli/Prompt.hpp"
#include "Host/Cli/SignalWatch.hpp"
#include "Host/Core/Module/ModuleLoader.hpp"
#include "Host/Core/Session/HostSession.hpp"

#include <QCoreApplication>
#include <QDir>
#include <QLibrary>
#include <QTimer>

namespace Varnholt::Host {

namespace {

/// One command from the loading of the module to its result.
class Program : public QObject {
public:
    Program(Choice p_Choice, Presenter& p_Output)
        : Chosen(std::move(p_Choice))
        , Output(p_Output)
        , Server(Chosen.Options.ContentServer())
    {
        connect(&Signals, &SignalWatch::EndRequested, this, &Program::OnEndRequested);
        connect(&Signals, &SignalWatch::ToggleRequested, this, &Program::OnToggleRequested);
    }

    /// Runs the event loop. \return the exit status
    int Run()
    {
        Session = std::make_unique<HostSession>(Chosen.Options);
        connect(Session.get(), &HostSession::Opened, this, &Program::OnOpened);
        connect(Session.get(), &HostSession::OpenFailed, this, &Program::Fail);
        connect(Session.get(), &HostSession::StatusRead, this, &Program::OnStatus);
        connect(Session.get(), &HostSession::Progressed, this,
                [this](RunSnapshot const& p_Snapshot) {
                    TellSpace(p_Snapshot.Space);
                    Output.ShowProgress(p_Snapshot);
                });
        connect(Session.get(), &HostSession::Noticed, this,
                [this](Notice const& p_Notice) { Output.ShowNotice(p_Notice); });
        connect(Session.get(), &HostSession::Ended, this,
                [this](quint64, RunResult const& p_Result) { OnEnded(p_Result); });
        connect(Session.get(), &HostSession::GameEnded, this, &Program::OnGameEnded);
        connect(Session.get(), &HostSession::Closed, this, [] { QCoreApplication::exit(); });
        Session->Open();
        int const status = QCoreApplication::exec();
        CloseSession();
        return status;
    }

private:
    /// Waits for the module to put everything in order; not long once the user has had enough.
    void CloseSession()
    {
        constexpr int c_MostMilliseconds = 10'000;
        constexpr int c_MostAfterInterruption = 50;

        QTimer::singleShot(SignalWatch::IsEndRequested() ? c_MostAfterInterruption
                                                         : c_MostMilliseconds,
                           this, [] { QCoreApplication::exit(); });
        Session->Close();
        QCoreApplication::exec();
        Session.reset();
    }

    void OnOpened(ModuleInfo const& p_Info)
    {
        GameName = p_Info.Name;
        RunRequest const& request = Chosen.Request;
        if (Chosen.Chosen == Choice::Command::Info) {
            Output.ShowInfo(p_Info);
            return Quit(Chosen.All ? ShowModulesBeside(p_Info.File) : EXIT_SUCCESS);
        }
        bool const asks = (request.Kind == RunRequest::Type::Play && !request.Argument.isEmpty()) ||
                          (request.Kind == RunRequest::Type::Uninstall && request.DeletesFiles &&
                           !request.Confirmed);
        if (Chosen.Chosen == Choice::Command::Run && !asks)
            return StartRun();
        Session->ReadStatus();
    }

    /// \return the exit status: that of the last one that cannot be loaded
    int ShowModulesBeside(QString const& p_File)
    {
        int status = EXIT_SUCCESS;
        QDir const folder = QFileInfo(p_File).dir();
        for (QFileInfo const& file : folder.entryInfoList(QDir::Files, QDir::Name)) {
            if (!QLibrary::isLibrary(file.fileName()) || file == QFileInfo(p_File))
                continue;
            ModuleLoader loader;
            if (auto const failure = loader.Load(file.absoluteFilePath())) {
                status = Output.ShowFailure(*failure);
                continue;
            }
            Output.ShowInfo(loader.Info());
            loader.Release();
        }
        return status;
    }

    void OnStatus(InstallStatus const& p_Status)
    {
        if (Chosen.Chosen != Choice::Command::Run) {
            if (Chosen.Chosen == Choice::Command::Status)
                Output.ShowStatus(p_Status);
            else
                Output.ShowLocale(p_Status.Locale);
            return Quit(EXIT_SUCCESS);
        }
        // Nobody is asked about a game that is not there.
        if (p_Status.IsInstalled && !AskUser(p_Status))
            return;
        StartRun();
    }

    /// Asks what must be asked; false when the program has come to its end with that.
    bool AskUser(InstallStatus const& p_Status)
    {
        RunRequest& request = Chosen.Request;
        if (request.Kind == RunRequest::Type::Play) {
            request.Password = LoginPassword(Chosen, Server, Output);
            if (SignalWatch::IsEndRequested()) {
                Quit(SignalWatch::c_Status);
                return false;
            }
            if (request.Password.isEmpty())
                Output.ShowNotice({NoticeKind::PasswordMissing});
            return true;
        }
        if (!Prompt::IsInteractive()) {
            Fail({FailureKind::ConfirmationMissing, p_Status.Folder, {}});
            return false;
        }
        if (p_Status.FolderExists) // otherwise there is nothing to ask about
            request.Kind = RunRequest::Type::PreviewUninstall;
        return true;
    }

    /// Called with what an uninstallation would delete. \return whether that shall be
    bool ConfirmDeletion(RunResult const& p_Preview)
    {
        RunRequest& request = Chosen.Request;
        QString question = QStringLiteral("Delete %1 of %2 in %3?")
                               .arg(AmountText(p_Preview.Amount), GameName, p_Preview.Folder);
        if (auto const stay = p_Preview.Staying.size(); stay > 0)
            question += QStringLiteral(" %1 not the game's %2.")
                            .arg(stay == 1 ? QStringLiteral("1 file that is")
                                           : QStringLiteral("%1 files that are").arg(stay),
                                 stay == 1 ? QStringLiteral("stays") : QStringLiteral("stay"));
        request.Kind = RunRequest::Type::Uninstall;
        request.Confirmed = Prompt::Confirm(question);
        if (!request.Confirmed) {
            Output.ShowNotice({NoticeKind::NothingDeleted});
            Quit(SignalWatch::IsEndRequested() ? SignalWatch::c_Status : EXIT_FAILURE);
        }
        return request.Confirmed;
    }

    void StartRun()
    {
        IsRunning = true;
        Session->Start(Chosen.Request);
    }

    void TellSpace(std::vector<VolumeSpace> const& p_Space)
    {
        RunRequest::Type const kind = Chosen.Request.Kind;
        bool const isResult =
            kind == RunRequest::Type::Check || kind == RunRequest::Type::PreviewInstall;
        if (p_Space.empty() || p_Space == ToldSpace)
            return;
        ToldSpace = p_Space;
        for (VolumeSpace const& space : p_Space)
            if (space.Files > 0 || isResult)
                Output.ShowSpace(space, isResult);
    }

    void OnEnded(RunResult const& p_Result)
    {
        IsRunning = false;
        if (Chosen.Request.Kind == RunRequest::Type::PreviewUninstall && !p_Result.Problem) {
            if (ConfirmDeletion(p_Result))
                StartRun();
            return;
        }
        Result = p_Result;
        if (!Chosen.Waits || p_Result.Problem)
            return Conclude();
        Output.ShowNotice({NoticeKind::GameAwaited, GameName, QString::number(p_Result.ProcessId)});
    }

    void OnGameEnded(GameEnd const& p_End)
    {
        if (!Chosen.Waits)
            return;
        if (QString const error = p_End.ErrorText(); !error.isEmpty())
            Result.Problem = Failure{FailureKind::GameFailed, Result.OutputFile, error};
        Conclude();
    }

    void Conclude()
    {
        TellSpace(Result.Space);
        Quit(Output.ShowResult(Chosen.Request, Result, GameName));
    }

    void OnEndRequested()
    {
        if (!IsRunning)
            return Quit(SignalWatch::c_Status);
        Output.ShowNotice({NoticeKind::Stopping});
        Session->Interrupt();
    }

    void OnToggleRequested()
    {
        if (Session->IsPaused())
            Session->Continue();
        else
            Session->Pause();
    }

    void Fail(Failure const& p_Failure) { Quit(Output.ShowFailure(p_Failure)); }

    void Quit(int p_Status)
    {
        Chosen.Waits = false;
        QCoreApplication::exit(p_Status);
    }

    Choice Chosen;
    Presenter& Output;
    QString const Server; ///< that the game's account is of
    SignalWatch Signals;
    std::unique_ptr<HostSession> Session;
    QString GameName;
    std::vector<VolumeSpace> ToldSpace;
    RunResult Result;
    bool IsRunning = false;
};

} // namespace

int RunProgram(Choice p_Choice, Presenter& p_Output)
{
    return Program(std::move(p_Choice), p_Output).Run();
}

} // namespace Varnholt::Host
