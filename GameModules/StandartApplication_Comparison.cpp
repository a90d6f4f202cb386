#include "GameModules/StandartApplication.hpp"

#include "GameModules/ManifestComparison.hpp"
#include "GameModules/PendingList.hpp"
#include "Launcher/Application/LogCategories.hpp"
#include "Launcher/Helper/Paths.hpp"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMutexLocker>

namespace Varnholt::Launcher {

void StandartApplication::OnManifestReceived()
{
    RunId const run = BeginRun();
    LeaveWorkingFolder();
    Links.Begin(Folder());
    bool const installed = IsInstalled();
    if (installed) {
        if (IsFirstManifestBuild)
            NoteFirstBuild(Folder());
        // A transfer that Uninstall() has set aside could wait for a silent server for ever.
        Transfers.StopAside();
        ShowComparison(Manifest.Files.size());
    } else {
        UISetting.State = ApplicationUISetting::StateNotInstalled;
        UISettingChanged = true;
        WriteSetting(SettingKey(".ManifestBuilt"), false);
    }
    FixPermissions();
    AfterOnManifestReceived();
    if (!installed)
        return;
    if (Folder().isEmpty()) {
        qCWarning(LogComparison) << Name << "is installed in no folder: nothing is compared";
        ShowIdle();
        return;
    }
    // Queued last: the worker must not read files whose permissions are being changed.
    EnqueueAsync([this, run, firstBuild = IsFirstManifestBuild, entries = Manifest.Files] {
        CompareBaseFiles(run, firstBuild, entries);
    });
}

void StandartApplication::LeaveWorkingFolder()
{
    QString const recorded = GetInstallationPath();
    if (recorded.isEmpty())
        return;
    QString path = Helper::Paths::WithSlash(recorded);
    // A launcher's own folder is no place for a game: it moves one level down.
    if (IsInstalled() && path == Helper::Paths::WithSlash(QDir::currentPath())) {
        QFile::remove(path + PendingList::c_FirstBuild);
        path += Name + QLatin1Char('/');
        NoteFirstBuild(path);
        WriteSetting(SettingKey(".InstallFolder"), path);
        SetFirstManifestBuild(true);
    }
    QMutexLocker const lock(&RunMutex);
    InstallationPath = path;
}

void StandartApplication::NoteFirstBuild(QString const& p_Folder)
{
    if (p_Folder.isEmpty())
        return;
    QMutexLocker const lock(&ListMutex);
    QDir().mkpath(p_Folder);
    QFile note(Helper::Paths::WithSlash(p_Folder) + PendingList::c_FirstBuild);
    if (QFileInfo(note).isSymbolicLink())
        note.remove();
    note.open(QIODevice::WriteOnly); // empty, and so whole as soon as it is there
}

bool StandartApplication::FirstBuildOwes(QString const& p_Folder, QString const& p_List)
{
    QString const note = p_Folder + PendingList::c_FirstBuild;
    if (p_Folder.isEmpty() || !QFile::exists(note))
        return false;
    QStringList const owed = PendingList::Read(note, [] { return true; }).Paths;
    return owed.isEmpty() || owed.contains(p_List);
}

void StandartApplication::ShowComparison(std::size_t p_Count)
{
    QMutexLocker const lock(&RunMutex);
    UISetting.State = ApplicationUISetting::StateInstalled;
    auto& progress = UISetting.Download;
    progress.StatusFlags = 0;
    progress.StatusFlag = true;
    progress.StatusText = Manifest.BuildStr;
    progress.Current = 0;
    progress.Total = p_Count;
    progress.Percent = 0;
    progress.Mode = ApplicationUISetting::ModeComparing;
    progress.ModeFlag = true;
    UISettingChanged = true;
}

ManifestComparison StandartApplication::ComparisonFor(RunId p_Run, std::size_t p_Count)
{
    ManifestComparison comparison;
    comparison.Folder = Folder();
    comparison.Locale = GetAppLocale();
    comparison.Continue = [this, p_Run] { return IsCurrentRun(p_Run) && ShouldContinue(); };
    comparison.IsBarred = [this, folder = comparison.Folder](QString const& p_Path) {
        return Links.IsBarred(folder, p_Path);
    };
    comparison.OnEntry = [this, p_Run, p_Count](std::size_t p_Index) {
        RunScope const scope(*this, p_Run);
        if (!scope)
            return;
        UISetting.Download.Current = p_Index + 1;
        UISetting.Download.Percent = static_cast<quint32>((p_Index + 1) * 100 / p_Count);
        UISettingChanged = true;
    };
    return comparison;
}

void StandartApplication::CompareBaseFiles(RunId p_Run, bool p_FirstBuild, Entries const& p_Entries)
{
    ManifestComparison comparison = ComparisonFor(p_Run, p_Entries.size());
    comparison.SkipFirstBuildOnly = !p_FirstBuild;
    auto examined = comparison.Examine(p_Entries);
    Entries& found = examined.Files;

    if (p_FirstBuild) {
        QStringList paths;
        for (ApplicationManifestFileEntry const& entry : found)
            if (entry.Has(ApplicationManifestFileEntry::FirstBuildOnly))
                paths += entry.Path;
        RecordFirstBuild(p_Run, comparison.Folder, PendingList::c_Base, paths, examined.IsWhole);
    } else {
        QStringList const paths =
            PendingList::Read(comparison.Folder + PendingList::c_Base, comparison.Continue).Paths;
        Entries const leftOver = comparison.LeftOver(p_Entries, paths, found);
        found.insert(found.end(), leftOver.begin(), leftOver.end());
    }

    bool const nothing = found.empty();
    if (!PublishList(p_Run, std::move(found), true))
        return;
    if (nothing)
        CompareStreamed(p_Run, true);
    else
        CheckStartDownload(p_Run, &StandartApplication::RequestBaseSizes);
}

void StandartApplication::CompareStreamedFiles(RunId p_Run, bool p_FirstBuild, bool p_Wait,
                                               Entries const& p_Entries)
{
    ManifestComparison const comparison = ComparisonFor(p_Run, p_Entries.size());
    QString const& list = PendingList::c_Streamed;
    Entries found;
    if (p_FirstBuild || FirstBuildOwes(comparison.Folder, list)) {
        auto examined = comparison.Examine(p_Entries);
        QStringList paths;
        for (ApplicationManifestFileEntry const& entry : examined.Files)
            paths += entry.Path;
        RecordFirstBuild(p_Run, comparison.Folder, list, paths, examined.IsWhole);
        found = std::move(examined.Files);
    } else {
        found = comparison.Named(
            p_Entries, PendingList::Read(comparison.Folder + list, comparison.Continue).Paths);
    }

    bool const nothing = found.empty();
    if (!PublishList(p_Run, std::move(found), false))
        return;
    if (nothing)
        EnqueueSync([this, p_Run] { EndRun(p_Run); });
    else
        RequestSizes(p_Run, [this, p_Run, p_Wait] { BeginStreamedFiles(p_Run, p_Wait); });
}

void StandartApplication::RecordFirstBuild(RunId p_Run, QString const& p_Folder,
                                           QString const& p_List, QStringList p_Paths, bool p_Whole)
{
    QMutexLocker const lock(&ListMutex);
    if (!IsCurrentRun(p_Run))
        return;
    if (!p_Whole) {
        QSet<QString> const found(p_Paths.begin(), p_Paths.end());
        for (QString const& path : PendingList::Read(p_Folder + p_List, [] { return true; }).Paths)
            if (!found.contains(path))
                p_Paths += path;
    }
    if (!PendingList::Write(p_Folder + p_List, p_Paths) || !p_Whole)
        return;
    QString const note = p_Folder + PendingList::c_FirstBuild;
    if (p_List == PendingList::c_Base)
        PendingList::Write(note, {PendingList::c_Streamed});
    else if (!FirstBuildOwes(p_Folder, PendingList::c_Base))
        QFile::remove(note);
}

bool StandartApplication::PublishList(RunId p_Run, Entries p_Files, bool p_Base)
{
    RunScope const scope(*this, p_Run);
    if (!scope)
        return false;
    IsDownloadingBase = p_Base;
    FilesToDownload = std::move(p_Files);
    if (!FilesToDownload.empty()) {
        // A resume can begin with the files before the sizes are known.
        CurrentDownloadIndex = 0;
        DownloadedBytes = 0;
    }
    return true;
}

QString StandartApplication::CurrentListPath() const
{
    QMutexLocker const lock(&RunMutex);
    return Folder() + (IsDownloadingBase ? PendingList::c_Base : PendingList::c_Streamed);
}

} // namespace Varnholt::Launcher
