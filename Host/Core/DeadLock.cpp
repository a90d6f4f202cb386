#include "Host/Core/DeadLock.hpp"

#include <QCoreApplication>
#include <QFile>
#include <QThread>

#ifdef Q_OS_UNIX
#include <sys/file.h>
#endif

namespace Varnholt::Host {

bool RemoveDeadLock(QString const& p_Path, bool p_OwnIsDead)
{
#ifdef Q_OS_UNIX
    constexpr unsigned long c_WriteMilliseconds = 100; // far more than a living owner takes

    QFile file(p_Path);
    if (!file.open(QIODevice::ReadWrite | QIODevice::ExistingOnly))
        return false;
    // An owner who lives has the file locked.
    if (::flock(file.handle(), LOCK_EX | LOCK_NB) != 0)
        return false;
    if (file.size() == 0)
        QThread::msleep(c_WriteMilliseconds);
    QByteArray const owner = file.readLine().trimmed();
    bool const isOwn = owner.toLongLong() == QCoreApplication::applicationPid();
    return (owner.isEmpty() || (p_OwnIsDead && isOwn)) && file.remove();
#else
    Q_UNUSED(p_Path);
    Q_UNUSED(p_OwnIsDead);
    return false;
#endif
}

} // namespace Varnholt::Host
