#include "Host/Core/Jobs/RunControl.hpp"

#include "GameModules/FileLink.hpp"
#include "GameModules/Pelmora/LoginScreen.hpp"
#include "Host/Core/Folder/FolderSweep.hpp"

#include <QFileInfo>
#include <QMutexLocker>

#include <algorithm>

namespace Varnholt::Host {

namespace {

/// The listed files that are still there; one that is named twice counts once.
QStringList RemainingFiles(Launcher::ApplicationManifest const& p_Manifest, QString const& p_Folder)
{
    QStringList remaining;
    for (auto const* const entries : {&p_Manifest.Files, &p_Manifest.StreamedFiles})
        for (Launcher::ApplicationManifestFileEntry const& entry : *entries)
            if (QFileInfo(p_Folder + entry.Path).isFile())
                remaining += entry.Path;
    remaining.removeDuplicates();
    return remaining;
}

bool IsMarkup(QString const& p_Text)
{
    return std::any_of(p_Text.begin(), p_Text.end(), [](QChar p_Character) {
        return QStringLiteral("<>&\"'").contains(p_Character);
    });
}

} // namespace

void RunControl::AnswerLocales()
{
    Launcher::StandartApplication& module = Context.Module;
    Result.Locales = module.GetAvailableLocales();
    if (Request.Kind == RunRequest::Type::ChooseLocale) {
        QStringList tags;
        for (auto const& locale : Result.Locales)
            tags += locale.Tag;
        if (!tags.contains(Request.Argument))
            return Fail(
                {FailureKind::LocaleNotOffered, Request.Argument, tags.join(QStringLiteral(", "))});
        // The lists of what is missing were made for the language before.
        if (Context.Record.IsInstalled() && module.GetAppLocale() != Request.Argument)
            Context.Record.MarkUnfinished();
        module.SetAppLocale(Request.Argument);
    }
    Finish();
}

std::optional<Failure> RunControl::UninstallPreconditions()
{
    InstallRecord const& record = Context.Record;
    if (!record.IsInstalled())
        return Failure{FailureKind::NotInstalled, Context.Module.GetName(), {}};
    if (!QFileInfo(record.Folder()).isDir()) {
        Request.DeletesFiles = false; // nothing is left to delete, and no build is needed for that
        return std::nullopt;
    }
    if (Request.DeletesFiles) {
        {
            QMutexLocker const lock(&Context.Module.RunMutex);
            Context.Module.InstallationPath = record.Folder();
        }
        if (Context.Module.IsGameRunning())
            return Failure{FailureKind::GameRunning, record.Folder(), {}};
    }
    return LockFolder(record.Folder());
}

void RunControl::BeginUninstall()
{
    QString const folder = Folder();
    Context.Module.Uninstall(Request.DeletesFiles);
    Context.Record.Forget();
    Context.Copies.Forget();
    // What could not be deleted is reported by messages that are still on their way.
    Settle([this, folder] { FinishUninstall(folder); });
}

void RunControl::FinishUninstall(QString const& p_Folder)
{
    constexpr int c_MostNamed = 3;

    QStringList remaining;
    if (Request.DeletesFiles) {
        FolderSweep::Run(Context.Module.Manifest, p_Folder);
        remaining = RemainingFiles(Context.Module.Manifest, p_Folder);
        if (Lock)
            Lock->Remove();
    }
    if (remaining.isEmpty())
        return Finish();
    QString named = QStringList(remaining.mid(0, c_MostNamed)).join(QStringLiteral(", "));
    if (remaining.size() > c_MostNamed)
        named += QStringLiteral(" and %1 more").arg(remaining.size() - c_MostNamed);
    Fail({FailureKind::FilesNotRemoved, p_Folder, named});
}

std::optional<Failure> RunControl::PlayPreconditions()
{
    InstallRecord const& record = Context.Record;
    if (!record.IsInstalled())
        return Failure{FailureKind::NotInstalled, Context.Module.GetName(), {}};
    if (!QFileInfo(record.Folder()).isDir())
        return Failure{FailureKind::FolderMissing, record.Folder(), {}};
    return LockFolder(record.Folder());
}

/// Called when the comparison that each start-up begins has ended without looking at any file.
void RunControl::Play()
{
    Launcher::StandartApplication& module = Context.Module;
    auto const& files = module.Manifest.Files;
    auto const executable = std::find_if(files.begin(), files.end(), [](auto const& p_Entry) {
        return p_Entry.Has(Launcher::c_GameExecutableFlag);
    });
    if (executable == files.end())
        return Fail({FailureKind::ExecutableUnknown, Result.Build, {}});
    if (auto const link = Launcher::LinkGuard(Folder()).OnTheWay(executable->Path))
        return Fail({FailureKind::LinkLeadsOut, link->Path, link->Target});
    QFileInfo program(Folder() + executable->Path);
    if (program.exists() &&
        Launcher::FileLink::At(program.filePath()) == Launcher::FileLink::Kind::Strange)
        return Fail({FailureKind::LinkLeadsOut, program.filePath(), program.symLinkTarget()});
    if (!program.exists())
        return Fail({FailureKind::ExecutableMissing, program.filePath(), {}});
    if (!program.isFile())
        return Fail({FailureKind::ExecutableUnusable, program.filePath(), {}});
    if (Context.Record.IsUnfinished())
        NoticeOnce(QStringLiteral("The game is not complete; run \"update\" if it does not work."));

    Context.Gate.Hold();
    Context.Gate.Open(); // or the module would leave the permissions as they are
    bool const wasRunning = module.IsGameRunning();
    {
        NetworkDoor::Outside const outside(Context.Door); // the game has an environment of its own
        module.Start(Request.Argument, Request.Password);
    }
    program.refresh();
    if (!program.isExecutable()) {
        module.Start({}, {}); // takes the account's files away
        return Fail({FailureKind::ExecutableUnusable, program.filePath(), {}});
    }
    Context.Gate.Close();
    JudgeLogin(wasRunning);
    Finish();
}

/// Tells why the player has to log in by hand: the module prepares the login as far as it can.
void RunControl::JudgeLogin(bool p_WasRunning)
{
    using Launcher::LoginScreen;

    if (Request.Argument.isEmpty() || Request.Password.isEmpty())
        return;
    if (p_WasRunning)
        return NoticeOnce(QStringLiteral("The game was running already; the new one does not log "
                                         "in by itself."));
    // Without one template the module copies neither.
    char const* const names[] = {LoginScreen::c_Layout, LoginScreen::c_Script};
    for (bool const copied : {false, true})
        for (char const* const name : names) {
            QString const screen = Folder() + QLatin1String(name);
            QString const origin = screen + QLatin1String(LoginScreen::c_TemplateSuffix);
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
