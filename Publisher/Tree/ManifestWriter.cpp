#include "Publisher/Tree/ManifestWriter.hpp"

#include "Publisher/Tree/ContentStore.hpp"

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

QByteArray Text(QJsonObject const& p_Object)
{
    return QJsonDocument(p_Object).toJson(QJsonDocument::Compact);
}

/// File by file: a document of all of them would take many times the memory of its text.
QByteArray FileArray(std::vector<BuildFile> const& p_Files, bool p_Streamed)
{
    QByteArray text;
    for (BuildFile const& file : p_Files) {
        if (file.Treatment.Streamed == p_Streamed)
            text += (text.isEmpty() ? "" : ",") + Text(FileObject(file));
    }
    return '[' + text + ']';
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
    QByteArray const baseKey = p_Platform == ContentPlatform::Mac ? "base_mac" : "base_win";
    QByteArray manifest = Text({
        {QStringLiteral("build_id"), p_Build.Id},
        {QStringLiteral("build_str"), p_Build.Name},
        {QStringLiteral("build_number"), p_Build.Number},
        {QStringLiteral("available_locales"), LocaleArray(p_Locales)},
    });
    manifest.chop(1); // the bracket at the end
    manifest += ",\"content\":{\"" + baseKey + "\":" + FileArray(p_Files, false) + '}';
    manifest += ",\"streamed_content\":" + FileArray(p_Files, true) + '}';
    return manifest;
}

} // namespace Varnholt::Publisher::ManifestWriter
