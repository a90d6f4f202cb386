#include "Tests/Gateway/GatewayBench.hpp"
#include "Tests/Support/TestMain.hpp"

#include <mutex>

namespace Varnholt::TestSupport {

namespace {

using Kind = FetchProblem::Type;
using Source = GatewayBench::Source;

QByteArray const c_Path = "game/files/a";
QString const c_ServerPath = "/game/files/a";

Gateway::Reply Ask(GatewayBench& p_Bench, Gateway::Question const& p_Question)
{
    std::mutex mutex;
    std::optional<Gateway::Reply> reply;
    p_Bench.Door->Ask(p_Question, [&](Gateway::Reply const& p_Reply) {
        std::lock_guard const lock(mutex);
        reply = p_Reply;
    });
    Becomes([&] {
        std::lock_guard const lock(mutex);
        return reply.has_value();
    });
    return reply.value_or(Gateway::Reply{});
}

} // namespace

/// What the door tells of servers, and questions that go past its files.
class GatewayFiguresTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void FiguresTellWhoGaveWhat();
    void SpeedsOutliveTheRun();
    void AQuestionIsAnswered();
    void AStatusIsAnAnswer();
    void AQuestionsFailureIsTold_data();
    void AQuestionsFailureIsTold();
    void NoQuestionIsAnsweredAfterTheEnd();
};

void GatewayFiguresTest::FiguresTellWhoGaveWhat()
{
    GatewayBench bench;
    QByteArray const bytes = LargeBytes(40 * c_MiB);
    bench.Serve(c_Path, bytes);
    bench.Serve("game/files/own", "content");
    bench.Open();
    bench.Door->Plan({Planned(c_Path)});
    QVERIFY(bench.Content(c_Path).Body == bytes);
    QCOMPARE(AskDoor({bench.DocumentUrl("game/files/own")}).Body, QByteArray("content"));
    auto const snapshot = bench.Door->Snapshot();
    QCOMPARE(snapshot.Received, std::uint64_t(bytes.size()) + 7);
    QCOMPARE(snapshot.Server, bench.Server->Host().toStdString());
    QCOMPARE(snapshot.Servers.size(), std::size_t{3});
    std::uint64_t sum = 0;
    for (std::size_t i = 0; i < 3; ++i) {
        auto const& server = snapshot.Servers[i];
        QCOMPARE(server.IsDefault, i == 0);
        QVERIFY(!server.IsBehind);
        for (ScriptedServer const* const real : bench.Servers())
            if (real->Host().toStdString() == server.Name)
                QCOMPARE(qint64(server.Received),
                         real->BodyBytes(c_ServerPath) + real->BodyBytes("/game/files/own"));
        sum += server.Received;
    }
    QCOMPARE(sum, snapshot.Received);
    QVERIFY(!snapshot.Waits && !snapshot.GaveUp && !snapshot.Copies);
}

void GatewayFiguresTest::SpeedsOutliveTheRun()
{
    GatewayBench bench;
    QByteArray const bytes = LargeBytes(40 * c_MiB);
    bench.Serve(c_Path, bytes);
    bench.Mirrors[0]->Script("GET *").Always(Answer::Drip(64 * 1024, 20));
    bench.Open();
    QVERIFY(bench.Content(c_Path).Body == bytes);
    bench.Door->EndRun();
    bench.Door->BeginRun(Source::Server);
    bench.FetchHosts();
    // The faster one is the first that is asked: one small file after another comes from it.
    for (int i = 0; i < 10; ++i) {
        QByteArray const path = "game/files/" + QByteArray::number(i);
        bench.Serve(path, "content");
        QCOMPARE(bench.Content(path).Body, QByteArray("content"));
        QCOMPARE(bench.Mirrors[1]->BodyBytes('/' + path), qint64{7});
    }
}

void GatewayFiguresTest::AQuestionIsAnswered()
{
    GatewayBench bench;
    bench.Serve(c_Path, "0123456789");
    bench.Open();
    std::string const mirror = bench.Mirrors[1]->BaseUrl().toStdString();
    auto const whole = Ask(bench, {mirror, c_Path.toStdString(), {}});
    QVERIFY(!whole.Problem);
    QCOMPARE(whole.HttpStatus, 200);
    QCOMPARE(whole.Body, std::string("0123456789"));
    auto const part = Ask(bench, {mirror, c_Path.toStdString(), "0-0"});
    QCOMPARE(part.HttpStatus, 206);
    QCOMPARE(part.Body, std::string("0"));
    QCOMPARE(bench.Mirrors[1]->Count(c_ServerPath), 2);
    QCOMPARE(bench.Mirrors[0]->Count(c_ServerPath), 0);
    QCOMPARE(bench.Door->Snapshot().Received, std::uint64_t{0});
}

void GatewayFiguresTest::AStatusIsAnAnswer()
{
    GatewayBench bench;
    bench.Mirrors[0]->Script(c_ServerPath).Then(Answer::Status(404)).Then(Answer::Status(503));
    bench.Open();
    for (int const status : {404, 503}) {
        auto const reply =
            Ask(bench, {bench.Mirrors[0]->BaseUrl().toStdString(), c_Path.toStdString(), {}});
        QVERIFY(!reply.Problem);
        QCOMPARE(reply.HttpStatus, status);
    }
    QVERIFY(!bench.Door->LatestProblem());
}

void GatewayFiguresTest::AQuestionsFailureIsTold_data()
{
    QTest::addColumn<Answer>("answer");
    QTest::addColumn<Kind>("kind");
    QTest::addColumn<int>("status");
    QTest::newRow("closed") << Answer::ClosedBeforeHeaders() << Kind::Dropped << 0;
    QTest::newRow("silent") << Answer::SilentBeforeHeaders() << Kind::Silent << 0;
    QTest::newRow("more than allowed") << Answer::Normal() << Kind::Unusable << 200;
    QTest::newRow("without end") << Answer::EndlessBody() << Kind::Unusable << 200;
}

void GatewayFiguresTest::AQuestionsFailureIsTold()
{
    QFETCH(Answer, answer);
    QFETCH(Kind, kind);
    QFETCH(int, status);
    GatewayBench bench;
    bench.Serve(c_Path, QByteArray(1001, 'x'));
    bench.Mirrors[0]->Script(c_ServerPath).Always(answer);
    bench.Open();
    auto const reply =
        Ask(bench, {bench.Mirrors[0]->BaseUrl().toStdString(), c_Path.toStdString(), {}, 1000});
    QVERIFY(reply.Problem);
    QCOMPARE(reply.Problem->Kind, kind);
    QCOMPARE(reply.Problem->Url, bench.Mirrors[0]->Url(c_ServerPath).toStdString());
    QCOMPARE(reply.HttpStatus, status);
    QCOMPARE(bench.Mirrors[0]->Count(c_ServerPath), 1);
}

void GatewayFiguresTest::NoQuestionIsAnsweredAfterTheEnd()
{
    GatewayBench bench;
    bench.Mirrors[0]->Script("*").Always(Answer::SilentBeforeHeaders());
    bench.Open();
    std::atomic<int> answers{0};
    for (int i = 0; i < 10; ++i)
        bench.Door->Ask({bench.Mirrors[0]->BaseUrl().toStdString(), c_Path.toStdString(), {}},
                        [&](Gateway::Reply const&) { ++answers; });
    QVERIFY(Becomes([&] { return !bench.Mirrors[0]->Requests().empty(); }));
    bench.Door.reset();
    int const atTheEnd = answers;
    bench.Mirrors[0]->OpenGate(c_ServerPath, 10);
    QVERIFY(Becomes([&] { return bench.Mirrors[0]->OpenConnections() == 0; }));
    QCOMPARE(answers.load(), atTheEnd);
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::GatewayFiguresTest)
#include "tst_GatewayFigures.moc"
