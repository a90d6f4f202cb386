#include "Tests/Faults/ServerTarget.hpp"

#include <algorithm>

namespace Varnholt::TestSupport {

namespace {

QString const c_Config = QStringLiteral("WTF/Config.wtf");
QByteArray const c_OwnLine = "SET gxWindow \"1\"\n";

QByteArray BytesOf(FaultGame const& p_Game, QString const& p_File)
{
    auto const& files = p_Game.Content.Files;
    auto const found = std::find_if(files.begin(), files.end(),
                                    [&](auto const& p_Other) { return p_Other.Path == p_File; });
    return found->Bytes;
}

ServerTarget ContentFile(char const* p_Name, QString const& p_File,
                         ServerTarget::Type p_Kind = ServerTarget::Type::Content)
{
    return {QString::fromUtf8(p_Name),
            [p_File](auto const& p_Game) { return p_Game.Content.ServerPath(p_File); },
            [p_File](auto const& p_Game) { return BytesOf(p_Game, p_File); }, p_Kind};
}

} // namespace

std::vector<ServerTarget> const& ServerTarget::All()
{
    static std::vector<ServerTarget> const s_Targets{
        {QStringLiteral("version file"),
         [](auto const& p_Game) { return p_Game.Content.VersionPath(); },
         [](auto const&) { return QByteArray("{\"build\":\"build_1\"}"); }},
        {QStringLiteral("manifest"),
         [](auto const& p_Game) { return p_Game.Content.ManifestPath(); },
         [](auto const& p_Game) { return p_Game.Content.ManifestBytes(); }},
        {QStringLiteral("host list"), [](auto const&) { return QStringLiteral("/cdns.info"); },
         [](auto const& p_Game) { return p_Game.Server.Host().toUtf8(); }},
        {QStringLiteral("realm list"),
         [](auto const& p_Game) { return p_Game.Content.RealmListPath(); },
         [](auto const& p_Game) { return p_Game.Content.RealmList; }, Type::Document, true},
        ContentFile("size of the middle file", FaultGame::c_Middle, Type::Size),
        ContentFile("first file", FaultGame::c_First),
        ContentFile("middle file", FaultGame::c_Middle),
        ContentFile("last file", FaultGame::c_Last),
    };
    return s_Targets;
}

QString ServerTarget::Script(FaultGame const& p_Game) const
{
    QString const method = QLatin1String(Kind == Type::Size ? "HEAD " : "GET ");
    return method + Path(p_Game);
}

void ServerTarget::Prepare(FaultGame& p_Game) const
{
    if (!IsUpdate)
        return;
    p_Game.PutInstalled();
    p_Game.Put(c_Config, c_OwnLine + "SET realmlist \"of before\"\n");
    QFile::remove(p_Game.Path(FaultGame::c_Last));
}

QStringList ServerTarget::Faults(FaultGame const& p_Game) const
{
    if (!IsUpdate)
        return {};
    QByteArray const config = p_Game.Read(c_Config);
    QStringList faults;
    if (!config.startsWith(c_OwnLine))
        faults += QStringLiteral("a line of the player's configuration was lost");
    if (!config.endsWith('\n' + p_Game.Content.RealmList + '\n'))
        faults += QStringLiteral("the realm list is not the server's");
    return faults;
}

} // namespace Varnholt::TestSupport
