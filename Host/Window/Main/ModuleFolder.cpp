#include "Host/Window/Main/ModuleFolder.hpp"

#include <QDir>
#include <QLibrary>

namespace Varnholt::Host {

ModuleFolder::ModuleFolder(QString p_Folder, QObject* p_Parent)
    : QObject(p_Parent)
    , Folder(std::move(p_Folder))
{
    constexpr int c_SettlingMilliseconds = 300;

    Settling.setSingleShot(true);
    Settling.setInterval(c_SettlingMilliseconds);
    connect(&Settling, &QTimer::timeout, this, &ModuleFolder::Look);
    connect(&Watcher, &QFileSystemWatcher::directoryChanged, this, [this] { Settling.start(); });
    connect(&Watcher, &QFileSystemWatcher::fileChanged, this, [this](QString const& p_File) {
        Known.erase(p_File);
        Settling.start();
    });
}

void ModuleFolder::Watch()
{
    Watcher.addPath(Folder);
    Look();
}

void ModuleFolder::LookAgainAt(QString const& p_File)
{
    Watcher.addPath(p_File);
}

void ModuleFolder::Look()
{
    QStringList files;
    for (QFileInfo const& entry : QDir(Folder).entryInfoList(QDir::Files, QDir::Name))
        if (QLibrary::isLibrary(entry.fileName()) && Known.insert(entry.absoluteFilePath()).second)
            files += entry.absoluteFilePath();
    Q_EMIT Appeared(files);
}

} // namespace Varnholt::Host
