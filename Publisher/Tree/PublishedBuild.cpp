#include "Publisher/Tree/PublishedBuild.hpp"

#include "Publisher/Failure.hpp"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace Varnholt::Publisher {

namespace {

[[noreturn]] void NoManifest(QString const& p_Source, QString const& p_Cause)
{
    throw Failure(QStringLiteral("%1: is no manifest: %2").arg(p_Source, p_Cause));
}

PublishedFile FileOf(QJsonObject const& p_Object, bool p_Streamed)
{
    PublishedFile file;
    file.Path = p_Object[QLatin1String("path")].toString();
    file.Location = p_Object[QLatin1String("location")].toString();
    file.Md5 = p_Object[QLatin1String("md5")].toString();
    file.Locale = p_Object[QLatin1String("locale")].toString();
    file.Flags = p_Object[QLatin1String("flags")].toInt();
    file.Streamed = p_Streamed;
    return file;
}

void AddFiles(PublishedBuild& p_Build, QJsonValue const& p_List, bool p_Streamed,
              QString const& p_Source)
{
    if (!p_List.isArray())
        NoManifest(p_Source, QStringLiteral("it has no list of %1 files")
                                 .arg(QLatin1String(p_Streamed ? "streamed" : "base")));
    for (auto const& row : p_List.toArray()) {
        PublishedFile const file = FileOf(row.toObject(), p_Streamed);
        if (file.Path.isEmpty() || file.Location.isEmpty() || file.Md5.size() != 32)
            NoManifest(p_Source, QStringLiteral("a file lacks its path, location or MD5"));
        if (!file.Locale.isEmpty() && p_Build.Locales.count(file.Locale) == 0) {
            NoManifest(p_Source, QStringLiteral("%1 is of the language %2, which is not on offer")
                                     .arg(file.Path, file.Locale));
        }
        p_Build.Files.push_back(file);
    }
}

} // namespace

PublishedBuild PublishedBuild::Parse(QByteArray const& p_Manifest, QString const& p_Source)
{
    QJsonParseError error{};
    QJsonDocument const document = QJsonDocument::fromJson(p_Manifest, &error);
    if (error.error != QJsonParseError::NoError)
        NoManifest(p_Source, error.errorString());
    QJsonObject const root = document.object();
    PublishedBuild build;
    build.Id = root[QLatin1String("build_id")].toString();
    build.Name = root[QLatin1String("build_str")].toString();
    build.Number = root[QLatin1String("build_number")].toInt();
    for (auto const& row : root[QLatin1String("available_locales")].toArray()) {
        QJsonObject const locale = row.toObject();
        build.Locales[locale[QLatin1String("tag")].toString()] =
            locale[QLatin1String("name")].toString();
    }
    QJsonObject const content = root[QLatin1String("content")].toObject();
    QLatin1String const mac("base_mac");
    bool const isMac = content.contains(mac);
    build.Platform = isMac ? QStringLiteral("mac") : QStringLiteral("win");
    AddFiles(build, content[isMac ? mac : QLatin1String("base_win")], false, p_Source);
    AddFiles(build, root[QLatin1String("streamed_content")], true, p_Source);
    return build;
}

} // namespace Varnholt::Publisher
