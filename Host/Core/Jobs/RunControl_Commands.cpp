#include "Host/Core/Jobs/RunControl.hpp"

#include "Host/Core/Folder/FolderSweep.hpp"

#include <QFileInfo>
#include <QMutexLocker>

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
    GameOutput(Context.Record.File(), Context.Module.AppId, folder).Forget();
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
    Starter = std::make_unique<GameStart>(Context, Request,
                                          [this](QString const& p_Text) { NoticeOnce(p_Text); });
    if (auto const failure = Starter->Begin())
        return Fail(*failure);
    Result.ProcessId = Starter->ProcessId();
    Result.OutputFile = Starter->OutputFile();
    CurrentStep = Step::StartingGame;
}

void RunControl::OnGameSettled()
{
    if (auto const failure = Starter->Outcome())
        return Fail(*failure);
    Finish();
}

} // namespace Varnholt::Host
