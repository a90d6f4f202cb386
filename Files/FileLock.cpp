#include "Files/FileLock.hpp"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QFile>
#include <QRegularExpression>
#include <QThread>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Varnholt {

namespace {

/// \return -1 when it cannot be opened, see errno
int Open(QByteArray const& p_Path)
{
    // Not through a link: it would be made, and written, somewhere else.
    constexpr int c_Flags = O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;
    constexpr mode_t c_Mode = 0666;

    int file = ::open(p_Path.constData(), O_RDWR | O_CREAT | c_Flags, c_Mode);
    if (file >= 0 || (errno != EACCES && errno != EROFS))
        return file;
    // To be kept out by another user's lock needs no right to write.
    int const error = errno;
    file = ::open(p_Path.constData(), O_RDONLY | c_Flags);
    errno = error;
    return file;
}

bool IsFile(int p_File)
{
    struct stat status = {};
    return ::fstat(p_File, &status) == 0 && S_ISREG(status.st_mode);
}

/// \return 0 when it is locked, else why not
int Lock(int p_File)
{
    while (::flock(p_File, LOCK_EX | LOCK_NB) != 0)
        if (errno != EINTR)
            return errno;
    return 0;
}

/// Whoever has written it has done so in English.
QString Translated(QString const& p_Name)
{
    static QRegularExpression const form(
        QRegularExpression::anchoredPattern(QStringLiteral("(.+), process (\\d+) on (.+)")));

    auto const match = form.match(p_Name);
    return match.hasMatch()
               ? QCoreApplication::translate("Varnholt::FileLock", "%1, process %2 on %3")
                     .arg(match.captured(1), match.captured(2), match.captured(3))
               : p_Name;
}

QString NameIn(int p_File)
{
    constexpr std::size_t c_Longest = 200;

    char text[c_Longest];
    ssize_t const size = ::pread(p_File, text, sizeof text, 0);
    QString const line = QString::fromUtf8(text, static_cast<int>(qMax<ssize_t>(0, size)));
    QString const name = line.trimmed();
    bool const isText = std::all_of(name.begin(), name.end(),
                                    [](QChar p_Character) { return p_Character.isPrint(); });
    return isText && line.endsWith(QLatin1Char('\n'))
               ? Translated(name)
               : QCoreApplication::translate("Varnholt::FileLock", "it does not say which");
}

} // namespace

FileLock::FileLock(QString p_Path)
    : Path(std::move(p_Path))
{
}

FileLock::~FileLock()
{
    Release();
}

FileLock::Outcome FileLock::Take(int p_Milliseconds)
{
    constexpr unsigned long c_LookMilliseconds = 5;

    QDeadlineTimer const deadline(p_Milliseconds);
    while (!IsTaken()) {
        Outcome const outcome = Try();
        if (outcome != Outcome::Held || deadline.hasExpired())
            return outcome;
        QThread::msleep(c_LookMilliseconds);
    }
    return Outcome::Taken;
}

FileLock::Outcome FileLock::Try()
{
    for (;;) {
        int const file = Open(QFile::encodeName(Path));
        if (file < 0)
            return Fail(errno);
        int const error = IsFile(file) ? Lock(file) : EEXIST;
        if (error == 0 && IsAtPath(file)) {
            File = file;
            WriteName();
            return Outcome::Taken;
        }
        Name = NameIn(file);
        ::close(file);
        if (error == EWOULDBLOCK)
            return Outcome::Held;
        if (error != 0)
            return Fail(error);
        // It was removed between opening and locking: the lock on it would keep nobody out.
    }
}

FileLock::Outcome FileLock::Fail(int p_Error)
{
    Cause = p_Error;
    return Outcome::Failed;
}

bool FileLock::IsAtPath(int p_File) const
{
    struct stat own = {};
    struct stat there = {};
    return ::fstat(p_File, &own) == 0 &&
           ::lstat(QFile::encodeName(Path).constData(), &there) == 0 &&
           own.st_dev == there.st_dev && own.st_ino == there.st_ino;
}

/// For messages only: without it, on a full disk for example, the lock is as good.
void FileLock::WriteName() const
{
    QByteArray const name = QStringLiteral("%1, process %2 on %3\n")
                                .arg(QCoreApplication::applicationName())
                                .arg(QCoreApplication::applicationPid())
                                .arg(QSysInfo::machineHostName())
                                .toUtf8();
    if (::ftruncate(File, 0) == 0 && ::pwrite(File, name.constData(), name.size(), 0) < 0)
        return;
}

void FileLock::Release()
{
    if (!IsTaken())
        return;
    ::close(File);
    File = -1;
}

void FileLock::Remove()
{
    // Where the folder was moved meanwhile, another's file may stand there.
    if (IsTaken() && IsAtPath(File))
        ::unlink(QFile::encodeName(Path).constData());
    Release();
}

} // namespace Varnholt
