#include "Host/Core/Folder/GameRemoval.hpp"

#include "GameModules/LinkGuard.hpp"
#include "GameModules/PendingList.hpp"
#include "Launcher/Helper/Paths.hpp"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace Varnholt::Host {

GameRemoval::GameRemoval(Launcher::ApplicationManifest p_Manifest, QString p_Folder,
                         QStringList p_LoginFiles)
    : Manifest(std::move(p_Manifest))
    , Folder(std::move(p_Folder))
    , LoginFiles(std::move(p_LoginFiles))
    , Count(static_cast<quint32>(Manifest.Files.size() + Manifest.StreamedFiles.size()))
{
}

void GameRemoval::Run()
{
    namespace PendingList = Launcher::PendingList;

    RemoveLoginFiles();
    Launcher::LinkGuard links(Folder);
    for (auto const* const entries : {&Manifest.Files, &Manifest.StreamedFiles})
        for (Launcher::ApplicationManifestFileEntry const& entry : *entries) {
            if (Stopped)
                return;
            ++Number;
            if (links.OnTheWay(entry.Path))
                continue;
            QFile::remove(Launcher::Helper::Paths::PartFile(Folder + entry.Path));
            if (!QFile::remove(Folder + entry.Path))
                QDir().rmdir(Folder + entry.Path); // an empty folder in the file's place
            RemoveEmptyFolders(entry.Path);
        }
    for (QString const& list : {PendingList::c_Base, PendingList::c_Streamed, PendingList::c_Casc,
                                PendingList::c_FirstBuild})
        QFile::remove(Folder + list);
    Finished = true;
}

/// In the login screen's own place a link is only that.
void GameRemoval::RemoveLoginFiles() const
{
    Launcher::LinkGuard links(Folder);
    for (QString const& file : LoginFiles) {
        if (links.LeadingOut(QFileInfo(file).path()))
            continue;
        QFile::remove(Folder + file);
        RemoveEmptyFolders(file);
    }
}

/// The folder of a file and those above it, as far as they are empty.
void GameRemoval::RemoveEmptyFolders(QString const& p_Path) const
{
    QString path = QFileInfo(p_Path).path();
    while (path != QLatin1String(".") && QDir().rmdir(Folder + path))
        path = QFileInfo(path).path();
}

QStringList GameRemoval::Remaining(Launcher::ApplicationManifest const& p_Manifest,
                                   QString const& p_Folder)
{
    QStringList remaining;
    for (auto const* const entries : {&p_Manifest.Files, &p_Manifest.StreamedFiles})
        for (Launcher::ApplicationManifestFileEntry const& entry : *entries)
            if (QFileInfo(p_Folder + entry.Path).isFile())
                remaining += entry.Path;
    remaining.removeDuplicates();
    return remaining;
}

} // namespace Varnholt::Host
