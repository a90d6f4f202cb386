#include "Host/Core/Settings/HostOptions.hpp"

#include "Launcher/Application/ContentServer.hpp"
#include "Launcher/Helper/Paths.hpp"

#include <QCoreApplication>
#include <QDir>
#include <QStandardPaths>
#include <QStorageInfo>
#include <QUrl>

#ifdef Q_OS_LINUX
#include <fcntl.h>
#endif
#include <unistd.h>

namespace Varnholt::Host {

namespace {

constexpr char c_ModuleName[] = "/" VARNHOLT_MODULE_NAME;

} // namespace

QString HostOptions::ContentServer() const
{
    return ContentUrl.isEmpty() ? Launcher::DefaultContentBaseUrl()
                                : Launcher::Helper::Paths::WithSlash(ContentUrl);
}

QString HostOptions::DefaultModuleFile()
{
    QDir const folder(QCoreApplication::applicationDirPath());
    QString const built =
        folder.filePath(QLatin1String("../plugins") + QLatin1String(c_ModuleName));
    return QDir::cleanPath(QFileInfo::exists(built) ? built
                                                    : folder.filePath(InstalledModuleFile()));
}

QString HostOptions::InstalledModuleFile()
{
    return QLatin1String(VARNHOLT_MODULE_FOLDER) + QLatin1String(c_ModuleName);
}

QString HostOptions::DefaultSettingsFile()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           QLatin1Char('/') + QLatin1String(c_SettingsName);
}

bool HostOptions::IsContentUrl(QString const& p_Text)
{
    QUrl const url(p_Text, QUrl::StrictMode);
    bool const isHttp =
        url.scheme() == QLatin1String("http") || url.scheme() == QLatin1String("https");
    return url.isValid() && isHttp && !url.hasQuery() && !url.hasFragment() &&
           !url.host().isEmpty() && url.userInfo().isEmpty();
}

qint64 HostOptions::VolumeFreeBytes(QString const& p_Path)
{
    QStorageInfo const volume(p_Path);
    return volume.isValid() ? volume.bytesAvailable() : -1;
}

void HostOptions::FlushVolume(QString const& p_Path)
{
#ifdef Q_OS_LINUX
    int const folder = ::open(p_Path.toUtf8().constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder < 0)
        return;
    ::syncfs(folder);
    ::close(folder);
#else
    Q_UNUSED(p_Path);
    ::sync(); // of every volume
#endif
}

} // namespace Varnholt::Host
