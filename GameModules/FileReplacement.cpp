#include "GameModules/FileReplacement.hpp"

#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Varnholt::Launcher::FileReplacement {

namespace {

/// Where a file is, or would be made, that is perhaps named by a link.
QString TargetOf(QString const& p_Path)
{
    QFileInfo const file(p_Path);
    if (!file.isSymbolicLink())
        return p_Path;
    return file.exists() ? file.canonicalFilePath() : file.symLinkTarget();
}

bool Holds(QFileInfo const& p_File, QByteArray const& p_Content)
{
    // Its size and kind first: a pipe would not be read to its end.
    QFile file(p_File.filePath());
    return p_File.isFile() && p_File.size() == p_Content.size() && file.open(QIODevice::ReadOnly) &&
           file.readAll() == p_Content;
}

bool WriteAll(QFile& p_File, QByteArray const& p_Content)
{
    bool const written = p_File.write(p_Content) == p_Content.size() && p_File.flush();
    // Some file systems tell of a full disk only now.
    return written && (::fsync(p_File.handle()) == 0 || errno == EINVAL);
}

bool WriteInPlace(QString const& p_Path, QByteArray const& p_Content)
{
    QFile file(p_Path);
    return file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) && WriteAll(file, p_Content);
}

} // namespace

bool Replace(QString const& p_Path, QByteArray const& p_Content)
{
    constexpr mode_t c_Private = 0600;
    constexpr mode_t c_AsTheUserHasIt = 0666;

    QString const target = TargetOf(p_Path);
    QByteArray const name = QFile::encodeName(target + QLatin1String(c_Suffix));
    ::unlink(name.constData());
    QFileInfo const old(target);
    if (Holds(old, p_Content))
        return true;
    if (old.exists() && (!old.isFile() || !old.isWritable()))
        return false;
    // Not for others, not even for a moment, when the old one is not.
    int const handle = ::open(name.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC,
                              old.exists() ? c_Private : c_AsTheUserHasIt);
    if (handle < 0)
        return errno == EACCES && WriteInPlace(target, p_Content);

    QFile fresh;
    bool const replaced = fresh.open(handle, QIODevice::WriteOnly | QIODevice::Unbuffered,
                                     QFileDevice::AutoCloseHandle) &&
                          (!old.exists() || fresh.setPermissions(old.permissions())) &&
                          WriteAll(fresh, p_Content) &&
                          std::rename(name.constData(), QFile::encodeName(target).constData()) == 0;
    if (!replaced)
        ::unlink(name.constData());
    return replaced;
}

} // namespace Varnholt::Launcher::FileReplacement
