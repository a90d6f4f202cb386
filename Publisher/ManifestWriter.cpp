#include "Publisher/ManifestWriter.hpp"

#include "Publisher/ContentStore.hpp"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace Varnholt::Publisher::ManifestWriter {

namespace {

QJsonObject FileObject(BuildFile const& p_File)
{
    QJsonObject object{
        {QStringLiteral("location"), ContentStore::LocationOf(p_File.Md5)},
        {QStringLiteral("path"), p_File.Source.Path},
        {QStringLiteral("md5"), p_File.Md5},
    };
    if (p_File.Treatment.Flags != 0)
        object.insert(QStringLiteral("flags"), p_File.Treatment.Flags);
    if (!p_File.Treatment.Locale.isEmpty())
        object.insert(QStringLiteral("locale"), p_File.Treatment.Locale);
    return object;
}

QJsonArray FileArray(std::vector<BuildFile> const& p_Files, bool p_Streamed)
{
    QJsonArray array;
    for (BuildFile const& file : p_Files) {
        if (file.Treatment.Streamed == p_Streamed)
            array.append(FileObject(file));
    }
    return array;
}

QJsonArray LocaleArray(std::map<QString, QString> const& p_Locales)
{
    QJsonArray array;
    for (auto const& [tag, name] : p_Locales) {
        array.append(QJsonObject{{QStringLiteral("tag"), tag}, {QStringLiteral("name"), name}});
    }
    return array;
}

} // namespace

QByteArray Write(BuildIdentity const& p_Build, std::map<QString, QString> const& p_Locales,
                 std::vector<BuildFile> const& p_Files, ContentPlatform p_Platform)
{
    QString const baseKey = p_Platform == ContentPlatform::Mac ? QStringLiteral("base_mac")
                                                               : QStringLiteral("base_win");
    QJsonObject const manifest{
        {QStringLiteral("build_id"), p_Build.Id},
        {QStringLiteral("build_str"), p_Build.Name},
        {QStringLiteral("build_number"), p_Build.Number},
        {QStringLiteral("available_locales"), LocaleArray(p_Locales)},
        {QStringLiteral("content"), QJsonObject{{baseKey, FileArray(p_Files, false)}}},
        {QStringLiteral("streamed_content"), FileArray(p_Files, true)},
    };
    return QJsonDocument(manifest).toJson(QJsonDocument::Compact);
}

} // namespace Varnholt::Publisher::ManifestWriter
