#include "Host/Core/Settings/SettingsWriter.hpp"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace Varnholt::Host {

namespace {

using SettingsFile::Values;

/// The file itself, or the one that it leads to when it is a link.
QString TargetOf(QString const& p_File)
{
    QFileInfo const file(p_File);
    return file.isSymbolicLink() && file.exists() ? file.canonicalFilePath() : p_File;
}

/// \return 0 when the folder is there, else why not
int MakeFolder(QString const& p_Folder)
{
    std::error_code error;
    std::filesystem::create_directories(QFile::encodeName(p_Folder).toStdString(), error);
    return error.value();
}

/// \return 0 when an existing file may be written, or there is none, else why not
int RefusalOf(QString const& p_File)
{
    int const file = ::open(QFile::encodeName(p_File).constData(), O_WRONLY | O_CLOEXEC);
    if (file < 0)
        return errno == ENOENT ? 0 : errno;
    ::close(file);
    return 0;
}

/// QSettings does not tell why it failed: tries to write a file itself. \return the error
int CauseIn(QString const& p_Folder)
{
    constexpr int c_Size = 65'536;

    QByteArray const bytes(c_Size, ' ');
    QByteArray const name = QFile::encodeName(p_Folder + QStringLiteral("/probe"));
    int const file = ::open(name.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, S_IRUSR);
    if (file < 0)
        return errno;
    ssize_t written = 0;
    for (qint64 all = 0; all < c_Size && written >= 0; all += written)
        written = ::write(file, bytes.constData() + all, static_cast<std::size_t>(c_Size - all));
    int const error = written < 0 || ::fsync(file) != 0 ? errno : EIO;
    ::close(file);
    return error;
}

void WriteAll(QString const& p_File, Values const& p_Values)
{
    if (p_Values.isEmpty()) { // QSettings would make no file
        QFile(p_File).open(QIODevice::WriteOnly);
        return;
    }
    // Without a codec: with one QSettings breaks characters beyond U+FFFF in two.
    QSettings writer(p_File, QSettings::IniFormat);
    for (auto row = p_Values.constBegin(); row != p_Values.constEnd(); ++row)
        writer.setValue(row.key(), row.value());
}

} // namespace

SettingsWriter::SettingsWriter(QString const& p_File)
    : File(p_File)
    , Target(TargetOf(p_File))
    , Folder(Target + QStringLiteral(".varnholt-new"))
    , Lock(Target + QStringLiteral(".varnholt-lock"))
{
    Hindrance = Prepare();
}

SettingsWriter::~SettingsWriter()
{
    if (HasFolder)
        QDir(Folder).removeRecursively();
}

std::optional<Failure> SettingsWriter::Prepare()
{
    if (int const error = MakeFolder(QFileInfo(Target).path()))
        return Because(error);
    if (auto failure = WaitForOthers())
        return failure;
    SettingsFile::Content const content = SettingsFile::Read(Target);
    if (content.Problem)
        return content.Problem;
    Before = content.Bytes;
    if (int const error = RefusalOf(Target))
        return Because(error);
    // A folder that nobody else enters: QSettings creates its files readable for everybody.
    QFile::remove(Folder);            // not what a link leads to
    QDir(Folder).removeRecursively(); // by one that was killed
    if (::mkdir(QFile::encodeName(Folder).constData(), S_IRWXU) != 0)
        return Because(errno);
    HasFolder = true;
    return std::nullopt;
}

/// Where there can be no lock, two programs at the same instant may lose what one of them writes,
/// and no more than that.
std::optional<Failure> SettingsWriter::WaitForOthers()
{
    constexpr int c_MostMilliseconds = 5'000; // another program is at it for an instant

    if (Lock.Take(c_MostMilliseconds) != FileLock::Outcome::Held)
        return std::nullopt;
    return Failure{FailureKind::SettingsUnwritable, File,
                   QCoreApplication::translate("Varnholt::Host::SettingsWriter",
                                               "another program is writing it: %1")
                       .arg(Lock.Holder())};
}

Failure SettingsWriter::Because(int p_Error) const
{
    bool const isFull = p_Error == ENOSPC || p_Error == EDQUOT || p_Error == EFBIG;
    return {isFull ? FailureKind::DiskFull : FailureKind::SettingsUnwritable, File,
            qt_error_string(p_Error)};
}

std::optional<Failure> SettingsWriter::Write(Values const& p_Changes)
{
    if (Hindrance)
        return Hindrance;
    if (!ReadValues())
        return Because(CauseIn(Folder));
    SettingsFile::Apply(Merged, p_Changes);
    // Read again before it counts: QSettings does not notice when a full disk cuts its file short.
    QString const fresh = NewName();
    QString const checked = NewName();
    WriteAll(fresh, Merged);
    if (!QFile::rename(fresh, checked) || SettingsFile::Parse(checked) != Merged)
        return Because(CauseIn(Folder));
    Merged = SettingsFile::Parse(checked); // all of them texts, as the next program finds them
    if (!SetMode(checked) || std::rename(QFile::encodeName(checked).constData(),
                                         QFile::encodeName(Target).constData()) != 0)
        return Because(errno);
    return std::nullopt;
}

/// From a copy under a new name: QSettings may answer a name that it knows from its cache.
bool SettingsWriter::ReadValues()
{
    QString const copy = NewName();
    QFile file(copy);
    if (!file.open(QIODevice::WriteOnly) || file.write(Before) != Before.size() || !file.flush())
        return false;
    file.close();
    Merged = SettingsFile::Parse(copy);
    return true;
}

/// The old file's mode stays, unless it would show a password to others.
/// \return false when it does
bool SettingsWriter::SetMode(QString const& p_Fresh) const
{
    if (Merged.contains(QLatin1String(c_PasswordKey)))
        return QFile::setPermissions(p_Fresh, QFile::ReadOwner | QFile::WriteOwner);
    if (QFile::exists(Target))
        QFile::setPermissions(p_Fresh, QFile::permissions(Target));
    return true;
}

/// A name that QSettings has no cache for.
QString SettingsWriter::NewName() const
{
    static std::atomic<quint64> s_Names{0};
    return Folder + QLatin1Char('/') + QString::number(s_Names++);
}

} // namespace Varnholt::Host
