#include "Tests/Endurance/SickServer.hpp"

#include <array>

namespace Varnholt::TestSupport {

namespace {

/// For every path of a server.
QString const c_All = QStringLiteral("*");

} // namespace

SickServer::SickServer(Randomness& p_Random, SampleContent const& p_Content,
                       std::vector<ScriptedServer*> p_Servers)
    : Random(p_Random)
    , Content(p_Content)
    , Servers(std::move(p_Servers))
{
}

QString SickServer::Change()
{
    if (Random.OneIn(6)) {
        Cure();
        return QStringLiteral("servers are well");
    }
    ScriptedServer& server = *Random.From(Servers);
    QString name;
    if (Random.OneIn(6)) {
        server.ClearScript(c_All);
        server.Script(c_All).Then(DrawAnswer(0, name), Random.Between(1, 12));
        return QStringLiteral("all files of a server: ") + name;
    }
    SampleFile const& file = Random.From(Content.Files);
    bool const realmList = Random.OneIn(10);
    QString const path = realmList ? Content.RealmListPath() : Content.ServerPath(file.Path);
    if (Random.OneIn(8)) {
        server.OpenGate(path);
        return QStringLiteral("%1: goes on").arg(path);
    }
    // The first answer may be for the question for the size, the next for the transfer.
    auto script = server.Script(path);
    if (Random.OneIn(2))
        script.Then(Answer::Normal());
    int const size = realmList ? Content.RealmList.size() : file.Bytes.size();
    script.Then(DrawAnswer(size, name), Random.Between(1, 3));
    return QStringLiteral("%1: %2").arg(path, name);
}

void SickServer::SpoilTransfers()
{
    for (ScriptedServer* const server : Servers)
        for (SampleFile const& file : Content.Files) {
            QString name;
            if (Random.OneIn(2))
                server->Script(Content.ServerPath(file.Path))
                    .Then(Answer::Normal())
                    .Then(DrawAnswer(file.Bytes.size(), name));
        }
}

void SickServer::Cure()
{
    for (ScriptedServer* const server : Servers) {
        server->ClearScript(c_All);
        server->ClearScript(Content.RealmListPath());
        for (SampleFile const& file : Content.Files)
            server->ClearScript(Content.ServerPath(file.Path));
    }
}

Answer SickServer::DrawAnswer(int p_Size, QString& p_Name)
{
    switch (Random.Below(10)) {
    case 0:
    case 1:
        return DrawCut(p_Size, p_Name);
    case 2:
        return DrawStatus(p_Name);
    case 3:
        p_Name = QStringLiteral("ignores ranges");
        return Answer::IgnoringRange();
    case 4:
        p_Name = QStringLiteral("another range");
        return Answer::WrongRangeStart(Random.Between(-50, 50));
    case 5:
        p_Name = QStringLiteral("slow");
        return Answer::Drip(Random.Between(500, 20000), Random.Between(1, 8));
    case 6:
        p_Name = QStringLiteral("silent");
        return Answer::SilentBeforeHeaders();
    case 7:
        p_Name = QStringLiteral("no length");
        return Answer::WithoutLength();
    case 8:
        p_Name = QStringLiteral("compressed");
        return Answer::Gzip();
    default:
        // Never after the whole body: the client would go on using a connection that is dead.
        if (p_Size == 0) {
            p_Name = QStringLiteral("silent");
            return Answer::SilentBeforeHeaders();
        }
        p_Name = QStringLiteral("falls silent");
        return Answer::SilentAfter(Random.Below(p_Size));
    }
}

Answer SickServer::DrawCut(int p_Size, QString& p_Name)
{
    int const bytes = Random.Below(p_Size + 1);
    switch (Random.Below(4)) {
    case 0:
        p_Name = QStringLiteral("reset after %1").arg(bytes);
        return Answer::Reset(bytes);
    case 1:
        p_Name = QStringLiteral("closed before the headers");
        return Answer::ClosedBeforeHeaders();
    case 2:
        p_Name = QStringLiteral("claims a length");
        return Answer::ClaimingLength(p_Size + Random.Between(-20, 20));
    default:
        p_Name = QStringLiteral("closed after %1").arg(bytes);
        return Answer::Truncated(bytes);
    }
}

Answer SickServer::DrawStatus(QString& p_Name)
{
    constexpr std::array<int, 9> c_Statuses{404, 403, 500, 503, 416, 429, 302, 204, 400};
    int const status = Random.From(c_Statuses);
    p_Name = QString::number(status);
    if (status == 302)
        return Answer::Redirect("/elsewhere");
    return status == 204 ? Answer::Status(status, "") : Answer::Status(status);
}

} // namespace Varnholt::TestSupport
