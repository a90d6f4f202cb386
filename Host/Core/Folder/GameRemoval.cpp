#include "Host/Core/Folder/GameRemoval.hpp"

#include "GameModules/LinkGuard.hpp"
#include "GameModules/PendingList.hpp"
#include "Host/Core/Folder/FolderLock.hpp"
#include "Launcher/Helper/Paths.hpp"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QSet>

namespace Varnholt::Host {

GameRemoval::GameRemoval(Launcher::ApplicationManifest p_Manifest, QString p_Folder,
                         QStringList p_LoginFiles)
    : Manifest(std::move(p_Manifest))
    , Folder(std::move(p_Folder))
    , LoginFiles(std::move(p_LoginFiles))
{
}

void GameRemoval::Look()
{
    QSet<QString> going{FolderLock::c_File};
    auto const count = [&](QString const& p_Path) {
        QFileInfo const file(Folder + p_Path);
        bool const isThere = file.isSymLink() || file.isFile();
        if (!isThere || going.contains(p_Path))
            return;
        going.insert(p_Path);
        ToGo.Add(file.isSymLink() ? 0 : file.size());
    };
    VisitLoginFiles(count);
    VisitOthers(count);
    QDirIterator files(Folder, QDir::Files | QDir::Hidden | QDir::System,
                       QDirIterator::Subdirectories);
    while (files.hasNext() && !Stopped) {
        QString const path = files.next().mid(Folder.size());
        if (!going.contains(path))
            ToStay += path;
    }
    Finished = true;
}

void GameRemoval::Run()
{
    VisitLoginFiles([this](QString const& p_Path) { Remove(p_Path); });
    VisitOthers([this](QString const& p_Path) {
        QFileInfo const file(Folder + p_Path);
        Count += file.isFile() ? 1 : 0;
        Total += static_cast<quint64>(file.isFile() ? file.size() : 0);
    });
    VisitOthers([this](QString const& p_Path) { Remove(p_Path); });
    Finished = !Stopped;
}

/// A link in the place of such a file is removed itself: only the folders above it must not lead
/// out.
void GameRemoval::VisitLoginFiles(Visitor const& p_Visit) const
{
    Launcher::LinkGuard links(Folder);
    for (QString const& file : LoginFiles)
        if (!links.LeadingOut(QFileInfo(file).path()))
            p_Visit(file);
}

void GameRemoval::VisitOthers(Visitor const& p_Visit) const
{
    namespace PendingList = Launcher::PendingList;

    Launcher::LinkGuard links(Folder);
    for (auto const* const entries : {&Manifest.Files, &Manifest.StreamedFiles})
        for (Launcher::ApplicationManifestFileEntry const& entry : *entries) {
            if (Stopped)
                return;
            if (links.OnTheWay(entry.Path))
                continue;
            p_Visit(Launcher::Helper::Paths::PartFile(entry.Path));
            p_Visit(entry.Path);
        }
    for (QString const& list : {PendingList::c_Base, PendingList::c_Streamed, PendingList::c_Casc,
                                PendingList::c_FirstBuild})
        p_Visit(list);
}

/// The folder of a file goes too, and those above it, as far as they are empty.
void GameRemoval::Remove(QString const& p_Path)
{
    QFileInfo const file(Folder + p_Path);
    auto const bytes = static_cast<quint64>(file.isFile() ? file.size() : 0);
    if (QFile::remove(file.filePath())) {
        ++Number;
        Done += bytes;
    } else {
        QDir().rmdir(file.filePath()); // an empty folder in the file's place
    }
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
