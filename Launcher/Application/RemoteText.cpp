#include "Launcher/Application/RemoteText.hpp"

#include <QJsonDocument>

#include <algorithm>

namespace Varnholt::Launcher::RemoteText {

QString Of(QByteArray const& p_Data)
{
    return QString::fromUtf8(
        p_Data.constData(),
        static_cast<int>(qstrnlen(p_Data.constData(), static_cast<uint>(p_Data.size()))));
}

QByteArray Utf8Of(QByteArray const& p_Data)
{
    constexpr int c_BlockBytes = 64 * 1024;
    constexpr uchar c_FirstOfMany = 0x80; // a character of more than one byte has none below

    // As a whole a manifest would take three times its memory on the way.
    char const* const data = p_Data.constData();
    int const size = static_cast<int>(qstrnlen(data, static_cast<uint>(p_Data.size())));
    QByteArray text;
    text.reserve(size);
    for (int from = 0, to = 0; from < size; from = to) {
        to = from + std::min(size - from, c_BlockBytes);
        while (to < size && static_cast<uchar>(data[to]) >= c_FirstOfMany)
            ++to;
        text += QString::fromUtf8(data + from, to - from).toUtf8();
    }
    return text;
}

std::optional<QJsonObject> ObjectOf(QByteArray const& p_Data)
{
    QJsonDocument const document = QJsonDocument::fromJson(Utf8Of(p_Data));
    if (!document.isObject())
        return std::nullopt;
    return document.object();
}

} // namespace Varnholt::Launcher::RemoteText
