#include "Host/Core/HostOptions.hpp"

#include <QCoreApplication>
#include <QDir>
#include <QStandardPaths>
#include <QStorageInfo>
#include <QUrl>

namespace Varnholt::Host {

QString HostOptions::DefaultModuleFile()
{
#ifdef Q_OS_MACOS
    QString const name = QStringLiteral("../plugins/libPelmora.dylib");
#else
    QString const name = QStringLiteral("../plugins/libPelmora.so");
#endif
    return QDir::cleanPath(QDir(QCoreApplication::applicationDirPath()).filePath(name));
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

} // namespace Varnholt::Host
