#include "Publisher/Tree/ManifestWriter.hpp"

#include "Publisher/Tree/ContentStore.hpp"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace Varnholt::Publisher::ManifestWriter {

namespace {

QByteArray Text(QJsonObject const& p_Object)
{
    return QJsonDocument(p_Object).toJson(QJsonDocument::Compact);
}

/// A string with its quotes.
QByteArray Text(QString const& p_String)
{
    bool const isPlain = std::all_of(p_String.begin(), p_String.end(), [](QChar p_Character) {
        return p_Character >= QLatin1Char(' ') && p_Character != QLatin1Char('"') &&
               p_Character != QLatin1Char('\\') && !p_Character.isSurrogate();
    });
    if (isPlain)
        return '"' + p_String.toUtf8() + '"';
    QByteArray const array = QJsonDocument(QJsonArray{p_String}).toJson(QJsonDocument::Compact);
    return array.mid(1, array.size() - 2);
}

/// Documents of Qt take ten times as long, and a large build has many files.
void AppendFile(QByteArray& p_Text, BuildFile const& p_File)
{
    p_Text += p_Text.isEmpty() ? "{" : ",{";
    if (p_File.Treatment.Flags != 0)
        p_Text += "\"flags\":" + QByteArray::number(p_File.Treatment.Flags) + ',';
    if (!p_File.Treatment.Locale.isEmpty())
        p_Text += "\"locale\":" + Text(p_File.Treatment.Locale) + ',';
    p_Text += "\"location\":" + Text(ContentStore::LocationOf(p_File.Md5)) +
              ",\"md5\":" + Text(p_File.Md5) + ",\"path\":" + Text(p_File.Source.Path) + '}';
}

QByteArray FileArray(std::vector<BuildFile> const& p_Files, bool p_Streamed)
{
    QByteArray text;
    for (BuildFile const& file : p_Files) {
        if (file.Treatment.Streamed == p_Streamed)
            AppendFile(text, file);
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
