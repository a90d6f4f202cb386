#include "Host/Core/Jobs/PlayJob.hpp"

#include "GameModules/FileLink.hpp"
#include "GameModules/LinkGuard.hpp"
#include "Host/Core/Jobs/FaultWatch.hpp"

#include <QFileInfo>

#include <algorithm>

namespace Varnholt::Host {

namespace {

bool IsMarkup(QString const& p_Text)
{
    return std::any_of(p_Text.begin(), p_Text.end(), [](QChar p_Character) {
        return QStringLiteral("<>&\"'").contains(p_Character);
    });
}

} // namespace

std::optional<Failure> PlayJob::Prepare()
{
    if (auto failure = GameFailure())
        return failure;
    return LockFolder(Folder());
}

void PlayJob::OnBuildKnown()
{
    FaultWatch const faults(Context, Reader);
    if (auto const failure = faults.OfBuild())
        return Fail(*failure);
    if (auto const notice = faults.LocaleNotice())
        NoticeOnce(*notice);
    // The comparison that each start-up begins ends without looking at any file.
    Settle([this] { Play(); });
}

void PlayJob::Play()
{
    Launcher::StandartApplication& module = Context.Module;
    auto const& files = module.Manifest.Files;
    auto const executable = std::find_if(files.begin(), files.end(), [](auto const& p_Entry) {
        return p_Entry.Has(Launcher::c_GameExecutableFlag);
    });
    if (executable == files.end())
        return Fail({FailureKind::ExecutableUnknown, Result.Build, {}});
    if (auto const failure = FailureOf(executable->Path))
        return Fail(*failure);
    if (Context.Record.IsUnfinished())
        NoticeOnce(QStringLiteral("The game is not complete; run \"update\" if it does not work."));

    Context.Gate.Hold();
    Context.Gate.Open(); // or the module would leave the permissions as they are
    bool const wasRunning = module.IsGameRunning();
    {
        NetworkDoor::Outside const outside(Context.Door); // the game has an environment of its own
        module.Start(Request.Argument, Request.Password);
    }
    QFileInfo const program(Folder() + executable->Path);
    if (!program.isExecutable()) {
        module.Start({}, {}); // takes the account's files away
        return Fail({FailureKind::ExecutableUnusable, program.filePath(), {}});
    }
    Context.Gate.Close();
    JudgeLogin(wasRunning);
    NoticeRealmList();
    Finish();
}

/// Why a program of the game cannot be started. \param p_Program path in the game folder
std::optional<Failure> PlayJob::FailureOf(QString const& p_Program) const
{
    if (auto const link = Launcher::LinkGuard(Folder()).OnTheWay(p_Program))
        return Failure{FailureKind::LinkLeadsOut, link->Path, link->Target};
    QFileInfo const program(Folder() + p_Program);
    if (program.exists() &&
        Launcher::FileLink::At(program.filePath()) == Launcher::FileLink::Kind::Strange)
        return Failure{FailureKind::LinkLeadsOut, program.filePath(), program.symLinkTarget()};
    if (!program.exists())
        return Failure{FailureKind::ExecutableMissing, program.filePath(), {}};
    if (!program.isFile())
        return Failure{FailureKind::ExecutableUnusable, program.filePath(), {}};
    return std::nullopt;
}

/// Tells why the player has to log in by hand: the module prepares the login as far as it can.
void PlayJob::JudgeLogin(bool p_WasRunning)
{
    if (Request.Argument.isEmpty() || Request.Password.isEmpty())
        return;
    if (p_WasRunning)
        return NoticeOnce(QStringLiteral("The game was running already; the new one does not log "
                                         "in by itself."));
    // Without one template the module copies none.
    for (bool const copied : {false, true})
        for (QString const& name : Context.Info.LoginFiles) {
            QString const screen = Folder() + name;
            QString const origin = screen + Context.Info.LoginTemplateSuffix;
            if (QFileInfo::exists(copied ? screen : origin))
                continue;
            return NoticeOnce(QStringLiteral("The game does not log in by itself: %1 %2.")
                                  .arg(origin, copied ? QStringLiteral("cannot be copied")
                                                      : QStringLiteral("is missing")));
        }
    if (IsMarkup(Request.Argument) || IsMarkup(Request.Password))
        NoticeOnce(QStringLiteral("The account name or the password holds characters that the "
                                  "login screen may misread; log in by hand if it does."));
}

} // namespace Varnholt::Host
