#include "GameModules/StandartApplication.hpp"

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
    WriteSetting(SettingKey(".Installed"), true);
    WriteSetting(SettingKey(".InstallFolder"), p_Path);
    IsFirstManifestBuild = !p_Flag;
    MarkManifestBuilt();
    GetInstallationPath();
    if (p_Flag)
        RemoveLists({PendingList::c_Base, PendingList::c_Streamed, PendingList::c_Casc});
    OnInstall();
    OnManifestReceived();
}

void StandartApplication::Repair()
{
    if (!IsInstalled())
        return;
    IsFirstManifestBuild = true;
    OnManifestReceived();
}

void StandartApplication::AbortRepair()
{
    SuspendDownload();
    ReplaceList();
    GetInstallationPath();
    RemoveLists({PendingList::c_Casc, PendingList::c_Base, PendingList::c_Streamed});
    IsFirstManifestBuild = false;
    MarkManifestBuilt();
    OnManifestReceived();
}

void StandartApplication::Uninstall(bool p_Flag)
{
    GetInstallationPath();
    QString const folder = Folder();
    LookAtLinksAnew();
    if (p_Flag && !folder.isEmpty())
        // Copies: a host that is told of an error may do anything.
        for (Entries const& entries : {Manifest.Files, Manifest.StreamedFiles})
            for (ApplicationManifestFileEntry const& entry : entries)
                if (!LeadsOut(entry.Path))
                    DeleteGameFile(folder + entry.Path);

    QString const prefix = SettingKey(".");
    for (QString const& key : ListSettingKeys())
        if (key.contains(prefix, Qt::CaseInsensitive))
            RemoveSetting(key);
    {
        QMutexLocker const lock(&RunMutex);
        FilesToDownload.clear();
    }
    SetTransferAside(); // it is not stopped, but what it still signals is nobody's
    OnManifestReceived();
}

void StandartApplication::DeleteGameFile(QString const& p_Path)
{
    if (!QFile::exists(p_Path))
        return;
    QFile file(p_Path);
    // Masked, not added to: a read-only file keeps no permission at all.
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
    for (QString const& name : p_Names)
        if (QFile::exists(folder + name))
            QFile::remove(folder + name);
}

} // namespace Varnholt::Launcher
