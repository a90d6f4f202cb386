#include "GameModules/FileLink.hpp"
#include "GameModules/LinkGuard.hpp"
#include "Host/Core/Jobs/GameOutput.hpp"
#include "Host/Core/Jobs/JobTable.hpp"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QFileInfo>
#include <QStandardPaths>

#include <algorithm>
#include <cerrno>
#include <sys/statvfs.h>

namespace Varnholt::Host {

namespace {

bool IsMarkup(QString const& p_Text)
{
    return std::any_of(p_Text.begin(), p_Text.end(), [](QChar p_Character) {
        return QStringLiteral("<>&\"'").contains(p_Character);
    });
}

/// Of a script: the program that its first line names; empty of anything else.
QString InterpreterOf(QString const& p_File)
{
    constexpr qint64 c_LongestLine = 256;

    QFile file(p_File);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QByteArray const line = file.readLine(c_LongestLine);
    return line.startsWith("#!")
               ? QFile::decodeName(line.mid(2).simplified()).section(QLatin1Char(' '), 0, 0)
               : QString();
}

bool IsVolumeWithoutPrograms(QString const& p_File)
{
#ifdef ST_NOEXEC
    struct statvfs volume = {};
    return ::statvfs(QFile::encodeName(p_File).constData(), &volume) == 0 &&
           (volume.f_flag & ST_NOEXEC) != 0;
#else
    Q_UNUSED(p_File);
    return false;
#endif
}

/// Starts the game, logged in when account and password are given: from the look at its program to
/// the moment in which it is taken for running. The module prepares login screen and permissions,
/// the host starts the program: its end would not be seen otherwise.
class PlayJob : public Job {
    Q_DECLARE_TR_FUNCTIONS(Varnholt::Host::PlayJob)

public:
    using Job::Job;

    void Interrupt() override
    {
        if (Game && Result.ProcessId != 0) {
            NoticeOnce({NoticeKind::GameGoesOn});
            Context.Games.Take(std::move(Game));
        }
        Job::Interrupt();
    }

protected:
    std::optional<Failure> Prepare() override
    {
        if (auto failure = GameFailure())
            return failure;
        if (Context.Trust.IsOn() && !Context.Trust.IsGameVerified())
            return Failure{FailureKind::GameUnverified, Folder(), {}};
        return LockFolder(Folder());
    }

    void OnBuildKnown() override
    {
        if (!CanUseBuild())
            return;
        // The module begins a comparison at each start-up; with its gate closed it ends at once.
        Settle([this] {
            if (auto const failure = Play())
                Fail(*failure);
        });
    }

    void Work() override
    {
        if (!Game || !(Game->Ending() || Watched.hasExpired()))
            return;
        if (auto const failure = Outcome())
            return Fail(*failure);
        Context.Games.Take(std::move(Game));
        NoticeRealmList();
        Finish();
    }

    RunPhase Phase() const override
    {
        return Output ? RunPhase::StartingGame : RunPhase::Connecting;
    }

    void Release() override
    {
        Game.reset();
        Output.reset();
    }

private:
    /// \return why the game does not run; the account's files are gone then
    std::optional<Failure> Play()
    {
        Output.emplace(Context.Record.File(), Context.Module.AppId, Folder());
        if (auto failure = FindProgram())
            return failure;
        if (auto failure = FindWrapper())
            return failure;
        if (Context.Record.IsUnfinished())
            NoticeOnce({NoticeKind::GameIncomplete});
        bool const wasRunning = Context.Module.IsGameRunning();
        // The game is not to inherit the variable that names the door.
        NetworkDoor::Outside const outside(Context.Door);
        PrepareLogin(Request.Argument, Request.Password);
        if (auto failure = Launch()) {
            PrepareLogin({}, {}); // takes the account's files away
            return failure;
        }
        JudgeLogin(wasRunning);
        return std::nullopt;
    }

    std::optional<Failure> FindProgram()
    {
        auto const& files = Context.Module.Manifest.Files;
        auto const executable = std::find_if(files.begin(), files.end(), [](auto const& p_Entry) {
            return p_Entry.Has(Launcher::c_GameExecutableFlag);
        });
        if (executable == files.end())
            return Failure{FailureKind::ExecutableUnknown, Context.Module.Manifest.BuildStr, {}};
        if (auto const link = Launcher::LinkGuard(Folder()).OnTheWay(executable->Path))
            return Failure{FailureKind::LinkLeadsOut, link->Path, link->Target};
        Program.setFile(Folder() + executable->Path);
        if (Program.exists() &&
            Launcher::FileLink::At(Program.filePath()) == Launcher::FileLink::Kind::Strange)
            return Failure{FailureKind::LinkLeadsOut, Program.filePath(), Program.symLinkTarget()};
        if (!Program.exists())
            return Failure{FailureKind::ExecutableMissing, Program.filePath(), {}};
        if (!Program.isFile())
            return Failure{FailureKind::ExecutableUnusable, Program.filePath(),
                           tr("it is no file")};
        return std::nullopt;
    }

    std::optional<Failure> FindWrapper()
    {
        if (Context.Options.Wrapper.isEmpty())
            return std::nullopt;
        QString const& name = Context.Options.Wrapper.first();
        Wrapper = QStandardPaths::findExecutable(name);
        if (!Wrapper.isEmpty())
            return std::nullopt;
        return Failure{FailureKind::WrapperUnusable, name, tr("there is no such program")};
    }

    /// Has the module prepare everything and start nothing: meanwhile no file of its manifest is
    /// marked as the game's program.
    void PrepareLogin(QString const& p_Account, QString const& p_Password)
    {
        using Entry = Launcher::ApplicationManifestFileEntry;

        Launcher::StandartApplication& module = Context.Module;
        std::vector<Entry*> programs;
        for (Entry& entry : module.Manifest.Files)
            if (entry.Has(Launcher::c_GameExecutableFlag))
                programs.push_back(&entry);
        for (Entry* const program : programs)
            program->Flags &= ~Launcher::c_GameExecutableFlag;
        Context.Gate.Hold();
        Context.Gate.Open(); // or the module would leave the permissions as they are
        module.Start(p_Account, p_Password);
        Context.Gate.Close();
        for (Entry* const program : programs)
            program->Flags |= Launcher::c_GameExecutableFlag;
    }

    std::optional<Failure> Launch()
    {
        QString const why = Output->Begin();
        if (!why.isEmpty())
            NoticeOnce({NoticeKind::OutputNotKept, Output->File(), why});
        QString const path = Program.filePath();
        QStringList arguments = Context.Info.GameArguments + Request.GameArguments;
        if (!Wrapper.isEmpty())
            arguments = Context.Options.Wrapper.mid(1) + QStringList(path) + arguments;
        QString const file = Wrapper.isEmpty() ? path : Wrapper;
        Watched.setRemainingTime(Context.Options.WatchMilliseconds);
        Game = std::make_unique<GameProcess>();
        int const error = Game->Start(file, arguments, Output->Descriptor());
        if (error != 0)
            return Wrapper.isEmpty()
                       ? Failure{FailureKind::ExecutableUnusable, file, CauseOf(error, file)}
                       : Failure{FailureKind::WrapperUnusable, Context.Options.Wrapper.first(),
                                 CauseOf(error, file)};
        Result.ProcessId = Game->Id();
        if (why.isEmpty())
            Result.OutputFile = Output->File();
        return std::nullopt;
    }

    /// Why the system does not begin a program that is there.
    static QString CauseOf(int p_Error, QString const& p_File)
    {
        QString const interpreter = InterpreterOf(p_File);
        if (p_Error == ENOEXEC)
            return tr("this system runs no program of its format");
        if (p_Error == ENOENT && !interpreter.isEmpty())
            return tr("its interpreter %1 is missing").arg(interpreter);
        if (p_Error == ENOENT)
            return tr("what this system needs to run it is missing");
        if (p_Error != EACCES)
            return qt_error_string(p_Error);
        if (IsVolumeWithoutPrograms(p_File))
            return tr("its volume is mounted for no programs");
        if (QFileInfo(p_File).isExecutable() && !interpreter.isEmpty())
            return tr("its interpreter %1 is no program that you may run").arg(interpreter);
        return tr("its permissions do not let you");
    }

    /// Tells why the player has to log in by hand: the module prepares the login as far as it can.
    void JudgeLogin(bool p_WasRunning)
    {
        if (Request.Argument.isEmpty() || Request.Password.isEmpty())
            return;
        if (p_WasRunning)
            return NoticeOnce({NoticeKind::GameRunningAlready});
        // Without one template the module copies none.
        for (bool const copied : {false, true})
            for (QString const& name : Context.Info.LoginFiles) {
                QString const screen = Folder() + name;
                QString const origin = screen + Context.Info.LoginTemplateSuffix;
                if (QFileInfo::exists(copied ? screen : origin))
                    continue;
                return NoticeOnce({NoticeKind::LoginNotPrepared, origin,
                                   copied ? tr("cannot be copied") : tr("is missing")});
            }
        if (IsMarkup(Request.Argument) || IsMarkup(Request.Password))
            NoticeOnce({NoticeKind::LoginMisreadable});
    }

    /// Called once the game has run for a moment, or has ended. \return the error that it ended
    /// with
    std::optional<Failure> Outcome()
    {
        QString ending = Game->Ending().value_or(GameEnd()).ErrorText();
        if (ending.isEmpty())
            return std::nullopt;
        PrepareLogin({}, {}); // no password lies about for nothing
        if (Result.OutputFile.isEmpty())
            return Failure{FailureKind::GameFailed, QStringLiteral("/dev/null"), ending};
        if (QString const lines = Output->LastLines(); !lines.isEmpty())
            ending += tr("; it said last: \"%1\"").arg(lines);
        return Failure{FailureKind::GameFailed, Result.OutputFile, ending};
    }

    QFileInfo Program;
    QString Wrapper;                   ///< its file; empty: none
    std::optional<GameOutput> Output;  ///< none until the build is known
    std::unique_ptr<GameProcess> Game; ///< none until it is launched
    QDeadlineTimer Watched;
};

} // namespace

JobMaker const MakePlayJob = MakeJob<PlayJob>;

} // namespace Varnholt::Host
