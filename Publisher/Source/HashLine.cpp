#include "Publisher/Source/HashLine.hpp"

namespace Varnholt::Publisher {

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

constexpr int c_Md5Digits = 32;
/// Times of files advance in steps: those of the system's clock, or seconds on old file systems.
constexpr auto c_FineStep = 50ms;
constexpr auto c_CoarseStep = 2s;

qint64 Nanoseconds(fs::file_time_type p_Time)
{
    using std::chrono::nanoseconds;
    return std::chrono::duration_cast<nanoseconds>(p_Time.time_since_epoch()).count();
}

QByteArray SignatureOf(SourceFile const& p_File)
{
    return QByteArray::number(p_File.Size) + ' ' +
           QByteArray::number(Nanoseconds(p_File.Modified)) + ' ' +
           QByteArray::number(p_File.Inode);
}

bool IsMd5(QByteArray const& p_Text)
{
    return p_Text.size() == c_Md5Digits && QByteArray::fromHex(p_Text).toHex().toUpper() == p_Text;
}

} // namespace

HashLine HashLine::Of(BuildFile const& p_File)
{
    return {SignatureOf(p_File.Source), p_File.Md5.toLatin1(), p_File.Source.Path.toUtf8()};
}

std::optional<HashLine> HashLine::Parse(QByteArray const& p_Text)
{
    // Only the path may hold blanks.
    int end = -1;
    for (int field = 0; field < 3; ++field) {
        end = p_Text.indexOf(' ', end + 1);
        if (end < 0)
            return std::nullopt;
    }
    HashLine line{p_Text.left(end), p_Text.mid(end + 1, c_Md5Digits),
                  p_Text.mid(end + c_Md5Digits + 2)};
    bool const isUsable =
        IsMd5(line.Md5) && p_Text.mid(end + c_Md5Digits + 1, 1) == " " && !line.Path.isEmpty();
    return isUsable ? std::make_optional(line) : std::nullopt;
}

bool HashLine::IsOf(SourceFile const& p_File) const
{
    return Path == p_File.Path.toUtf8() && Signature == SignatureOf(p_File);
}

bool IsSettled(SourceFile const& p_File, fs::file_time_type p_Scanned)
{
    bool const isCoarse = Nanoseconds(p_File.Modified) % 1'000'000'000 == 0;
    if (isCoarse)
        return p_File.Modified < p_Scanned - c_CoarseStep;
    return p_File.Modified < p_Scanned - c_FineStep;
}

} // namespace Varnholt::Publisher
