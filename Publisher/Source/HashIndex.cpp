#include "Publisher/Source/HashIndex.hpp"

#include "Publisher/Failure.hpp"
#include "Publisher/Source/HashLine.hpp"
#include "Publisher/Source/NativePath.hpp"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>
#include <QUrl>

namespace Varnholt::Publisher {

namespace {

QByteArray const c_End = QByteArrayLiteral("end ");

/// Goes through the index and the files side by side, both being in the same order.
class Merge {
public:
    explicit Merge(std::vector<BuildFile>& p_Files)
        : Files(p_Files)
        , Current(p_Files.begin())
    {
    }

    bool Take(QByteArray const& p_Line)
    {
        std::optional<HashLine> const line = HashLine::Parse(p_Line);
        if (!line || line->Path <= LastPath)
            return false;
        LastPath = line->Path;
        while (Current != Files.end() && Current->Source.Path.toUtf8() < line->Path)
            ++Current;
        if (Current != Files.end() && line->IsOf(Current->Source))
            Current->Md5 = QString::fromLatin1(line->Md5);
        return true;
    }

private:
    std::vector<BuildFile>& Files;
    std::vector<BuildFile>::iterator Current;
    QByteArray LastPath;
};

/// \return false when the lines after the head are not as they were written
bool ReadLines(QFile& p_File, QByteArray const& p_Head, std::vector<BuildFile>& p_Files)
{
    QCryptographicHash checksum(QCryptographicHash::Md5);
    checksum.addData(p_Head);
    Merge merge(p_Files);
    for (;;) {
        QByteArray line = p_File.readLine(HashLine::c_MostBytes);
        if (!line.endsWith('\n'))
            return false;
        if (line.startsWith(c_End))
            return line == c_End + checksum.result().toHex() + '\n' && p_File.atEnd();
        checksum.addData(line);
        line.chop(1);
        if (!merge.Take(line))
            return false;
    }
}

} // namespace

HashIndex::HashIndex(QString const& p_File, QString const& p_Source)
    : File(p_File)
    , Source(QFileInfo(p_Source).canonicalFilePath())
{
}

QByteArray HashIndex::Head() const
{
    // Encoded, since the name of a folder may hold a line end.
    return "varnholt-publish index 1\n" + QUrl::toPercentEncoding(Source) + '\n';
}

bool HashIndex::FillIn(std::vector<BuildFile>& p_Files) const
{
    QFile file(File);
    if (!file.exists())
        return true;
    QByteArray const head = Head();
    QByteArray const format = head.left(head.indexOf('\n') + 1);
    if (!file.open(QIODevice::ReadOnly) || file.readLine(HashLine::c_MostBytes) != format)
        return false;
    QByteArray const source = file.readLine(HashLine::c_MostBytes);
    if (format + source != head)
        return source.endsWith('\n');
    if (ReadLines(file, head, p_Files))
        return true;
    for (BuildFile& known : p_Files)
        known.Md5.clear();
    return false;
}

void HashIndex::Write(std::vector<BuildFile> const& p_Files,
                      std::chrono::nanoseconds p_Scanned) const
{
    QFile file(File + QStringLiteral(".new"));
    QCryptographicHash checksum(QCryptographicHash::Md5);
    auto const write = [&](QByteArray const& p_Line) {
        checksum.addData(p_Line);
        return file.write(p_Line) == p_Line.size();
    };
    bool written = file.open(QIODevice::WriteOnly | QIODevice::Truncate) && write(Head());
    for (BuildFile const& hashed : p_Files) {
        if (written && IsSettled(hashed.Source, p_Scanned))
            written = write(HashLine::Of(hashed).Text());
    }
    QByteArray const end = c_End + checksum.result().toHex() + '\n';
    if (!written || file.write(end) != end.size() || !file.flush())
        throw Failure(file.fileName() + QStringLiteral(": cannot be written: ") +
                      file.errorString());
    std::error_code error;
    std::filesystem::rename(NativePath::From(file.fileName()), NativePath::From(File), error);
    if (error) {
        throw Failure(File + QStringLiteral(": cannot be replaced: ") +
                      QString::fromStdString(error.message()));
    }
}

} // namespace Varnholt::Publisher
