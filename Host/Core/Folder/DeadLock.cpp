#include "Host/Core/Folder/DeadLock.hpp"

#include <QCoreApplication>
#include <QFile>
#include <QThread>

#ifdef Q_OS_UNIX
#include <sys/file.h>
#endif

namespace Varnholt::Host {

namespace {

/// The process, the program, the machine, and what else there is, each on a line.
bool IsWhole(QFile& p_File)
{
    constexpr int c_Lines = 3;

    p_File.seek(0);
    QByteArray const text = p_File.readAll();
    return text.endsWith('\n') && text.count('\n') >= c_Lines;
}

bool IsOwn(QFile& p_File)
{
    p_File.seek(0);
    return p_File.readLine().trimmed().toLongLong() == QCoreApplication::applicationPid();
}

} // namespace

bool RemoveDeadLock(QString const& p_Path, bool p_OwnIsDead)
{
#ifdef Q_OS_UNIX
    constexpr unsigned long c_WriteMilliseconds = 100; // far more than a living owner takes

    QFile file(p_Path);
    if (!file.open(QIODevice::ReadWrite | QIODevice::ExistingOnly | QIODevice::Unbuffered))
        return false;
    // An owner who lives has the file locked.
    if (::flock(file.handle(), LOCK_EX | LOCK_NB) != 0)
        return false;
    if (!IsWhole(file))
        QThread::msleep(c_WriteMilliseconds);
    bool const isDead = !IsWhole(file) || (p_OwnIsDead && IsOwn(file));
    return isDead && file.remove();
#else
    Q_UNUSED(p_Path);
    Q_UNUSED(p_OwnIsDead);
    return false;
#endif
}

} // namespace Varnholt::Host
