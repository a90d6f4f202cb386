#pragma once

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QString>

#include <sys/stat.h>
#include <unistd.h>

namespace Varnholt::TestSupport {

/// Writes a file and the folders above it. \return false when it cannot be written
[[nodiscard]] inline bool WriteFile(QString const& p_Path, QByteArray const& p_Bytes)
{
    QDir().mkpath(QFileInfo(p_Path).absolutePath());
    QFile file(p_Path);
    return file.open(QIODevice::WriteOnly) && file.write(p_Bytes) == p_Bytes.size() && file.flush();
}

/// The content of a file; null when it cannot be read.
inline QByteArray ReadFile(QString const& p_Path)
{
    QFile file(p_Path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    // Within its size: a device would be read without end.
    QByteArray const bytes = file.read(file.size());
    return bytes.isNull() ? QByteArray("") : bytes;
}

/// All twelve mode bits of a file, -1 when there is none.
inline int ModeOf(QString const& p_Path)
{
    struct stat status = {};
    if (stat(p_Path.toUtf8().constData(), &status) != 0)
        return -1;
    return static_cast<int>(status.st_mode & 07777u);
}

inline bool SetMode(QString const& p_Path, unsigned p_Mode)
{
    return chmod(p_Path.toUtf8().constData(), p_Mode) == 0;
}

/// Makes a link one of another user than this, or than root. \return false when it cannot be done:
/// only root can
[[nodiscard]] inline bool GiveLinkToAnother(QString const& p_Path)
{
    constexpr unsigned c_Nobody = 65534;
    return lchown(p_Path.toUtf8().constData(), c_Nobody, c_Nobody) == 0;
}

/// Permissions do not stop this user.
inline bool IsRoot()
{
    return geteuid() == 0;
}

} // namespace Varnholt::TestSupport
