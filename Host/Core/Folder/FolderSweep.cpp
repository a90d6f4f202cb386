#include "Host/Core/Folder/FolderSweep.hpp"

#include "GameModules/LinkGuard.hpp"
#include "GameModules/Pelmora/LoginScreen.hpp"
#include "GameModules/PendingList.hpp"
#include "Launcher/Helper/Paths.hpp"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace Varnholt::Host::FolderSweep {

namespace {

/// The folder of a file and those above it, as far as they are empty.
void RemoveEmptyFolders(QString const& p_Folder, QString const& p_Path)
{
    QString path = QFileInfo(p_Path).path();
    while (path != QLatin1String(".") && QDir().rmdir(p_Folder + path))
        path = QFileInfo(path).path();
}

} // namespace

void Run(Launcher::ApplicationManifest const& p_Manifest, QString const& p_Folder)
{
    namespace PendingList = Launcher::PendingList;

    for (QString const& list : {PendingList::c_Base, PendingList::c_Streamed, PendingList::c_Casc,
                                PendingList::c_FirstBuild})
        QFile::remove(p_Folder + list);
    Launcher::LinkGuard links(p_Folder);
    // In the login screen's own place a link is only that.
    QString const screenFolder = QFileInfo(QLatin1String(Launcher::LoginScreen::c_Layout)).path();
    if (!links.LeadingOut(screenFolder)) {
        for (char const* const screen :
             {Launcher::LoginScreen::c_Layout, Launcher::LoginScreen::c_Script})
            QFile::remove(p_Folder + QLatin1String(screen));
        RemoveEmptyFolders(p_Folder, QLatin1String(Launcher::LoginScreen::c_Layout));
    }
    for (auto const* const entries : {&p_Manifest.Files, &p_Manifest.StreamedFiles})
        for (Launcher::ApplicationManifestFileEntry const& entry : *entries) {
            if (links.OnTheWay(entry.Path))
                continue;
            QFile::remove(Launcher::Helper::Paths::PartFile(p_Folder + entry.Path));
            RemoveEmptyFolders(p_Folder, entry.Path);
        }
}

} // namespace Varnholt::Host::FolderSweep
