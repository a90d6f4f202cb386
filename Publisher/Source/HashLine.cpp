#include "Publisher/Source/HashLine.hpp"

#include <algorithm>

namespace Varnholt::Publisher {

namespace {

using namespace std::chrono_literals;

constexpr int c_Md5Digits = 32;
/// Times of files advance in steps: those of the system's clock, or seconds on old file systems.
constexpr auto c_FineStep = 50ms;
constexpr auto c_CoarseStep = 2s;

QByteArray SignatureOf(SourceFile const& p_File)
{
    return QByteArray::number(p_File.Size) + ' ' +
           QByteArray::number(static_cast<qint64>(p_File.Modified.count())) + ' ' +
           QByteArray::number(p_File.Inode);
}

bool IsMd5(QByteArray const& p_Text)
{
    return p_Text.size() == c_Md5Digits &&
           std::all_of(p_Text.begin(), p_Text.end(), [](char p_Digit) {
               return (p_Digit >= '0' && p_Digit <= '9') || (p_Digit >= 'A' && p_Digit <= 'F');
           });
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

bool IsSettled(SourceFile const& p_File, std::chrono::nanoseconds p_Scanned)
{
    bool const isCoarse = p_File.Modified % std::chrono::seconds(1) == p_File.Modified.zero();
    if (isCoarse)
        return p_File.Modified < p_Scanned - c_CoarseStep;
    return p_File.Modified < p_Scanned - c_FineStep;
}

} // namespace Varnholt::Publisher
