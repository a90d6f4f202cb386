#include "Tests/Gateway/GatewayBench.hpp"
#include "Tests/Support/TestMain.hpp"

namespace Varnholt::TestSupport {

namespace {

using Kind = FetchProblem::Type;
using Source = GatewayBench::Source;
using namespace std::chrono_literals;

QByteArray const c_Path = "game/files/a";
QByteArray const c_Version = "game/version.json";

GatewayBench::Documents const c_Copies{{"game/version.json", "old version"},
                                       {"game/builds/build_0/info.json", "old manifest"},
                                       {"cdns.info", "mirror.example"}};

} // namespace

/// The host list, and the documents of an earlier run in a server's place.
class GatewayHostsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void TheClientIsGivenTheDoorForAMirror();
    void NamesBecomeMirrors_data();
    void NamesBecomeMirrors();
    void AForeignListIsNone_data();
    void AForeignListIsNone();
    void AListThatDoesNotComeLeavesTheContentServer_data();
    void AListThatDoesNotComeLeavesTheContentServer();
    void ALaterListReplacesTheEarlier();

    void CopiesAreAllThatIsAskedFor();
    void CopiesStandInForASilentServer();
    void CopiesStandInForAServerThatIsNotThere();
    void AServerThatAnswersIsPreferredToCopies();
    void WithoutACopyTheServerIsWaitedFor();
};

void GatewayHostsTest::TheClientIsGivenTheDoorForAMirror()
{
    GatewayBench bench;
    bench.Open();
    QUrl const door(QString::fromStdString(bench.Door->BaseUrl()));
    QByteArray const list = bench.FetchHosts().Body.trimmed();
    QCOMPARE(list, "127.0.0.1:" + QByteArray::number(door.port()) + door.path().toLatin1() + 'm');
}

void GatewayHostsTest::NamesBecomeMirrors_data()
{
    QTest::addColumn<QByteArray>("list");
    QTest::addColumn<bool>("isHttps");
    QTest::addColumn<QStringList>("servers");
    AddRow("one", QByteArray("a.example"), false, QStringList("http://a.example/"));
    AddRow("two", QByteArray("a.example b.example"), false,
           QStringList{"http://a.example/", "http://b.example/"});
    AddRow("ports", QByteArray("a.example:8080 127.0.0.1:81"), false,
           QStringList{"http://a.example:8080/", "http://127.0.0.1:81/"});
    AddRow("blanks", QByteArray(" a.example  b.example\r\n"), false,
           QStringList{"http://a.example/", "http://b.example/"});
    AddRow("lines", QByteArray("a.example\nb.example\n"), false,
           QStringList{"http://a.example/", "http://b.example/"});
    AddRow("path", QByteArray("a.example/games"), false, QStringList("http://a.example/games/"));
    AddRow("https entry", QByteArray("https://a.example b.example"), false,
           QStringList{"https://a.example/", "http://b.example/"});
    AddRow("http entry", QByteArray("http://a.example"), false, QStringList("http://a.example/"));
    AddRow("https for all", QByteArray("a.example b.example:444"), true,
           QStringList{"https://a.example/", "https://b.example:444/"});
    AddRow("doubles",
           QByteArray("a.example A.Example:80 http://a.EXAMPLE/ b.example:443 "
                      "https://b.example:443"),
           false, QStringList{"http://a.example/", "http://b.example:443/", "https://b.example/"});
    AddRow("none", QByteArray(""), false, QStringList());
    AddRow("blanks only", QByteArray(" \n "), false, QStringList());
}

void GatewayHostsTest::NamesBecomeMirrors()
{
    QFETCH(QByteArray, list);
    QFETCH(bool, isHttps);
    QFETCH(QStringList, servers);
    GatewayBench bench(0);
    bench.Server->Serve("/cdns.info", list);
    bench.Options.HttpsMirrors = isHttps;
    bench.Open();
    QStringList seen;
    for (std::string const& server : bench.Door->Servers())
        seen += QString::fromStdString(server);
    QCOMPARE(seen, QStringList(bench.Server->BaseUrl()) + servers);
    QVERIFY(!bench.Door->ProblemOf("cdns.info"));
}

void GatewayHostsTest::AForeignListIsNone_data()
{
    QTest::addColumn<QByteArray>("list");
    AddRow("page", QByteArray("<!DOCTYPE html>\n<html><body>Log in</body></html>"));
    AddRow("json", QByteArray("{\"hosts\":[\"a.example\"]}"));
    AddRow("names and a page", QByteArray("a.example <html>"));
    AddRow("user", QByteArray("user:secret@a.example"));
    AddRow("query", QByteArray("a.example?x"));
    AddRow("another protocol", QByteArray("ftp://a.example"));
    AddRow("file", QByteArray("file:///etc"));
    AddRow("zero byte", QByteArray("a.example\0b", 11));
    AddRow("bytes", QByteArray("\x1f\x8b\x08\xff\xfe"));
}

void GatewayHostsTest::AForeignListIsNone()
{
    QFETCH(QByteArray, list);
    GatewayBench bench(0);
    bench.Serve(c_Path, "content");
    bench.Server->Serve("/cdns.info", list);
    bench.Open();
    QCOMPARE(bench.Door->Servers(), std::vector<std::string>{bench.Options.ContentServer});
    FetchProblem const problem = bench.ProblemOf("cdns.info");
    QCOMPARE(problem.Kind, Kind::Unusable);
    QCOMPARE(problem.Url, bench.Server->Url("/cdns.info").toStdString());
    QCOMPARE(problem.Why, FetchProblem::Cause::NoHostList);
    QVERIFY(problem.Detail.empty());
    QCOMPARE(bench.Content(c_Path).Body, QByteArray("content"));
}

void GatewayHostsTest::AListThatDoesNotComeLeavesTheContentServer_data()
{
    QTest::addColumn<Answer>("answer");
    AddRow("404", Answer::Status(404));
    AddRow("500", Answer::Status(500));
    AddRow("closed", Answer::ClosedBeforeHeaders());
    AddRow("silent", Answer::SilentBeforeHeaders());
}

void GatewayHostsTest::AListThatDoesNotComeLeavesTheContentServer()
{
    QFETCH(Answer, answer);
    GatewayBench bench;
    bench.Serve(c_Path, "content");
    bench.Server->Script("/cdns.info").Always(answer);
    bench.Options.StallTime = StallFor(answer);
    bench.Open();
    QCOMPARE(bench.Door->Servers(), std::vector<std::string>{bench.Options.ContentServer});
    QCOMPARE(bench.Document(c_Path).Body, QByteArray("content"));
    QVERIFY(bench.Door->ProblemOf("cdns.info"));
}

void GatewayHostsTest::ALaterListReplacesTheEarlier()
{
    GatewayBench bench;
    bench.Open();
    bench.Serve(c_Path, "content");
    bench.Server->Serve("/cdns.info", bench.Mirrors[1]->Host().toLatin1());
    bench.Door->BeginRun(Source::Server);
    bench.FetchHosts();
    QCOMPARE(bench.Door->Servers(),
             (std::vector<std::string>{bench.Options.ContentServer,
                                       bench.Mirrors[1]->BaseUrl().toStdString()}));
    QCOMPARE(bench.Content(c_Path).Body, QByteArray("content"));
    QCOMPARE(bench.Mirrors[0]->Requests().size(), std::size_t{0});
}

void GatewayHostsTest::CopiesAreAllThatIsAskedFor()
{
    GatewayBench bench;
    bench.Serve(c_Path, "content");
    bench.Open(Source::Copies, c_Copies);
    QCOMPARE(bench.Document(c_Version).Body, QByteArray("old version"));
    QCOMPARE(bench.Document("game/builds/build_0/info.json").Body, QByteArray("old manifest"));
    QVERIFY(bench.Document("game/builds/build_1/info.json").Status >= 400);
    DoorReply const content = bench.Content(c_Path);
    QVERIFY(content.Status != 200 || !content.IsWhole);
    QCOMPARE(bench.Door->Fetched().size(), std::size_t{0});
    for (ScriptedServer const* const server : bench.Servers())
        QCOMPARE(server->Requests().size(), std::size_t{0});
}

void GatewayHostsTest::CopiesStandInForASilentServer()
{
    GatewayBench bench;
    bench.Server->Script("*").Always(Answer::SilentBeforeHeaders());
    bench.Open(Source::ServerOrCopies, c_Copies);
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(bench.Document(c_Version).Body, QByteArray("old version"));
    QCOMPARE(bench.Document("game/builds/build_0/info.json").Body, QByteArray("old manifest"));
    QVERIFY2(timer.elapsed() < 10000, QByteArray::number(timer.elapsed()));
    QCOMPARE(bench.Door->Snapshot().Copies.value_or(FetchProblem{}).Kind, Kind::Silent);
    QCOMPARE(bench.Door->Fetched().size(), std::size_t{0});
}

void GatewayHostsTest::CopiesStandInForAServerThatIsNotThere()
{
    GatewayBench bench;
    bench.Options.ContentServer = ScriptedServer::RefusingUrl("/").toStdString();
    bench.Options.CopyDelay = 30s;
    bench.Open(Source::ServerOrCopies, c_Copies);
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(bench.Document(c_Version).Body, QByteArray("old version"));
    QVERIFY2(timer.elapsed() < 10000, QByteArray::number(timer.elapsed()));
    auto const copies = bench.Door->Snapshot().Copies;
    QVERIFY(copies);
    QCOMPARE(copies->Kind, Kind::Unreachable);
    QVERIFY(copies->Url.find(bench.Options.ContentServer) == 0);
}

void GatewayHostsTest::AServerThatAnswersIsPreferredToCopies()
{
    GatewayBench bench;
    bench.Open(Source::ServerOrCopies, c_Copies);
    QCOMPARE(bench.Document(c_Version).Body, QByteArray("{\"build\":\"build_1\"}"));
    QVERIFY(!bench.Door->Snapshot().Copies);
    QCOMPARE(bench.Door->Fetched().count(c_Version.toStdString()), std::size_t{1});
    QCOMPARE(bench.Door->Servers().size(), std::size_t{3});
}

void GatewayHostsTest::WithoutACopyTheServerIsWaitedFor()
{
    GatewayBench bench;
    bench.Server->Script('/' + c_Version).Always(Answer::SilentBeforeHeaders());
    bench.Open(Source::ServerOrCopies, {{"cdns.info", "a.example"}});
    DoorReader reader({bench.DocumentUrl(c_Version)});
    QVERIFY(!Happens([&] { return reader.IsDone(); }));
    bench.Server->OpenGate('/' + c_Version);
    QCOMPARE(reader.Reply().Body, QByteArray("{\"build\":\"build_1\"}"));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::GatewayHostsTest)
#include "tst_GatewayHosts.moc"
