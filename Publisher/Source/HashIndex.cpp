#include "Publisher/Source/HashIndex.hpp"

#include "Publisher/Failure.hpp"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>
#include <QUrl>

#include <optional>

namespace Varnholt::Publisher {

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

QByteArray const c_End = QByteArrayLiteral("end ");
/// More than any path that a file system takes.
constexpr qint64 c_LineBytes = 64LL * 1024;
constexpr int c_Md5Digits = 32;
/// Times of files advance in steps: those of the system's clock, or seconds on old file systems.
constexpr auto c_FineStep = 50ms;
constexpr auto c_CoarseStep = 2s;

qint64 Nanoseconds(fs::file_time_type p_Time)
{
    using std::chrono::nanoseconds;
    return std::chrono::duration_cast<nanoseconds>(p_Time.time_since_epoch()).count();
}

bool IsSettled(SourceFile const& p_File, fs::file_time_type p_Scanned)
{
    bool const isCoarse = Nanoseconds(p_File.Modified) % 1'000'000'000 == 0;
    if (isCoarse)
        return p_File.Modified < p_Scanned - c_CoarseStep;
    return p_File.Modified < p_Scanned - c_FineStep;
}

QByteArray Signature(SourceFile const& p_File)
{
    return QByteArray::number(p_File.Size) + ' ' +
           QByteArray::number(Nanoseconds(p_File.Modified)) + ' ' +
           QByteArray::number(p_File.Inode);
}

struct Line {
    QByteArray Signature;
    QByteArray Md5;
    QByteArray Path;
};

bool IsMd5(QByteArray const& p_Text)
{
    return p_Text.size() == c_Md5Digits && QByteArray::fromHex(p_Text).toHex().toUpper() == p_Text;
}

/// "SIZE TIME INODE MD5 PATH"; only the path may hold blanks.
std::optional<Line> ParseLine(QByteArray const& p_Line)
{
    int end = -1;
    for (int field = 0; field < 3; ++field) {
        end = p_Line.indexOf(' ', end + 1);
        if (end < 0)
            return std::nullopt;
    }
    Line line{p_Line.left(end), p_Line.mid(end + 1, c_Md5Digits),
              p_Line.mid(end + c_Md5Digits + 2)};
    bool const isUsable =
        IsMd5(line.Md5) && p_Line.mid(end + c_Md5Digits + 1, 1) == " " && !line.Path.isEmpty();
    return isUsable ? std::make_optional(line) : std::nullopt;
}

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
        std::optional<Line> const line = ParseLine(p_Line);
        if (!line || line->Path <= LastPath)
            return false;
        LastPath = line->Path;
        while (Current != Files.end() && Current->Source.Path.toUtf8() < line->Path)
            ++Current;
        if (Current != Files.end() && Current->Source.Path.toUtf8() == line->Path &&
            Signature(Current->Source) == line->Signature)
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
        QByteArray line = p_File.readLine(c_LineBytes);
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

HashIndex::State HashIndex::FillIn(std::vector<BuildFile>& p_Files) const
{
    QFile file(File);
    if (!file.exists())
        return State::None;
    if (!file.open(QIODevice::ReadOnly))
        return State::Damaged;
    QByteArray const head = Head();
    QByteArray const format = head.left(head.indexOf('\n') + 1);
    if (file.readLine(c_LineBytes) != format)
        return State::Damaged;
    QByteArray const source = file.readLine(c_LineBytes);
    if (format + source != head)
        return source.endsWith('\n') ? State::None : State::Damaged;
    if (ReadLines(file, head, p_Files))
        return State::Used;
    for (BuildFile& known : p_Files)
        known.Md5.clear();
    return State::Damaged;
}

void HashIndex::Write(QString const& p_Target, std::vector<BuildFile> const& p_Files,
                      fs::file_time_type p_Scanned) const
{
    QFile file(p_Target);
    QCryptographicHash checksum(QCryptographicHash::Md5);
    auto const write = [&](QByteArray const& p_Line) {
        checksum.addData(p_Line);
        return file.write(p_Line) == p_Line.size();
    };
    bool written = file.open(QIODevice::WriteOnly | QIODevice::Truncate) && write(Head());
    for (BuildFile const& hashed : p_Files) {
        if (written && IsSettled(hashed.Source, p_Scanned)) {
            written = write(Signature(hashed.Source) + ' ' + hashed.Md5.toLatin1() + ' ' +
                            hashed.Source.Path.toUtf8() + '\n');
        }
    }
    QByteArray const end = c_End + checksum.result().toHex() + '\n';
    if (!written || file.write(end) != end.size() || !file.flush())
        throw Failure(p_Target + QStringLiteral(": cannot be written: ") + file.errorString());
}

} // namespace Varnholt::Publisher
