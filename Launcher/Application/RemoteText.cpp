#include "Launcher/Application/RemoteText.hpp"

#include <QJsonDocument>

namespace Varnholt::Launcher::RemoteText {

QString Of(QByteArray const& p_Data)
{
    return QString::fromUtf8(
        p_Data.constData(),
        static_cast<int>(qstrnlen(p_Data.constData(), static_cast<uint>(p_Data.size()))));
}

std::optional<QJsonObject> ObjectOf(QByteArray const& p_Data)
{
    // Through text and back: invalid UTF-8 reaches the reader as U+FFFD instead of failing it.
    QJsonDocument const document = QJsonDocument::fromJson(Of(p_Data).toUtf8());
    if (!document.isObject())
        return std::nullopt;
    return document.object();
}

} // namespace Varnholt::Launcher::RemoteText
