#include "Tests/Faults/Referee.hpp"

#include <QCryptographicHash>
#include <QFile>

#include <sys/stat.h>

namespace Varnholt::TestSupport {

namespace {

QByteArray DigestOf(QByteArray const& p_Bytes)
{
    return QCryptographicHash::hash(p_Bytes, QCryptographicHash::Md5);
}

} // namespace

Referee::Referee(HostGame const& p_Game)
    : Game(p_Game)
{
    for (SampleFile const& file : Game.Content.Files)
        Allow(file.Path, file.Bytes);
}

void Referee::Allow(QString const& p_File, QByteArray const& p_Bytes)
{
    Allowed[p_File] += DigestOf(p_Bytes);
}

bool Referee::Read(QString const& p_Path, Stamp& p_Stamp, QByteArray& p_Digest,
                   Stamp const& p_Known)
{
    QFile file(p_Path);
    struct stat status = {};
    // Of the open file: by its name it may be another one at the next moment.
    if (!file.open(QIODevice::ReadOnly) || fstat(file.handle(), &status) != 0)
        return false;
    p_Stamp.Inode = status.st_ino;
    p_Stamp.Size = status.st_size;
#ifdef Q_OS_MACOS
    timespec const changed = status.st_mtimespec;
#else
    timespec const changed = status.st_mtim;
#endif
    p_Stamp.Nanoseconds = qint64(changed.tv_sec) * 1'000'000'000 + changed.tv_nsec;
    if (p_Stamp == p_Known)
        return false;
    p_Digest = DigestOf(file.readAll());
    return true;
}

void Referee::Look()
{
    for (auto row = Allowed.constBegin(); row != Allowed.constEnd(); ++row) {
        Stamp stamp;
        QByteArray digest;
        if (!Read(Game.Path(row.key()), stamp, digest, Seen.value(row.key())))
            continue;
        Seen[row.key()] = stamp;
        QString const sentence = QStringLiteral("%1 stood there with wrong content").arg(row.key());
        if (!row.value().contains(digest) && !Found.contains(sentence))
            Found += sentence;
    }
}

QStringList Referee::Faults() const
{
    return Found;
}

} // namespace Varnholt::TestSupport
