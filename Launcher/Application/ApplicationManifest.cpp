#include "Launcher/Application/ApplicationManifest.hpp"

#include "Launcher/Application/ManifestRows.hpp"
#include "Launcher/Application/RemoteText.hpp"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSysInfo>

#include <algorithm>
#include <iterator>

namespace Varnholt::Launcher {

namespace {

QString PlatformKey([[maybe_unused]] bool p_PreferSierra)
{
#ifdef VARNHOLT_CONTENT_PLATFORM_WIN
    return QStringLiteral("base_win");
#else
    constexpr int c_ElCapitan = 13; // 10.11 in the numbering of QSysInfo::macVersion()
    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED
    if (p_PreferSierra && QSysInfo::macVersion() > c_ElCapitan)
        return QStringLiteral("base_mac_sierra");
    QT_WARNING_POP
    return QStringLiteral("base_mac");
#endif
}

std::map<QString, ApplicationManifestLocale> ReadLocales(QJsonArray const& p_Rows)
{
    std::map<QString, ApplicationManifestLocale> locales;
    for (QJsonValue const& row : p_Rows) {
        QJsonObject const object = row.toObject();
        QString const tag = object[QLatin1String("tag")].toString();
        locales[tag] = {tag, object[QLatin1String("name")].toString()};
    }
    return locales;
}

ApplicationManifestFileEntry ReadEntry(QJsonObject const& p_Object)
{
    ApplicationManifestFileEntry entry;
    entry.Location = p_Object[QLatin1String("location")].toString();
    entry.Path = p_Object[QLatin1String("path")].toString();
    entry.Md5 = p_Object[QLatin1String("md5")].toString();
    entry.Flags = p_Object[QLatin1String("flags")].toInt();
    entry.Locale = p_Object[QLatin1String("locale")].toString();
    return entry;
}

ManifestRows::Entries ReadEntries(QJsonArray const& p_List, ManifestRows& p_Rows,
                                  std::map<QString, ApplicationManifestLocale> const& p_Locales)
{
    ManifestRows::Entries entries;
    for (QJsonValue const& row : p_List) {
        auto* const plain = p_Rows.At(row);
        if (plain == nullptr)
            entries.push_back(ReadEntry(row.toObject()));
        else if (entries.empty())
            entries = std::move(*plain);
        else
            std::move(plain->begin(), plain->end(), std::back_inserter(entries));
    }
    auto const isUndeclared = [&](ApplicationManifestFileEntry const& p_Entry) {
        return !p_Entry.Locale.isEmpty() && p_Locales.count(p_Entry.Locale) == 0;
    };
    entries.erase(std::remove_if(entries.begin(), entries.end(), isUndeclared), entries.end());
    return entries;
}

} // namespace

ApplicationManifest ParseApplicationManifest(QByteArray const& p_Data, bool& p_Success,
                                             bool p_PreferSierra)
{
    p_Success = false;
    ApplicationManifest manifest;

    ManifestRows rows(RemoteText::Utf8Of(p_Data));
    QJsonDocument const document = QJsonDocument::fromJson(rows.Rest());
    if (!document.isObject())
        return manifest;

    QJsonObject const root = document.object();
    manifest.BuildId = root[QLatin1String("build_id")].toString();
    manifest.BuildStr = root[QLatin1String("build_str")].toString();
    manifest.BuildNumber = root[QLatin1String("build_number")].toInt();
    manifest.Locales = ReadLocales(root[QLatin1String("available_locales")].toArray());
    QJsonObject const content = root[QLatin1String("content")].toObject();
    manifest.Files =
        ReadEntries(content[PlatformKey(p_PreferSierra)].toArray(), rows, manifest.Locales);
    manifest.StreamedFiles =
        ReadEntries(root[QLatin1String("streamed_content")].toArray(), rows, manifest.Locales);
    p_Success = true;
    return manifest;
}

} // namespace Varnholt::Launcher
