#include "Launcher/Application/ApplicationManifest.hpp"

#include "Launcher/Application/RemoteText.hpp"

#include <QJsonArray>
#include <QJsonObject>
#include <QSysInfo>

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
    if (p_Object.contains(QLatin1String("flags")))
        entry.Flags = p_Object[QLatin1String("flags")].toInt();
    return entry;
}

std::vector<ApplicationManifestFileEntry>
ReadEntries(QJsonArray const& p_Rows, std::map<QString, ApplicationManifestLocale> const& p_Locales)
{
    std::vector<ApplicationManifestFileEntry> entries;
    entries.reserve(static_cast<std::size_t>(p_Rows.size()));
    for (QJsonValue const& row : p_Rows) {
        QJsonObject const object = row.toObject();
        ApplicationManifestFileEntry entry = ReadEntry(object);
        QString const locale = object[QLatin1String("locale")].toString();
        if (!locale.isEmpty()) {
            auto const declared = p_Locales.find(locale);
            if (declared == p_Locales.end())
                continue;
            entry.Locale = declared->second.Tag;
        }
        entries.push_back(std::move(entry));
    }
    return entries;
}

} // namespace

ApplicationManifest ParseApplicationManifest(QByteArray const& p_Data, bool& p_Success,
                                             bool p_PreferSierra)
{
    p_Success = false;
    ApplicationManifest manifest;

    auto const object = RemoteText::ObjectOf(p_Data);
    if (!object)
        return manifest;

    QJsonObject const& root = *object;
    manifest.BuildId = root[QLatin1String("build_id")].toString();
    manifest.BuildStr = root[QLatin1String("build_str")].toString();
    manifest.BuildNumber = root[QLatin1String("build_number")].toInt();
    manifest.Locales = ReadLocales(root[QLatin1String("available_locales")].toArray());
    QJsonObject const content = root[QLatin1String("content")].toObject();
    manifest.Files = ReadEntries(content[PlatformKey(p_PreferSierra)].toArray(), manifest.Locales);
    manifest.StreamedFiles =
        ReadEntries(root[QLatin1String("streamed_content")].toArray(), manifest.Locales);
    p_Success = true;
    return manifest;
}

} // namespace Varnholt::Launcher
