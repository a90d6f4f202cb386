#pragma once

#include <QFile>
#include <QString>

#include <sys/stat.h>

namespace Varnholt::TestSupport {

/// Remembers a file, which must be readable, as it is at its making.
class FileWatch {
public:
    explicit FileWatch(QString const& p_Path)
        : File(p_Path)
    {
        // Held open, its number is not given to another file.
        if (!File.open(QIODevice::ReadOnly))
            qFatal("%s cannot be watched", qPrintable(p_Path));
        fstat(File.handle(), &Before);
    }

    /// The same file stands there, and nobody has written to it.
    bool IsUntouched() const
    {
        struct stat now = {};
        return stat(QFile::encodeName(File.fileName()).constData(), &now) == 0 &&
               now.st_ino == Before.st_ino && ModifiedAt(now) == ModifiedAt(Before);
    }

private:
    static qint64 ModifiedAt(struct stat const& p_Status)
    {
#ifdef Q_OS_DARWIN
        timespec const time = p_Status.st_mtimespec;
#else
        timespec const time = p_Status.st_mtim;
#endif
        return qint64{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
    }

    QFile File;
    struct stat Before = {};
};

} // namespace Varnholt::TestSupport
