#include "GameModules/PendingList.hpp"

#include "GameModules/FileReplacement.hpp"

#include <QFile>
#include <QFileInfo>

#include <string_view>

namespace Varnholt::Launcher::PendingList {

namespace {

using Continue = std::function<bool()>;

/// The bytes of a list with a line feed put before them, nothing when it cannot be read.
QByteArray BytesOf(QString const& p_ListPath)
{
    QFile file(p_ListPath);
    if (QFileInfo(p_ListPath).isSymbolicLink() || !file.open(QIODevice::ReadOnly))
        return {};
    return '\n' + file.readAll();
}

/// Hands on each line with the line feed before it. \param p_Bytes as `BytesOf` has them
/// \return false when p_Continue has ended it before the last line
template <typename Take>
bool EachLine(QByteArray const& p_Bytes, Continue const& p_Continue, Take p_Take)
{
    int from = 0;
    while (from + 1 < p_Bytes.size()) {
        if (!p_Continue())
            return false;
        int const end = p_Bytes.indexOf('\n', from + 1);
        int const past = end < 0 ? p_Bytes.size() : end;
        p_Take(std::string_view(p_Bytes.constData() + from, static_cast<std::size_t>(past - from)));
        from = past;
    }
    return true;
}

bool WriteBytes(QString const& p_ListPath, QByteArray const& p_Bytes)
{
    if (QFileInfo(p_ListPath).isSymbolicLink() && !QFile::remove(p_ListPath))
        return false;
    return FileReplacement::Replace(p_ListPath, p_Bytes);
}

} // namespace

Content Read(QString const& p_ListPath, Continue const& p_Continue)
{
    Content content;
    QByteArray const bytes = BytesOf(p_ListPath);
    content.Opened = !bytes.isEmpty();
    // Not by a text stream, which takes a carriage return or a byte order mark away from a name.
    // fromUtf8() takes the mark from the front only, where the line feed is.
    bool const read = EachLine(bytes, p_Continue, [&](std::string_view p_Line) {
        content.Paths +=
            QString::fromUtf8(p_Line.data(), static_cast<int>(p_Line.size())).remove(0, 1);
    });
    content.Complete = content.Opened && read;
    return content;
}

bool Write(QString const& p_ListPath, QStringList const& p_Paths)
{
    QByteArray bytes;
    for (QString const& path : p_Paths)
        bytes += path.toUtf8() + '\n';
    return WriteBytes(p_ListPath, bytes);
}

void Update(QString const& p_ListPath, QString const& p_Struck, QString const& p_Added,
            Continue const& p_Continue)
{
    QByteArray const before = BytesOf(p_ListPath);
    std::string const struck = '\n' + p_Struck.toStdString();
    QByteArray after;
    after.reserve(before.size());
    bool const read = EachLine(before, p_Continue, [&](std::string_view p_Line) {
        if (p_Line != struck)
            after.append(p_Line.data() + 1, static_cast<int>(p_Line.size()) - 1).append('\n');
    });
    if (!read)
        return;
    if (!p_Added.isEmpty())
        after += p_Added.toUtf8() + '\n';
    // Most files are in no list.
    if (before != '\n' + after)
        WriteBytes(p_ListPath, after);
}

} // namespace Varnholt::Launcher::PendingList
