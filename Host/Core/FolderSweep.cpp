#include "Host/Core/FolderSweep.hpp"

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
    for (QString const& list : {Launcher::PendingList::c_Base, Launcher::PendingList::c_Streamed,
                                Launcher::PendingList::c_Casc})
        QFile::remove(p_Folder + list);
    // What a link on the way leads out to is not the game's; a link in a file's place is only that.
    Launcher::LinkGuard links(p_Folder);
    auto const isInside = [&](QString const& p_Path) {
        QString const above = QFileInfo(p_Path).path();
        return above == QLatin1String(".") || !links.LeadingOut(above);
    };
    for (char const* const screen :
         {Launcher::LoginScreen::c_Layout, Launcher::LoginScreen::c_Script})
        if (isInside(QLatin1String(screen)))
            QFile::remove(p_Folder + QLatin1String(screen));
    for (auto const* const entries : {&p_Manifest.Files, &p_Manifest.StreamedFiles})
        for (Launcher::ApplicationManifestFileEntry const& entry : *entries) {
            if (!isInside(entry.Path))
                continue;
            QFile::remove(Launcher::Helper::Paths::PartFile(p_Folder + entry.Path));
            RemoveEmptyFolders(p_Folder, entry.Path);
        }
    if (isInside(QLatin1String(Launcher::LoginScreen::c_Layout)))
        RemoveEmptyFolders(p_Folder, QLatin1String(Launcher::LoginScreen::c_Layout));
}

} // namespace Varnholt::Host::FolderSweep
