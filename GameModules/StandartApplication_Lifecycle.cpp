#include "GameModules/StandartApplication.hpp"

#include "GameModules/FileLink.hpp"
#include "GameModules/PendingList.hpp"
#include "GameModules/PermissionBits.hpp"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMutexLocker>

namespace Varnholt::Launcher {

void StandartApplication::Install(QString const& p_Path, bool p_Flag)
{
    Application::Install(p_Path, p_Flag);
    ReplaceList(); // or a comparison that ends meanwhile would write its list anew
    if (!p_Flag)
        NoteFirstBuild(p_Path);
    WriteSetting(SettingKey(".Installed"), true);
    WriteSetting(SettingKey(".InstallFolder"), p_Path);
    SetFirstManifestBuild(!p_Flag);
    MarkManifestBuilt();
    GetInstallationPath();
    if (p_Flag)
        RemoveLists({PendingList::c_Base, PendingList::c_Streamed, PendingList::c_Casc,
                     PendingList::c_FirstBuild});
    OnInstall();
    OnManifestReceived();
}

void StandartApplication::Repair()
{
    if (!IsInstalled())
        return;
    SetFirstManifestBuild(true);
    OnManifestReceived();
}

void StandartApplication::AbortRepair()
{
    SuspendDownload();
    ReplaceList();
    GetInstallationPath();
    RemoveLists({PendingList::c_Casc, PendingList::c_Base, PendingList::c_Streamed,
                 PendingList::c_FirstBuild});
    SetFirstManifestBuild(false);
    MarkManifestBuilt();
    OnManifestReceived();
}

void StandartApplication::Uninstall(bool p_Flag)
{
    GetInstallationPath();
    QString const folder = Folder();
    Links.Begin(folder);
    if (p_Flag && !folder.isEmpty())
        // Copies: a host that is told of an error may do anything.
        for (Entries const& entries : {Manifest.Files, Manifest.StreamedFiles})
            for (ApplicationManifestFileEntry const& entry : entries)
                if (!Links.IsBarred(folder, entry.Path))
                    DeleteGameFile(folder + entry.Path);

    QString const prefix = SettingKey(".");
    for (QString const& key : ListSettingKeys())
        if (key.contains(prefix, Qt::CaseInsensitive))
            RemoveSetting(key);
    RemoveLists({PendingList::c_FirstBuild});
    {
        QMutexLocker const lock(&RunMutex);
        FilesToDownload.clear();
    }
    Transfers.SetAside(); // goes on, but its signals are ignored
    OnManifestReceived();
}

void StandartApplication::DeleteGameFile(QString const& p_Path)
{
    bool const isLink = FileLink::At(p_Path) != FileLink::Kind::None;
    QFile file(p_Path);
    if (!isLink && !file.exists())
        return;
    // Masked, not added to: a read-only file keeps no permission at all.
    if (!isLink)
        file.setPermissions(file.permissions() & PermissionBits::c_Write);
    if (!file.remove())
        ReportFileError(file);
    // Takes away an empty folder that stands in the file's place; emptied parents stay.
    QDir folder(QFileInfo(p_Path).absoluteFilePath());
    if (folder
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                       QDir::Unsorted)
            .isEmpty())
        folder.removeRecursively();
}

void StandartApplication::RemoveLists(std::vector<QString> const& p_Names)
{
    QString const folder = Folder();
    if (folder.isEmpty())
        return;
    QMutexLocker const lock(&ListMutex);
    for (QString const& name : p_Names)
        if (QFile::exists(folder + name))
            QFile::remove(folder + name);
}

} // namespace Varnholt::Launcher
