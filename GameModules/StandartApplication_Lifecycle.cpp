#include "GameModules/StandartApplication.hpp"

#include "GameModules/PendingList.hpp"

#include <QFile>

namespace Varnholt::Launcher {

void StandartApplication::Install(QString const& p_Path, bool p_Flag)
{
    Application::Install(p_Path, p_Flag);
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
    GetInstallationPath();
    RemoveLists({PendingList::c_Casc, PendingList::c_Base, PendingList::c_Streamed});
    IsFirstManifestBuild = false;
    MarkManifestBuilt();
    OnManifestReceived();
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
