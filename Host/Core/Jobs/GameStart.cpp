#include "Host/Core/Jobs/GameStart.hpp"

#include "GameModules/FileLink.hpp"
#include "GameModules/LinkGuard.hpp"

#include <QStandardPaths>

#include <algorithm>
#include <cerrno>
#include <sys/statvfs.h>
#include <utility>

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

/// Why the system does not begin a program that is there.
QString CauseOf(int p_Error, QString const& p_File)
{
    QString const interpreter = InterpreterOf(p_File);
    if (p_Error == ENOEXEC)
        return GameStart::tr("this system runs no program of its format");
    if (p_Error == ENOENT && !interpreter.isEmpty())
        return GameStart::tr("its interpreter %1 is missing").arg(interpreter);
    if (p_Error == ENOENT)
        return GameStart::tr("what this system needs to run it is missing");
    if (p_Error != EACCES)
        return qt_error_string(p_Error);
    if (IsVolumeWithoutPrograms(p_File))
        return GameStart::tr("its volume is mounted for no programs");
    if (QFileInfo(p_File).isExecutable() && !interpreter.isEmpty())
        return GameStart::tr("its interpreter %1 is no program that you may run").arg(interpreter);
    return GameStart::tr("its permissions do not let you");
}

} // namespace

GameStart::GameStart(RunContext const& p_Context, RunRequest const& p_Request,
                     std::function<void(Notice const&)> p_Tell)
    : Context(p_Context)
    , Request(p_Request)
    , Tell(std::move(p_Tell))
    , Folder(p_Context.Record.Folder())
    , Output(p_Context.Record.File(), p_Context.Module.AppId, Folder)
{
}

std::optional<Failure> GameStart::Begin()
{
    if (auto failure = FindProgram())
        return failure;
    if (auto failure = FindWrapper())
        return failure;
    if (Context.Record.IsUnfinished())
        Tell({NoticeKind::GameIncomplete});
    bool const wasRunning = Context.Module.IsGameRunning();
    // The game is not to inherit the variable that names the door.
    NetworkDoor::Outside const outside(Context.Door);
    Prepare(Request.Argument, Request.Password);
    if (auto failure = Launch()) {
        Prepare({}, {}); // takes the account's files away
        return failure;
    }
    JudgeLogin(wasRunning);
    return std::nullopt;
}

std::optional<Failure> GameStart::FindProgram()
{
    auto const& files = Context.Module.Manifest.Files;
    auto const executable = std::find_if(files.begin(), files.end(), [](auto const& p_Entry) {
        return p_Entry.Has(Launcher::c_GameExecutableFlag);
    });
    if (executable == files.end())
        return Failure{FailureKind::ExecutableUnknown, Context.Module.Manifest.BuildStr, {}};
    if (auto const link = Launcher::LinkGuard(Folder).OnTheWay(executable->Path))
        return Failure{FailureKind::LinkLeadsOut, link->Path, link->Target};
    Program.setFile(Folder + executable->Path);
    if (Program.exists() &&
        Launcher::FileLink::At(Program.filePath()) == Launcher::FileLink::Kind::Strange)
        return Failure{FailureKind::LinkLeadsOut, Program.filePath(), Program.symLinkTarget()};
    if (!Program.exists())
        return Failure{FailureKind::ExecutableMissing, Program.filePath(), {}};
    if (!Program.isFile())
        return Failure{FailureKind::ExecutableUnusable, Program.filePath(), tr("it is no file")};
    return std::nullopt;
}

std::optional<Failure> GameStart::FindWrapper()
{
    if (Context.Options.Wrapper.isEmpty())
        return std::nullopt;
    QString const& name = Context.Options.Wrapper.first();
    Wrapper = QStandardPaths::findExecutable(name);
    if (!Wrapper.isEmpty())
        return std::nullopt;
    return Failure{FailureKind::WrapperUnusable, name, tr("there is no such program")};
}

/// Has the module prepare everything and start nothing: meanwhile no file of its manifest is marked
/// as the game's program.
void GameStart::Prepare(QString const& p_Account, QString const& p_Password)
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

std::optional<Failure> GameStart::Launch()
{
    if (QString const why = Output.Begin(); why.isEmpty())
        OutputName = Output.File();
    else
        Tell({NoticeKind::OutputNotKept, Output.File(), why});
    QString const path = Program.filePath();
    QStringList arguments = Context.Info.GameArguments + Request.GameArguments;
    if (!Wrapper.isEmpty())
        arguments = Context.Options.Wrapper.mid(1) + QStringList(path) + arguments;
    QString const file = Wrapper.isEmpty() ? path : Wrapper;
    Watched.setRemainingTime(Context.Options.WatchMilliseconds);
    int const error = Process->Start(file, arguments, Output.Descriptor());
    if (error == 0)
        return std::nullopt;
    if (Wrapper.isEmpty())
        return Failure{FailureKind::ExecutableUnusable, file, CauseOf(error, file)};
    return Failure{FailureKind::WrapperUnusable, Context.Options.Wrapper.first(),
                   CauseOf(error, file)};
}

/// Tells why the player has to log in by hand: the module prepares the login as far as it can.
void GameStart::JudgeLogin(bool p_WasRunning) const
{
    if (Request.Argument.isEmpty() || Request.Password.isEmpty())
        return;
    if (p_WasRunning)
        return Tell({NoticeKind::GameRunningAlready});
    // Without one template the module copies none.
    for (bool const copied : {false, true})
        for (QString const& name : Context.Info.LoginFiles) {
            QString const screen = Folder + name;
            QString const origin = screen + Context.Info.LoginTemplateSuffix;
            if (QFileInfo::exists(copied ? screen : origin))
                continue;
            return Tell({NoticeKind::LoginNotPrepared, origin,
                         copied ? tr("cannot be copied") : tr("is missing")});
        }
    if (IsMarkup(Request.Argument) || IsMarkup(Request.Password))
        Tell({NoticeKind::LoginMisreadable});
}

bool GameStart::IsSettled()
{
    return Process->Ending() || Watched.hasExpired();
}

std::optional<Failure> GameStart::Outcome()
{
    QString ending = Process->Ending().value_or(GameEnd()).ErrorText();
    if (ending.isEmpty())
        return std::nullopt;
    Prepare({}, {}); // no password lies about for nothing
    if (OutputName.isEmpty())
        return Failure{FailureKind::GameFailed, QStringLiteral("/dev/null"), ending};
    if (QString const lines = Output.LastLines(); !lines.isEmpty())
        ending += tr("; it said last: \"%1\"").arg(lines);
    return Failure{FailureKind::GameFailed, OutputName, ending};
}

} // namespace Varnholt::Host
