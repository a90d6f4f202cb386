#include "Host/Core/Folder/FolderLock.hpp"

#include "Files/HostLockName.hpp"

#include <cerrno>

namespace Varnholt::Host {

namespace {

/// Something else stands where the file belongs.
bool IsInTheWay(int p_Error)
{
    return p_Error == EEXIST || p_Error == EISDIR || p_Error == ELOOP;
}

/// No warning for these: in a folder that cannot be written no other program is at work either.
bool IsForbidden(int p_Error)
{
    return p_Error == EACCES || p_Error == EPERM || p_Error == EROFS;
}

} // namespace

QString const FolderLock::c_File = QString::fromLatin1(c_HostLockName);

FolderLock::FolderLock(QString const& p_Folder)
    : Folder(p_Folder)
    , File(p_Folder + c_File)
{
}

std::optional<Failure> FolderLock::Take()
{
    FileLock::Outcome const outcome = File.Take();
    if (outcome == FileLock::Outcome::Held)
        return Failure{FailureKind::FolderLocked, Folder, File.Holder()};
    if (outcome == FileLock::Outcome::Failed && IsInTheWay(File.Error()))
        return Failure{FailureKind::FileUnwritable, Folder + c_File, qt_error_string(File.Error())};
    return std::nullopt;
}

std::optional<Notice> FolderLock::Warning() const
{
    if (File.IsTaken() || IsForbidden(File.Error()))
        return std::nullopt;
    return Notice{NoticeKind::FolderNotLocked, Folder, qt_error_string(File.Error())};
}

} // namespace Varnholt::Host
