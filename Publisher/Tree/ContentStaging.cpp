#include "Publisher/Tree/ContentStaging.hpp"

#include "Publisher/Failure.hpp"
#include "Publisher/Tree/TreeMark.hpp"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSysInfo>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Varnholt::Publisher {

namespace {

QString const c_Boot = QStringLiteral("boot");
QString const c_Journal = QStringLiteral("journal");
QString const c_Begun = QStringLiteral("begun.");

bool IsOfThisBoot(QString const& p_File)
{
    QFile file(p_File);
    QByteArray const boot = QSysInfo::bootUniqueId();
    return !boot.isEmpty() && file.open(QIODevice::ReadOnly) && file.readAll() == boot;
}

bool IsZero(char const* p_Data, qint64 p_Bytes)
{
    return p_Bytes > 0 && p_Data[0] == 0 &&
           std::memcmp(p_Data, p_Data + 1, static_cast<std::size_t>(p_Bytes) - 1) == 0;
}

} // namespace

ContentStaging::ContentStaging(QString const& p_Root, QString const& p_AppId)
    : Folder(TreeMark(p_Root).PrivatePath(p_AppId + QStringLiteral(".staged")))
{
}

void ContentStaging::Sift() const
{
    if (!IsOfThisBoot(PathOf(c_Boot)))
        Remove();
    QDir folder(Folder);
    for (QString const& name : folder.entryList({c_Begun + QLatin1Char('*')}, QDir::Files))
        folder.remove(name);
}

void ContentStaging::Make()
{
    if (Made)
        return;
    if (QDir().mkdir(Folder)) {
        QFile boot(PathOf(c_Boot));
        if (boot.open(QIODevice::WriteOnly))
            boot.write(QSysInfo::bootUniqueId());
    } else if (!QFileInfo(Folder).isDir()) {
        throw Failure(Folder + QStringLiteral(": the folder cannot be made"));
    }
    Made = true;
}

void ContentStaging::Remove() const
{
    QDir(Folder).removeRecursively();
}

QString ContentStaging::JournalPath() const
{
    return PathOf(c_Journal);
}

QString ContentStaging::PathOf(QString const& p_Md5) const
{
    return Folder + QLatin1Char('/') + p_Md5;
}

bool ContentStaging::Holds(QString const& p_Md5, qint64 p_Size) const
{
    QFileInfo const info(PathOf(p_Md5));
    return info.isFile() && info.size() == p_Size;
}

QFileInfoList ContentStaging::Files() const
{
    QFileInfoList files = QDir(Folder).entryInfoList(QDir::Files);
    files.erase(std::remove_if(files.begin(), files.end(),
                               [](QFileInfo const& p_File) {
                                   return p_File.fileName() == c_Boot ||
                                          p_File.fileName() == c_Journal;
                               }),
                files.end());
    return files;
}

QString ContentStaging::NewFile()
{
    Make();
    return PathOf(c_Begun + QString::number(NewFiles++));
}

StagedFile::StagedFile(QString const& p_Path)
    : Path(p_Path)
    , File(::open(QFile::encodeName(p_Path).constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC,
                  0644))
{
    if (File < 0)
        Fail();
}

StagedFile::~StagedFile()
{
    if (File < 0)
        return;
    Close();
    ::unlink(QFile::encodeName(Path).constData());
}

void StagedFile::Write(char const* p_Data, qint64 p_Bytes)
{
    qint64 const end = Size + p_Bytes;
    EndsInHole = IsZero(p_Data, p_Bytes);
    while (!EndsInHole && Size < end) {
        ssize_t const written =
            ::pwrite(File, p_Data + p_Bytes - (end - Size), static_cast<size_t>(end - Size), Size);
        if (written < 0 && errno != EINTR)
            Fail();
        Size += qMax<ssize_t>(0, written);
    }
    Size = end;
}

void StagedFile::KeepAs(QString const& p_Path)
{
    constexpr mode_t c_Mode = 0644;

    if ((EndsInHole && ::ftruncate(File, Size) != 0) || ::fchmod(File, c_Mode) != 0)
        Fail();
    Close();
    if (std::rename(QFile::encodeName(Path).constData(), QFile::encodeName(p_Path).constData()) !=
        0)
        Fail();
}

void StagedFile::Close()
{
    ::close(File);
    File = -1;
}

void StagedFile::Fail() const
{
    throw Failure(Path + QStringLiteral(": cannot be written: ") + qt_error_string(errno));
}

} // namespace Varnholt::Publisher
