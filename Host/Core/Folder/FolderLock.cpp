#include "Host/Core/Folder/FolderLock.hpp"

#include "Host/Core/Folder/DeadLock.hpp"

#include <QFile>

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
    // Who takes a dead lock away locks that, and may die at it too.
    QString const removal = Path + QStringLiteral(".rmlock");
    RemoveDeadLock(removal, false);
    bool const taken = TryFile() || (RemoveDeadLock(Path, true) && TryFile());
    if (taken && QFile::exists(removal))
        QLockFile(removal).tryLock(); // and let go, which removes it
    return taken;
}

bool FolderLock::TryFile()
{
    return File.tryLock() || File.error() != QLockFile::LockFailedError;
}

} // namespace Varnholt::Host
