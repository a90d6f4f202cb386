#include "GameModules/StandartApplication.hpp"

#include "GameModules/ManifestComparison.hpp"
#include "GameModules/PendingList.hpp"
#include "Launcher/Application/LogCategories.hpp"

#include <QDir>
#include <QMutexLocker>

namespace Varnholt::Launcher {

namespace {

QString WithSlash(QString p_Path)
{
    if (!p_Path.endsWith(QLatin1Char('/')))
        p_Path += QLatin1Char('/');
    return p_Path;
}

/// Adds what a list holds so far: a comparison that was stopped early has not looked at all of it.
void KeepListed(QString const& p_ListPath, QStringList& p_Recorded)
{
    QSet<QString> recorded(p_Recorded.begin(), p_Recorded.end());
    for (QString const& path : PendingList::Read(p_ListPath, [] { return true; }).Paths) {
        if (recorded.contains(path))
            continue;
        recorded.insert(path);
        p_Recorded += path;
    }
}

} // namespace

void StandartApplication::OnManifestReceived()
{
    RunId const run = BeginRun();
    SettleFolder();
    LookAtLinksAnew();
    bool const installed = IsInstalled();
    if (installed) {
        // One that an uninstallation has let go could wait for a silent server for ever.
        StopTransfersAside();
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

void StandartApplication::SettleFolder()
{
    QString const recorded = GetInstallationPath();
    if (recorded.isEmpty())
        return;
    QString path = WithSlash(recorded);
    // A launcher's own folder is no place for a game: it moves one level down.
    if (IsInstalled() && path == WithSlash(QDir::currentPath())) {
        path += Name + QLatin1Char('/');
        WriteSetting(SettingKey(".InstallFolder"), path);
        IsFirstManifestBuild = true;
    }
    QMutexLocker const lock(&RunMutex);
    InstallationPath = path;
}

void StandartApplication::ShowComparison(std::size_t p_Count)
{
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
    comparison.LeadsOut = [this](QString const& p_Path) { return LeadsOut(p_Path); };
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
    Entries found = comparison.Examine(p_Entries);

    QString const list = comparison.Folder + PendingList::c_Base;
    QStringList recorded;
    if (p_FirstBuild) {
        for (ApplicationManifestFileEntry const& entry : found)
            if (entry.Has(ApplicationManifestFileEntry::FirstBuildOnly))
                recorded += entry.Path;
        if (!comparison.Continue())
            KeepListed(list, recorded);
    } else {
        QStringList const paths = PendingList::Read(list, comparison.Continue).Paths;
        Entries const leftOver = comparison.LeftOver(p_Entries, paths, found);
        found.insert(found.end(), leftOver.begin(), leftOver.end());
    }

    bool const nothing = found.empty();
    if (!PublishList(p_Run, std::move(found), true, p_FirstBuild ? &recorded : nullptr))
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
    QString const list = comparison.Folder + PendingList::c_Streamed;
    Entries found;
    QStringList recorded;
    if (p_FirstBuild) {
        found = comparison.Examine(p_Entries);
        for (ApplicationManifestFileEntry const& entry : found)
            recorded += entry.Path;
        if (!comparison.Continue())
            KeepListed(list, recorded);
    } else {
        found = comparison.Named(p_Entries, PendingList::Read(list, comparison.Continue).Paths);
    }

    bool const nothing = found.empty();
    if (!PublishList(p_Run, std::move(found), false, p_FirstBuild ? &recorded : nullptr))
        return;
    if (nothing)
        EnqueueSync([this, p_Run] { EndRun(p_Run); });
    else
        RequestSizes(p_Run, [this, p_Run, p_Wait] { BeginStreamedFiles(p_Run, p_Wait); });
}

bool StandartApplication::PublishList(RunId p_Run, Entries p_Files, bool p_Base,
                                      QStringList const* p_Recorded)
{
    RunScope const scope(*this, p_Run);
    if (!scope)
        return false;
    IsDownloadingBase = p_Base;
    if (p_Recorded != nullptr)
        PendingList::Write(CurrentListPath(), *p_Recorded);
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
    return Folder() + (IsDownloadingBase ? PendingList::c_Base : PendingList::c_Streamed);
}

} // namespace Varnholt::Launcher
