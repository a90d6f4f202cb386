#include "Tests/Support/SampleContent.hpp"

#include <QCryptographicHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QStringList>

#include <random>

namespace Varnholt::TestSupport {

namespace {

#ifdef VARNHOLT_CONTENT_PLATFORM_WIN
QString const c_PlatformKey = QStringLiteral("base_win");
#else
QString const c_PlatformKey = QStringLiteral("base_mac");
#endif

} // namespace

SampleContent::SampleContent(QString const& p_AppId, QString const& p_Build)
    : AppId(p_AppId)
    , Build(p_Build)
{
}

SampleContent& SampleContent::Add(SampleFile const& p_File)
{
    Files.push_back(p_File);
    return *this;
}

void SampleContent::Publish(ScriptedServer& p_Server,
                            std::vector<ScriptedServer*> const& p_Mirrors) const
{
    p_Server.Serve(VersionPath(), "{\"build\":\"" + Build.toUtf8() + "\"}");
    p_Server.Serve(ManifestPath(), ManifestBytes());
    p_Server.Serve(RealmListPath(), RealmList);
    std::vector<ScriptedServer*> servers = p_Mirrors;
    QStringList hosts;
    for (ScriptedServer const* const mirror : p_Mirrors)
        hosts += mirror->Host();
    if (hosts.isEmpty())
        hosts += p_Server.Host();
    servers.push_back(&p_Server);
    for (ScriptedServer* const server : servers)
        for (SampleFile const& file : Files)
            server->Serve(ServerPath(file.Path), file.Bytes);
    p_Server.Serve(QStringLiteral("/cdns.info"), hosts.join(QLatin1Char(' ')).toUtf8());
}

QJsonObject SampleContent::Manifest() const
{
    QJsonArray locales;
    for (auto const& locale : Locales)
        locales += QJsonObject{{QStringLiteral("tag"), locale.first},
                               {QStringLiteral("name"), locale.second}};
    QJsonArray base;
    QJsonArray streamed;
    for (SampleFile const& file : Files) {
        QJsonObject const row{{QStringLiteral("location"), Location(file.Path)},
                              {QStringLiteral("path"), file.Path},
                              {QStringLiteral("md5"), Md5(file.Bytes)},
                              {QStringLiteral("flags"), file.Flags},
                              {QStringLiteral("locale"), file.Locale}};
        (file.Streamed ? streamed : base) += row;
    }
    return {{QStringLiteral("build_id"), Build},
            {QStringLiteral("build_str"), BuildStr},
            {QStringLiteral("build_number"), 1},
            {QStringLiteral("available_locales"), locales},
            {QStringLiteral("content"), QJsonObject{{c_PlatformKey, base}}},
            {QStringLiteral("streamed_content"), streamed}};
}

QByteArray SampleContent::ManifestBytes() const
{
    return QJsonDocument(Manifest()).toJson();
}

QString SampleContent::ServerPath(QString const& p_Path) const
{
    return QLatin1Char('/') + AppId + QLatin1Char('/') + Location(p_Path);
}

QString SampleContent::VersionPath() const
{
    return QLatin1Char('/') + AppId + QLatin1String("/version.json");
}

QString SampleContent::ManifestPath() const
{
    return QLatin1Char('/') + AppId + QLatin1String("/builds/") + Build +
           QLatin1String("/info.json");
}

QString SampleContent::RealmListPath() const
{
    return QLatin1Char('/') + AppId + QLatin1String("/realmlist.info");
}

QString SampleContent::Location(QString const& p_Path) const
{
    return QLatin1String("builds/") + Build + QLatin1String("/files/") + p_Path;
}

QString SampleContent::Md5(QByteArray const& p_Bytes)
{
    return QString::fromLatin1(QCryptographicHash::hash(p_Bytes, QCryptographicHash::Md5).toHex())
        .toUpper();
}

QByteArray SampleContent::Bytes(int p_Size, quint32 p_Seed)
{
    std::minstd_rand random(p_Seed);
    QByteArray bytes(p_Size, Qt::Uninitialized);
    for (char& byte : bytes)
        byte = static_cast<char>(random() >> 8);
    return bytes;
}

} // namespace Varnholt::TestSupport
