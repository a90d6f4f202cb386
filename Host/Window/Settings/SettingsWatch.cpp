#include "Host/Window/Settings/SettingsWatch.hpp"

#include <QDir>
#include <QFileInfo>

namespace Varnholt::Host {

SettingsWatch::SettingsWatch(QString const& p_File, QObject* p_Parent)
    : QObject(p_Parent)
    , Path(SettingsFile::Canonical(p_File))
    , File(p_File)
{
    constexpr int c_SettlingMilliseconds = 200;

    Settling.setSingleShot(true);
    Settling.setInterval(c_SettlingMilliseconds);
    auto const settle = [this] { Settling.start(); };
    connect(&Watcher, &QFileSystemWatcher::directoryChanged, this, settle);
    connect(&Watcher, &QFileSystemWatcher::fileChanged, this, settle);
    connect(&Settling, &QTimer::timeout, this, [this] {
        Begin(); // a file that was replaced is watched anew
        Read();
    });
    connect(&File, &AsyncSettings::WasRead, this, &SettingsWatch::WasRead);
    connect(&File, &AsyncSettings::Written, this, [this](std::optional<Failure> const& p_Failure) {
        if (p_Failure)
            Q_EMIT WriteFailed(*p_Failure);
    });
}

void SettingsWatch::Begin()
{
    QString const folder = QFileInfo(Path).path();
    QDir().mkpath(folder); // another program may be the first to write there
    Watcher.addPaths({folder, Path});
}

} // namespace Varnholt::Host
