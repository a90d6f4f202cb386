#include "Tests/Gateway/GatewayBench.hpp"
#include "Tests/Support/SampleContent.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QSemaphore>
#include <QUrl>

namespace Varnholt::TestSupport {

namespace {

QByteArray const c_Path = "game/files/a";

/// The path of an address, and the same with another first element.
QByteArray PathOf(QByteArray const& p_Url)
{
    return QUrl::fromEncoded(p_Url).path(QUrl::FullyEncoded).toLatin1();
}

} // namespace

/// What the door is to those on this machine.
class GatewayDoorTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void ListensOnLoopbackOnly();
    void ItsAddressHoldsWhatNobodyCanGuess();
    void NothingElseIsAnswered_data();
    void NothingElseIsAnswered();
    void AnotherServersAddressIsNotAskedFor();
    void OtherMethodsAreRefused_data();
    void OtherMethodsAreRefused();
    void NamesAreHandedOnAsTheyAreWritten();
    void HeadTellsWhatGetGives();
    void ARangeIsHonoured_data();
    void ARangeIsHonoured();
    void ARangeBehindTheEndIsRefused();
    void AnEmptyFileIsGiven();
    void AConnectionServesManyRequests();
    void ClientsThatSayNothingKeepNobodyOut();
    void AClientThatLeavesHarmsNobody();
    void ThePortIsClosedAfterwards();
    void TwoDoorsKnowNothingOfEachOther();

private:
    /// Requests that a server has seen beside those for the host list.
    int Asked() const
    {
        int requests = 0;
        for (ScriptedServer const* const server : Bench->Servers())
            requests += int(server->Requests().size()) - server->Count("/cdns.info");
        return requests;
    }

    std::unique_ptr<GatewayBench> Bench;
    QByteArray const Bytes = SampleContent::Bytes(100000);
};

void GatewayDoorTest::init()
{
    Bench = std::make_unique<GatewayBench>();
    Bench->Serve(c_Path, Bytes);
    Bench->Open();
}

void GatewayDoorTest::cleanup()
{
    Bench.reset();
}

void GatewayDoorTest::ListensOnLoopbackOnly()
{
    QByteArray const url = QByteArray::fromStdString(Bench->Door->BaseUrl());
    QVERIFY2(url.startsWith("http://127.0.0.1:"), url);
    QVERIFY(DoorClient().Connect(url));
    // Whoever listens at every address listens at this one too.
    QVERIFY(!DoorClient().Connect(QByteArray(url).replace("127.0.0.1", "127.0.0.2")));
}

void GatewayDoorTest::ItsAddressHoldsWhatNobodyCanGuess()
{
    QSet<QByteArray> seen;
    for (int i = 0; i < 20; ++i) {
        auto const door = Gateway::Gateway::Create(Bench->Options);
        QByteArray const path = PathOf(QByteArray::fromStdString(door->BaseUrl()));
        QVERIFY2(QRegularExpression("^/[0-9a-f]{32}/$").match(path).hasMatch(), path);
        seen += path;
    }
    QCOMPARE(seen.size(), 20);
}

void GatewayDoorTest::NothingElseIsAnswered_data()
{
    QTest::addColumn<QByteArray>("path"); // * stands for the random element
    for (char const* const path : {"/",
                                   "/cdns.info",
                                   "/*",
                                   "/*/",
                                   "/*/cdns.info",
                                   "/*/game/files/a",
                                   "/*/d",
                                   "/*/d/",
                                   "/*/m",
                                   "/*/m/",
                                   "/*/x/game/files/a",
                                   "/*/d/game",
                                   "/*/d/game/",
                                   "/*/m/game/",
                                   "/*/d/unknown.txt",
                                   "/*/m/../d/game/files/a",
                                   "/*/d/game/../../secret",
                                   "/*/m/game/%2e%2e/%2e%2e/secret",
                                   "/*/m/game/..%2f..%2fsecret",
                                   "/*/m/game/..%5csecret",
                                   "/*/m//game/files/a",
                                   "/0123456789abcdef0123456789abcdef/d/cdns.info",
                                   "/0123456789abcdef0123456789abcdef/m/game/files/a",
                                   "//*/m/game/files/a"})
        QTest::newRow(path) << QByteArray(path);
}

void GatewayDoorTest::NothingElseIsAnswered()
{
    QFETCH(QByteArray, path);
    Bench->Serve("secret", "secret");
    Bench->Serve("unknown.txt", "unknown");
    QByteArray const url = QByteArray::fromStdString(Bench->Door->BaseUrl());
    path.replace("/*", PathOf(url).chopped(1));
    DoorReply const reply = AskDoor({url, {}, "GET", path});
    QVERIFY2(reply.Status == 404 || reply.Status == 400, QByteArray::number(reply.Status));
    QCOMPARE(Asked(), 0);
}

void GatewayDoorTest::AnotherServersAddressIsNotAskedFor()
{
    ScriptedServer other;
    other.Serve("/" + c_Path, Bytes);
    QByteArray const door = QByteArray::fromStdString(Bench->Door->BaseUrl());
    for (QByteArray const& target :
         {other.Url("/" + c_Path).toLatin1(), Bench->Mirrors[0]->Url("/" + c_Path).toLatin1()}) {
        DoorReply const reply = AskDoor({door, {}, "GET", target});
        QVERIFY2(reply.Status >= 400, QByteArray::number(reply.Status));
    }
    QCOMPARE(other.Requests().size(), std::size_t{0});
    QCOMPARE(Asked(), 0);
}

void GatewayDoorTest::OtherMethodsAreRefused_data()
{
    QTest::addColumn<QByteArray>("method");
    for (char const* const method :
         {"POST", "PUT", "DELETE", "OPTIONS", "PATCH", "TRACE", "CONNECT"})
        QTest::newRow(method) << QByteArray(method);
}

void GatewayDoorTest::OtherMethodsAreRefused()
{
    QFETCH(QByteArray, method);
    for (QByteArray const& url : {Bench->ContentUrl(c_Path), Bench->DocumentUrl("cdns.info")}) {
        DoorReply const reply = AskDoor({url, {}, method});
        QVERIFY2(reply.Status >= 400, QByteArray::number(reply.Status));
    }
    QCOMPARE(Asked(), 0);
}

void GatewayDoorTest::NamesAreHandedOnAsTheyAreWritten()
{
    QByteArray const path = "game/files/a%20b%23c%25%C3%A4";
    Bench->Serve(QUrl::fromPercentEncoding(path), Bytes);
    QCOMPARE(Bench->Content(path).Body, Bytes);
    for (RecordedRequest const& request : Bench->Requests(QUrl::fromPercentEncoding(path), "GET"))
        QCOMPARE(request.Target, '/' + path);
}

void GatewayDoorTest::HeadTellsWhatGetGives()
{
    for (QByteArray const& url : {Bench->ContentUrl(c_Path), Bench->DocumentUrl(c_Path),
                                  Bench->DocumentUrl("game/version.json")}) {
        DoorReply const head = AskDoor({url, {}, "HEAD"});
        DoorReply const whole = AskDoor({url});
        QCOMPARE(head.Status, 200);
        QCOMPARE(whole.Status, 200);
        QCOMPARE(head.Header("Content-Length").toInt(), whole.Body.size());
        QCOMPARE(whole.Header("Content-Length").toInt(), whole.Body.size());
    }
}

void GatewayDoorTest::ARangeIsHonoured_data()
{
    QTest::addColumn<int>("first");
    for (int const first : {0, 1, 4096, 99999})
        QTest::newRow(QByteArray::number(first)) << first;
}

void GatewayDoorTest::ARangeIsHonoured()
{
    QFETCH(int, first);
    QByteArray const number = QByteArray::number(first);
    for (QByteArray const& url : {Bench->ContentUrl(c_Path), Bench->DocumentUrl(c_Path)}) {
        DoorReply const reply = AskDoor({url, "bytes=" + number + '-'});
        QCOMPARE(reply.Status, 206);
        QCOMPARE(reply.Header("Content-Range"), "bytes " + number + "-99999/100000");
        QCOMPARE(reply.Body, Bytes.mid(first));
    }
    // What lies before is not fetched for it.
    for (RecordedRequest const& request : Bench->Requests(c_Path, "GET"))
        QVERIFY2(request.Header("Range").startsWith("bytes=" + number + '-') ||
                     (first == 0 && !request.Has("Range")),
                 request.Header("Range"));
}

void GatewayDoorTest::ARangeBehindTheEndIsRefused()
{
    for (QByteArray const& range : {QByteArray("bytes=100000-"), QByteArray("bytes=100001-")}) {
        DoorReply const reply = Bench->Content(c_Path, range);
        QCOMPARE(reply.Status, 416);
        QCOMPARE(reply.Header("Content-Range"), QByteArray("bytes */100000"));
    }
}

void GatewayDoorTest::AnEmptyFileIsGiven()
{
    Bench->Serve("game/files/empty", "");
    DoorReply const reply = Bench->Content("game/files/empty");
    QCOMPARE(reply.Status, 200);
    QCOMPARE(reply.Header("Content-Length"), QByteArray("0"));
    QVERIFY(reply.IsWhole);
    QCOMPARE(AskDoor({Bench->ContentUrl("game/files/empty"), {}, "HEAD"}).Header("Content-Length"),
             QByteArray("0"));
}

void GatewayDoorTest::AConnectionServesManyRequests()
{
    DoorClient client;
    QVERIFY(client.Connect(Bench->ContentUrl(c_Path)));
    for (int i = 0; i < 20; ++i) {
        QByteArray const path = "game/files/" + QByteArray::number(i);
        Bench->Serve(path, SampleContent::Bytes(1000 + i, quint32(i + 1)));
        DoorReply const reply = client.Ask({Bench->ContentUrl(path)});
        QCOMPARE(reply.Body, SampleContent::Bytes(1000 + i, quint32(i + 1)));
        QVERIFY(reply.Header("Connection").toLower() != "close");
    }
}

void GatewayDoorTest::ClientsThatSayNothingKeepNobodyOut()
{
    std::vector<std::unique_ptr<DoorClient>> silent;
    for (int i = 0; i < 30; ++i) {
        silent.push_back(std::make_unique<DoorClient>());
        QVERIFY(silent.back()->Connect(Bench->ContentUrl(c_Path)));
        QVERIFY(silent.back()->Send(i % 2 == 0 ? "" : "GET /"));
    }
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(Bench->Content(c_Path).Body, Bytes);
    QVERIFY2(timer.elapsed() < 2000, QByteArray::number(timer.elapsed()));
}

void GatewayDoorTest::AClientThatLeavesHarmsNobody()
{
    QByteArray const large = LargeBytes(20 * c_MiB);
    Bench->Serve("game/files/large", large);
    for (int i = 0; i < 20; ++i) {
        QSemaphore turns(i + 1);
        DoorReader leaving({Bench->ContentUrl("game/files/large")},
                           [&](QByteArray const&) { turns.tryAcquire(1, DoorClient::c_Patience); });
        QVERIFY(Becomes([&] { return turns.available() == 0; }));
        leaving.Abandon();
        turns.release(1000);
        QVERIFY(!leaving.Reply().IsWhole);
    }
    QCOMPARE(Bench->Content(c_Path).Body, Bytes);
    QVERIFY(Bench->Content("game/files/large").Body == large);
}

void GatewayDoorTest::ThePortIsClosedAfterwards()
{
    QByteArray const url = Bench->ContentUrl(c_Path);
    DoorClient open;
    QVERIFY(open.Connect(url));
    Bench->Door.reset();
    QVERIFY(!DoorClient().Connect(url));
    QCOMPARE(open.Ask({url}).Status, 0);
}

void GatewayDoorTest::TwoDoorsKnowNothingOfEachOther()
{
    GatewayBench other;
    other.Serve(c_Path, "other");
    other.Open();
    QCOMPARE(Bench->Content(c_Path).Body, Bytes);
    QCOMPARE(other.Content(c_Path).Body, QByteArray("other"));
    QByteArray const crossed = PathOf(Bench->ContentUrl(c_Path));
    QCOMPARE(AskDoor({other.ContentUrl(c_Path), {}, "GET", crossed}).Status, 404);
    Bench->Door.reset();
    QCOMPARE(other.Content(c_Path, "bytes=1-").Body, QByteArray("ther"));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::GatewayDoorTest)
#include "tst_GatewayDoor.moc"
