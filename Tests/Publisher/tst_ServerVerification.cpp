#include "Publisher/Verification/ServerVerification.hpp"
#include "Tests/Publisher/PublishedGame.hpp"
#include "Tests/Support/SampleContent.hpp"
#include "Tests/Support/ScriptedServer.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

namespace Varnholt::TestSupport {

namespace {

using Damage = std::function<void(ScriptedServer& p_Mirror)>;

QByteArray const c_Data = SampleContent::Bytes(300000);

/// The address of the file Data/a behind a server.
QString DataPath()
{
    return '/' + PublishedGame::ContentPath(c_Data);
}

/// Answers so to the third request for the file: its headers and the whole of it come first.
Damage ToTheRange(Answer const& p_Answer)
{
    return [=](ScriptedServer& p_Mirror) {
        p_Mirror.Script(DataPath()).Then(Answer::Normal(), 2).Then(p_Answer);
    };
}

Damage ToTheWhole(Answer const& p_Answer)
{
    return [=](ScriptedServer& p_Mirror) {
        p_Mirror.Script(DataPath()).Then(Answer::Normal()).Then(p_Answer);
    };
}

Damage Always(Answer const& p_Answer)
{
    return [=](ScriptedServer& p_Mirror) { p_Mirror.Script(DataPath()).Always(p_Answer); };
}

/// A tree on a default server and on one mirror.
class MirroredGame {
public:
    MirroredGame()
    {
        Game.Put("Data/a", c_Data);
        Game.Put("empty", "");
        Game.Put("one", "1");
        Game.Put("secret", "not on mirrors");
        Game.AddRules("{\"match\": \"secret\", \"flags\": [\"default-server-only\"]}");
        Game.Options.Hosts = QStringList{Default.Host(), Mirror.Host()};
    }

    void Publish()
    {
        Game.Publish();
        for (auto const& [path, bytes] : Game.Published()) {
            if (path.endsWith('/'))
                continue;
            Default.Serve('/' + path, bytes);
            Mirror.Serve('/' + path, bytes);
        }
        Mirror.Remove('/' + PublishedGame::ContentPath("not on mirrors"));
    }

    Publisher::VerificationSummary Verify(int p_Sample = 1000000) const
    {
        return Publisher::VerifyServers({Default.BaseUrl(), "pelmora_app", p_Sample, false});
    }

    PublishedGame Game;
    ScriptedServer Default;
    ScriptedServer Mirror;
};

int RequestsOf(ScriptedServer const& p_Server, QByteArray const& p_Method)
{
    auto const requests = p_Server.Requests();
    return static_cast<int>(
        std::count_if(requests.begin(), requests.end(), [&](RecordedRequest const& p_Request) {
            return p_Request.Method == p_Method && p_Request.Path.contains("/files/");
        }));
}

} // namespace

} // namespace Varnholt::TestSupport

Q_DECLARE_METATYPE(Varnholt::TestSupport::Damage)

namespace Varnholt::TestSupport {

/// `verify` of servers.
class ServerVerificationTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void ServersThatAreRightHaveNoDefects();
    void ADefectNamesFileAndServer_data();
    void ADefectNamesFileAndServer();
    void TheDefaultServerIsHeldToTheManifestToo();
    void AManifestThatDiffersIsADefect();
    void AMirrorThatIsDeadIsOneDefect();
    void AMirrorThatFallsSilentIsAskedNoMore();
    void AMirrorNameThatIsNoneIsADefect();
    void ASampleIsReadWholeTheRestByHeaders();
    void ASizeThatDiffersIsSeenWithoutReading();
    void AddressesMayHaveAPath();
    void BothChannelsAreVerified();
    void WithoutAVersionFileThereIsADefect();
};

void ServerVerificationTest::ServersThatAreRightHaveNoDefects()
{
    MirroredGame game;
    game.Publish();
    auto const summary = game.Verify();
    QCOMPARE(summary.Defects, QStringList());
    QCOMPARE(summary.Builds, QStringList("build_1"));
    QCOMPARE(summary.Servers, QStringList({game.Default.BaseUrl(), game.Mirror.BaseUrl()}));
    QCOMPARE(summary.Files, 9);
    QCOMPARE(summary.FilesRead, 9);
    // Every file whole, and the two that can be resumed once more by a range.
    QCOMPARE(RequestsOf(game.Default, "GET"), 5 + 3);
    QCOMPARE(RequestsOf(game.Mirror, "GET"), 4 + 2);
    QCOMPARE(game.Mirror.Count('/' + PublishedGame::ContentPath("not on mirrors")), 0);
}

void ServerVerificationTest::ADefectNamesFileAndServer_data()
{
    QTest::addColumn<Damage>("damage");
    QTest::addColumn<QString>("cause");
    QByteArray const other = SampleContent::Bytes(300000, 2);
    QByteArray const longer = SampleContent::Bytes(300001, 2);
    AddRow("missing", Damage([](ScriptedServer& p_Mirror) { p_Mirror.Remove(DataPath()); }),
           "the server answers with status 404 instead of 200");
    AddRow("redirected", Always(Answer::Redirect("http://127.0.0.1/")),
           "the server answers with status 302 instead of 200");
    AddRow("other bytes", Always(Answer::Normal().Body(other)),
           "the MD5 of its 300000 bytes is " + SampleContent::Md5(other));
    AddRow("other size", Always(Answer::Normal().Body(longer)),
           "the server gives 300001 bytes, 300000 are right");
    AddRow("compressed", Always(Answer::Gzip()),
           "the server compresses it (gzip), so that it cannot be resumed");
    AddRow("a GET compressed", ToTheWhole(Answer::Gzip()),
           "the server compresses it (gzip), so that it cannot be resumed");
    AddRow("no size", Always(Answer::WithoutLength()), "the server does not tell its size");
    AddRow("closed", ToTheWhole(Answer::ClosedBeforeHeaders()),
           "the server does not answer, or ends the answer too early");
    AddRow("cut", ToTheWhole(Answer::Truncated(1000)),
           "the server does not answer, or ends the answer too early");
    AddRow("no ranges", Always(Answer::IgnoringRange()),
           "the server answers with status 200 instead of 206 to the range from byte 234464");
    AddRow("another range", ToTheRange(Answer::WrongRangeStart(-1)),
           "the server says \"bytes 234463-299999/300000\" to the range from byte 234464");
    AddRow("other bytes of a range", ToTheRange(Answer::Normal().Body(other)),
           "the server gives other bytes to the range from byte 234464");
    AddRow(
        "a cut range", ToTheRange(Answer::Truncated(1000)),
        "the server does not answer, or ends the answer too early to the range from byte 234464");
}

void ServerVerificationTest::ADefectNamesFileAndServer()
{
    QFETCH(Damage, damage);
    QFETCH(QString, cause);
    MirroredGame game;
    game.Publish();
    damage(game.Mirror);
    QCOMPARE(game.Verify().Defects,
             QStringList(game.Mirror.Url(DataPath()) + " (Data/a): " + cause));
}

void ServerVerificationTest::TheDefaultServerIsHeldToTheManifestToo()
{
    MirroredGame game;
    game.Publish();
    QByteArray const cut = c_Data.left(299999);
    game.Default.Serve(DataPath(), cut);
    auto const defects = game.Verify().Defects;
    QCOMPARE(defects.value(0), game.Default.Url(DataPath()) +
                                   " (Data/a): the MD5 of its 299999 bytes is " +
                                   SampleContent::Md5(cut));
}

void ServerVerificationTest::AManifestThatDiffersIsADefect()
{
    MirroredGame game;
    game.Publish();
    QString const manifest = "/pelmora_app/builds/build_1/info.json";
    game.Mirror.Serve(manifest, "{}");
    QCOMPARE(game.Verify().Defects,
             QStringList(game.Mirror.Url(manifest) +
                         ": is not the manifest that the default server gives"));
    game.Default.Serve(manifest, "{}");
    QCOMPARE(game.Verify().Defects, QStringList(game.Default.Url(manifest) +
                                                ": is no manifest: it has no list of base files"));
    game.Default.Remove(manifest);
    QCOMPARE(game.Verify().Defects,
             QStringList(game.Default.Url(manifest) +
                         ": the server answers with status 404 instead of 200"));
}

void ServerVerificationTest::AMirrorThatIsDeadIsOneDefect()
{
    MirroredGame game;
    QString const dead = ScriptedServer::RefusingUrl("/");
    game.Game.Options.Hosts = QStringList{QUrl(dead).authority()};
    game.Publish();
    QCOMPARE(game.Verify().Defects, QStringList(dead + "pelmora_app/builds/build_1/info.json: "
                                                       "the server cannot be reached"));
}

void ServerVerificationTest::AMirrorThatFallsSilentIsAskedNoMore()
{
    MirroredGame game;
    for (int i = 0; i < 100; ++i)
        game.Game.Put(QString::number(i), SampleContent::Bytes(10, static_cast<quint32>(i)));
    game.Publish();
    for (int i = 0; i < 100; ++i) {
        QByteArray const bytes = SampleContent::Bytes(10, static_cast<quint32>(i));
        game.Mirror.Script('/' + PublishedGame::ContentPath(bytes))
            .Always(Answer::ClosedBeforeHeaders());
    }
    auto const defects = game.Verify().Defects;
    QCOMPARE(defects.last(), game.Mirror.BaseUrl() +
                                 ": does not answer any more, the rest of its files was not "
                                 "looked at");
    // Those that were in flight when it was enough end too.
    QVERIFY2(defects.size() <= 10, qPrintable(defects.join('\n')));
}

void ServerVerificationTest::AMirrorNameThatIsNoneIsADefect()
{
    MirroredGame game;
    game.Publish();
    game.Default.Serve("/cdns.info", "<html>");
    QCOMPARE(game.Verify().Defects,
             QStringList("cdns.info: \"http://<html>/\" is no address of a server, such as "
                         "http://content.example.net/"));
}

void ServerVerificationTest::ASampleIsReadWholeTheRestByHeaders()
{
    MirroredGame game;
    game.Publish();
    auto const summary = game.Verify(2);
    QCOMPARE(summary.Defects, QStringList());
    QCOMPARE(summary.Files, 9);
    // Of the mirror one less: its sample holds the file that mirrors need not have.
    QCOMPARE(summary.FilesRead, 3);
    QCOMPARE(RequestsOf(game.Default, "HEAD"), 5);
    QCOMPARE(RequestsOf(game.Mirror, "HEAD"), 4);
}

void ServerVerificationTest::ASizeThatDiffersIsSeenWithoutReading()
{
    MirroredGame game;
    game.Publish();
    game.Mirror.Serve(DataPath(), c_Data.left(299999));
    auto const summary = game.Verify(0);
    QCOMPARE(summary.FilesRead, 0);
    QCOMPARE(summary.Defects,
             QStringList(game.Mirror.Url(DataPath()) +
                         " (Data/a): the server gives 299999 bytes, 300000 are right"));
}

void ServerVerificationTest::AddressesMayHaveAPath()
{
    PublishedGame game;
    ScriptedServer server;
    game.Options.Hosts = QStringList{server.Host()};
    game.Publish();
    for (auto const& [path, bytes] : game.Published())
        server.Serve("/a game/" + path, bytes);
    auto const summary =
        Publisher::VerifyServers({server.BaseUrl() + "a%20game", "pelmora_app", 9, false});
    // The mirror, which has no such path, is the only one without the files.
    QCOMPARE(summary.Defects.size(), 2);
    QVERIFY(summary.Defects.first().startsWith(server.BaseUrl() + "pelmora_app/builds/"));
    QCOMPARE(RequestsOf(server, "HEAD"), 2);
}

void ServerVerificationTest::BothChannelsAreVerified()
{
    MirroredGame game;
    game.Game.Publish("live");
    game.Game.Put("Data/next", "next");
    game.Game.Options.DevChannel = true;
    game.Game.Options.Hosts.reset(); // both channels have them
    game.Game.Options.Build.Id = "build_1";
    game.Publish();
    auto const summary = game.Verify();
    QCOMPARE(summary.Builds, QStringList({"live", "build_1"}));
    QCOMPARE(summary.Files, 11);
}

void ServerVerificationTest::WithoutAVersionFileThereIsADefect()
{
    MirroredGame game;
    game.Publish();
    game.Default.Remove("/pelmora_app/version.json");
    QCOMPARE(game.Verify().Defects,
             QStringList(game.Default.Url("/pelmora_app/version.json") +
                         ": the server answers with status 404 instead of 200"));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::ServerVerificationTest)
#include "tst_ServerVerification.moc"
