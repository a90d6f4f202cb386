#include "Tests/Gateway/GatewayBench.hpp"
#include "Tests/Gateway/ProcessFigures.hpp"
#include "Tests/Support/Response.hpp"
#include "Tests/Support/TestMain.hpp"

namespace Varnholt::TestSupport {

namespace {

QByteArray const c_Path = "game/files/a";
QByteArray const c_Version = "game/version.json";
QByteArray const c_Manifest = "game/builds/build_1/info.json";

/// What the largest document takes while it grows, and a window.
constexpr qint64 c_MuchMemory = 256 * c_MiB;
constexpr int c_MuchTime = 30000;

/// Zeros, packed: a gzip stream without its end, which nobody should get to.
QByteArray Bomb(int p_Size)
{
    // qCompress() puts a length and the header of a zlib stream in front.
    return QByteArray("\x1f\x8b\x08\0\0\0\0\0\0\x03", 10) +
           qCompress(QByteArray(p_Size, '\0'), 1).mid(6);
}

} // namespace

/// Servers that want to do harm cost bounded memory and time.
class GatewayHostileTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void ADocumentHasAnEnd_data();
    void ADocumentHasAnEnd();
    void AHostListHasAnEnd_data();
    void AHostListHasAnEnd();
    void ContentHasAnEnd_data();
    void ContentHasAnEnd();
    void AFileIsNoLongerThanItsSize_data();
    void AFileIsNoLongerThanItsSize();
    void WrongRangesGiveNoWrongBytes_data();
    void WrongRangesGiveNoWrongBytes();
    void AHeadThatContradictsItselfTeachesNoLength_data();
    void AHeadThatContradictsItselfTeachesNoLength();
    void HeadersThatDripAreSilence();
    void ALongHostListIsCut();
    void SizesBeyondReasonAreNoSizes_data();
    void SizesBeyondReasonAreNoSizes();
    void WhatIsNoHttpIsAProblem();
    void HeadersOfAServerDoNotReachTheClient();

private:
    static void BadAnswers();
    /// Checks what has been spent since `init`.
    bool IsCheap() const
    {
        bool const is = Peak->Bytes() < c_MuchMemory && Timer.elapsed() < c_MuchTime;
        if (!is)
            qWarning("%lld bytes, %lld ms", Peak->Bytes(), Timer.elapsed());
        return is;
    }

    std::unique_ptr<GatewayBench> Bench;
    std::unique_ptr<ProcessFigures::MemoryPeak> Peak;
    QElapsedTimer Timer;
    QByteArray const Bytes = LargeBytes(c_MiB);
};

void GatewayHostileTest::init()
{
    Bench = std::make_unique<GatewayBench>(1);
    Bench->Options.RetryFor = std::chrono::seconds{3};
    Bench->Serve(c_Path, Bytes);
    Bench->Server->Serve('/' + c_Manifest, Bytes);
    Bench->Open();
    Peak = std::make_unique<ProcessFigures::MemoryPeak>();
    Timer.start();
}

void GatewayHostileTest::cleanup()
{
    Bench.reset();
}

void GatewayHostileTest::BadAnswers()
{
    QTest::addColumn<Answer>("answer");
    QTest::newRow("headers without end") << Answer::EndlessHeaders();
    QTest::newRow("body without end") << Answer::EndlessBody();
    Answer packed = Answer::EndlessBody();
    QTest::newRow("packed without end") << packed.With("Content-Encoding", "gzip");
    static QByteArray const s_Bomb = Bomb(512 * c_MiB);
    QTest::newRow("bomb") << Answer::Normal().Body(s_Bomb).With("Content-Encoding", "gzip");
    QTest::newRow("one huge header")
        << Answer::Normal().With("X-Large", QByteArray(4 * c_MiB, 'x'));
    Answer many;
    for (int i = 0; i < 100'000; ++i)
        many.With("X-" + QByteArray::number(i), "x");
    QTest::newRow("many headers") << many;
    QTest::newRow("redirects") << Answer::Redirect('/' + c_Version);
    Answer location = Answer::Redirect("/" + QByteArray(c_MiB, 'x'));
    QTest::newRow("long redirect") << location;
}

void GatewayHostileTest::ADocumentHasAnEnd_data()
{
    BadAnswers();
    QTest::newRow("a length beyond reason") << Answer::ClaimingLength(1'000'000'000'000);
}

void GatewayHostileTest::ADocumentHasAnEnd()
{
    QFETCH(Answer, answer);
    for (QByteArray const& path : {c_Version, c_Manifest}) {
        Bench->Server->Script('/' + path).Always(answer);
        DoorReply const reply = Bench->Document(path);
        QVERIFY2(reply.Status >= 500, QByteArray::number(reply.Status));
        QVERIFY(Bench->Door->ProblemOf(path.toStdString()));
        QVERIFY(IsCheap());
        QVERIFY(Bench->Server->Requests().size() < 200);
    }
}

void GatewayHostileTest::AHostListHasAnEnd_data()
{
    BadAnswers();
}

void GatewayHostileTest::AHostListHasAnEnd()
{
    QFETCH(Answer, answer);
    Bench->Server->Script("/cdns.info").Always(answer);
    Bench->Server->Script('/' + c_Version).Always(answer);
    Bench->Door->BeginRun(GatewayBench::Source::Server);
    Bench->FetchHosts();
    QVERIFY(Bench->Door->ProblemOf("cdns.info"));
    QVERIFY(IsCheap());
    QCOMPARE(AskDoor({Bench->DocumentUrl(c_Path)}).Body, Bytes);
}

void GatewayHostileTest::ContentHasAnEnd_data()
{
    BadAnswers();
}

void GatewayHostileTest::ContentHasAnEnd()
{
    QFETCH(Answer, answer);
    Bench->Options.RetryFor = std::chrono::milliseconds{c_MuchTime}; // the content server has it
    Bench->Open();
    Bench->ScriptForEver("/game/version.json", answer);
    Bench->Mirrors[0]->Script("GET *").Always(answer);
    Bench->Mirrors[0]->Script("HEAD *").Always(answer);
    QVERIFY(Bench->Content(c_Path).Body == Bytes);
    QVERIFY(IsCheap());
    QVERIFY(Bench->Mirrors[0]->Requests().size() < 200);
}

void GatewayHostileTest::AFileIsNoLongerThanItsSize_data()
{
    QTest::addColumn<Answer>("answer");
    Answer without = Answer::EndlessBody();
    without.IgnoresRange = true;
    QTest::newRow("without ranges") << without;
    QTest::newRow("by range") << Answer::EndlessBody();
    QTest::newRow("another length") << Answer::ClaimingLength(1'000'000'000'000);
}

void GatewayHostileTest::AFileIsNoLongerThanItsSize()
{
    QFETCH(Answer, answer);
    Bench->ScriptForEver("GET *", answer);
    qint64 received = 0;
    DoorClient client([&](QByteArray const& p_Bytes) { received += p_Bytes.size(); });
    DoorReply const reply = client.Ask({Bench->ContentUrl(c_Path)});
    QVERIFY2(received <= Bytes.size(), QByteArray::number(received));
    QVERIFY(reply.Header("Content-Length").isNull() ||
            reply.Header("Content-Length").toLongLong() <= Bytes.size());
    QVERIFY(IsCheap());
    QVERIFY(Becomes([&] { return Bench->AnswersNow() == 0; }));
}

void GatewayHostileTest::WrongRangesGiveNoWrongBytes_data()
{
    QTest::addColumn<QByteArray>("range");
    for (char const* const range :
         {"", "bytes", "bytes */1048576", "bytes 1-1048575/1048576", "bytes 0-1048575/1",
          "bytes 0-1048575/1048577", "bytes 5-2/1048576", "bytes -1-1048575/1048576",
          "bytes 18446744073709551615-18446744073709551615/1048576"})
        QTest::newRow(range) << QByteArray(range);
}

void GatewayHostileTest::WrongRangesGiveNoWrongBytes()
{
    QFETCH(QByteArray, range);
    QByteArray const wrong(c_MiB, 'w');
    Bench->Mirrors[0]->Script("GET *").Always(Answer::ClaimingRange(range).Body(wrong));
    QVERIFY(Bench->Content(c_Path).Body == Bytes);
    QVERIFY(IsCheap());
}

void GatewayHostileTest::AHeadThatContradictsItselfTeachesNoLength_data()
{
    QTest::addColumn<Answer>("answer");
    QTest::addColumn<bool>("isPlanned");
    QTest::newRow("of a part") << Answer::SilentBeforeHeaders() << true;
    QTest::newRow("of the first byte, asked for its size") << Answer::Status(405) << false;
}

void GatewayHostileTest::AHeadThatContradictsItselfTeachesNoLength()
{
    QFETCH(Answer, answer);
    QFETCH(bool, isPlanned);
    Bench->Mirrors[0]->Script("HEAD *").Always(answer);
    Bench->Mirrors[0]->Script("GET *").Then(Answer::ClaimingRange("bytes 0-9/10"));
    if (isPlanned) // otherwise the size is asked for first
        Bench->Door->Plan({Planned(c_Path)});
    QVERIFY(Bench->Content(c_Path).Body == Bytes);
}

void GatewayHostileTest::HeadersThatDripAreSilence()
{
    Answer drip = Answer::EndlessHeaders();
    drip.PieceBytes = 1;
    drip.PauseMilliseconds = 50;
    Bench->ScriptForEver("/" + c_Version, drip);
    Bench->ScriptForEver("GET /" + c_Path, drip);
    DoorReader content({Bench->ContentUrl(c_Path)});
    QVERIFY(Bench->Document(c_Version).Status >= 500);
    QVERIFY(!content.Reply().IsWhole || content.Reply().Status >= 500);
    QVERIFY(Bench->Door->Snapshot().GaveUp);
    QVERIFY(IsCheap());
}

void GatewayHostileTest::ALongHostListIsCut()
{
    QByteArray list;
    for (int i = 0; i < 500'000; ++i)
        list += "m" + QByteArray::number(i) + ".invalid ";
    Bench->Server->Serve("/cdns.info", list);
    Bench->Door->BeginRun(GatewayBench::Source::Server);
    Bench->FetchHosts();
    QVERIFY2(Bench->Door->Servers().size() <= 10'000,
             QByteArray::number(int(Bench->Door->Servers().size())));
    QVERIFY(IsCheap());
}

void GatewayHostileTest::SizesBeyondReasonAreNoSizes_data()
{
    QTest::addColumn<QByteArray>("length");
    for (char const* const length :
         {"99999999999999999999", "18446744073709551615", "-1", "9223372036854775807", "x", "1e9"})
        QTest::newRow(length) << QByteArray(length);
}

void GatewayHostileTest::SizesBeyondReasonAreNoSizes()
{
    QFETCH(QByteArray, length);
    Answer answer = Answer::WithoutLength().With("Content-Length", length);
    Bench->Mirrors[0]->Script("*").Always(answer);
    Bench->Door->Plan({Planned(c_Path)});
    DoorClient client([](QByteArray const&) {});
    DoorReply const reply = client.Ask({Bench->ContentUrl(c_Path)});
    QVERIFY(reply.Status != 0);
    QVERIFY(IsCheap());
}

void GatewayHostileTest::WhatIsNoHttpIsAProblem()
{
    QTcpServer server;
    QVERIFY(server.listen(QHostAddress::LocalHost));
    connect(&server, &QTcpServer::newConnection, &server, [&] {
        while (QTcpSocket* const socket = server.nextPendingConnection()) {
            socket->write(QByteArray(100'000, '\xff'));
            socket->disconnectFromHost();
        }
    });
    Bench->Options.ContentServer = "http://127.0.0.1:" + std::to_string(server.serverPort()) + '/';
    auto const door = Gateway::Gateway::Create(Bench->Options);
    door->BeginRun(GatewayBench::Source::Server);
    DoorReader reader({QByteArray::fromStdString(door->BaseUrl()) + "d/" + c_Version});
    QVERIFY(Becomes([&] { return reader.IsDone(); }));
    QVERIFY(reader.Reply().Status >= 500);
    QVERIFY(door->ProblemOf(c_Version.toStdString()));
    QVERIFY(!reader.Reply().Body.contains('\xff'));
}

void GatewayHostileTest::HeadersOfAServerDoNotReachTheClient()
{
    Bench->ScriptForEver("*", Answer::Normal()
                                  .With("Set-Cookie", "a=b")
                                  .With("X-Strange", "yes")
                                  .With("Refresh", "0; url=http://elsewhere.example/"));
    for (QByteArray const& url : {Bench->ContentUrl(c_Path), Bench->DocumentUrl(c_Version)}) {
        DoorReply const reply = AskDoor({url});
        QCOMPARE(reply.Status, 200);
        for (char const* const header : {"Set-Cookie", "X-Strange", "Refresh"})
            QVERIFY2(reply.Header(header).isNull(), header);
    }
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::GatewayHostileTest)
#include "tst_GatewayHostile.moc"
