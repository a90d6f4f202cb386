#pragma once

#include "Tests/Support/FileTools.hpp"

#include <QString>

#ifdef Q_OS_LINUX
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#endif

namespace Varnholt::TestSupport {

/// Makes a file or folder one that not even root can change, as long as it lives.
class ImmutableFile {
public:
    explicit ImmutableFile(QString const& p_Path)
        : Path(p_Path)
        , Held(Set(true))
    {
    }
    ~ImmutableFile()
    {
        if (Held)
            Set(false);
    }
    ImmutableFile(ImmutableFile const&) = delete;
    ImmutableFile& operator=(ImmutableFile const&) = delete;

    /// False where this user may not do so, or the file system has no such thing.
    bool Holds() const { return Held; }

private:
    bool Set(bool p_IsImmutable) const
    {
#ifdef Q_OS_LINUX
        int const file = ::open(Path.toUtf8().constData(), O_RDONLY | O_CLOEXEC);
        if (file < 0)
            return false;
        unsigned flags = 0;
        bool done = ::ioctl(file, FS_IOC_GETFLAGS, &flags) == 0;
        unsigned const immutable = FS_IMMUTABLE_FL;
        flags = p_IsImmutable ? flags | immutable : flags & ~immutable;
        done = done && ::ioctl(file, FS_IOC_SETFLAGS, &flags) == 0;
        ::close(file);
        return done;
#else
        Q_UNUSED(p_IsImmutable);
        return false;
#endif
    }

    QString Path;
    bool Held;
};

} // namespace Varnholt::TestSupport
