#include "Host/Window/Settings/SettingsWatch.hpp"

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
        Begin(); // a file that was replaced is another one
        Read();
    });
    connect(&File, &AsyncSettings::WasRead, this, &SettingsWatch::WasRead);
    connect(&File, &AsyncSettings::Written, this, [this](std::optional<Failure> const& p_Failure) {
        Begin(); // its folder may be there only now
        if (p_Failure)
            Q_EMIT WriteFailed(*p_Failure);
    });
}

void SettingsWatch::Begin()
{
    Watcher.addPaths({QFileInfo(Path).path(), Path});
}

} // namespace Varnholt::Host
