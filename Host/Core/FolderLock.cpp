#include "Host/Core/FolderLock.hpp"

#include "Host/Core/DeadLock.hpp"

namespace Varnholt::Host {

QString const FolderLock::c_File = QStringLiteral(".varnholt-host.lock");

FolderLock::FolderLock(QString const& p_Folder)
    : Path(p_Folder + c_File)
    , File(Path)
{
    File.setStaleLockTime(0); // a run takes hours; only a lock whose owner has died is stale
}

bool FolderLock::Take()
{
    if (File.tryLock() || File.error() != QLockFile::LockFailedError)
        return true;
    return RemoveDeadLock(Path, true) &&
           (File.tryLock() || File.error() != QLockFile::LockFailedError);
}

} // namespace Varnholt::Host
