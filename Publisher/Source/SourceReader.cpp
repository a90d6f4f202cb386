#include "Publisher/Source/SourceReader.hpp"

#include "Publisher/Failure.hpp"
#include "Publisher/Source/NativePath.hpp"

#include <QCryptographicHash>
#include <QFile>

#include <vector>

namespace Varnholt::Publisher::SourceReader {

namespace {

constexpr std::size_t c_BlockBytes = 256UL * 1024;

std::chrono::nanoseconds Since1970(timespec const& p_Time)
{
    return std::chrono::seconds(p_Time.tv_sec) + std::chrono::nanoseconds(p_Time.tv_nsec);
}

bool IsAsScanned(QFile const& p_Open, SourceFile const& p_File)
{
    struct stat status = {};
    return ::fstat(p_Open.handle(), &status) == 0 && status.st_size == p_File.Size &&
           status.st_ino == p_File.Inode && ChangeTime(status) == p_File.Changed;
}

} // namespace

std::chrono::nanoseconds ModificationTime(struct stat const& p_Status)
{
#ifdef Q_OS_MACOS
    return Since1970(p_Status.st_mtimespec);
#else
    return Since1970(p_Status.st_mtim);
#endif
}

qint64 ChangeTime(struct stat const& p_Status)
{
#ifdef Q_OS_MACOS
    return Since1970(p_Status.st_ctimespec).count();
#else
    return Since1970(p_Status.st_ctim).count();
#endif
}

QString ChangedText(SourceFile const& p_File)
{
    return p_File.Path + QStringLiteral(": the file changed while it was being published");
}

QString Read(SourceFile const& p_File, BlockSink const& p_Sink)
{
    QFile file(NativePath::ToText(p_File.Location));
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        throw Failure(p_File.Path + QStringLiteral(": cannot be read: ") + file.errorString());

    QCryptographicHash hash(QCryptographicHash::Md5);
    std::vector<char> block(c_BlockBytes);
    qint64 total = 0;
    qint64 bytes = 0;
    while ((bytes = file.read(block.data(), static_cast<qint64>(block.size()))) > 0) {
        hash.addData(block.data(), static_cast<int>(bytes));
        total += bytes;
        p_Sink(block.data(), bytes);
    }
    if (bytes < 0)
        throw Failure(p_File.Path + QStringLiteral(": cannot be read: ") + file.errorString());
    if (total != p_File.Size || !IsAsScanned(file, p_File))
        throw Failure(ChangedText(p_File));
    return QString::fromLatin1(hash.result().toHex()).toUpper();
}

} // namespace Varnholt::Publisher::SourceReader
