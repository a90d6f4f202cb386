#include "Tests/Gateway/GatewayBench.hpp"
#include "Tests/Support/SampleContent.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QDateTime>
#include <QLocale>

namespace Varnholt::TestSupport {

namespace {

using Kind = FetchProblem::Type;
using namespace std::chrono_literals;

QByteArray const c_Path = "game/files/a";
QByteArray const c_Get = "GET /game/files/a";
QString const c_ServerPath = "/game/files/a";

} // namespace

/// When servers are asked again, and when no more. There is no mirror unless a test says so: who
/// is asked when is known then.
class GatewayRetryTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void PausesGrow();
    void AServerSaysWhenItWantsToBeAskedAgain_data();
    void AServerSaysWhenItWantsToBeAskedAgain();
    void AServerThatWantsToBeLeftAloneIsReplacedAtOnce();
    void AFetchGoesOnWhenTheServerIsBack();
    void BytesThatComeAreNoSilence();
    void GivesUpWhenNothingComes_data();
    void GivesUpWhenNothingComes();
    void WhoeverAsksAfterThatGetsNothing();
    void ANewRunBeginsAnew();
    void NeverGivesUpWhenToldSo();
    void WhatNobodyHasIsMissing_data();
    void WhatNobodyHasIsMissing();
    void AWaitIsShown();
    void ABusyServerIsNotTakenForASilentOne();
    void AStatusCountsThoughItsPageDoesNotCome_data();
    void AStatusCountsThoughItsPageDoesNotCome();
    void NobodyIsAskedWhileNobodyWaits();

private:
    std::unique_ptr<GatewayBench> Bench;
    QByteArray const Bytes = LargeBytes(200'000); // comes in one piece
};

void GatewayRetryTest::init()
{
    Bench = std::make_unique<GatewayBench>(0);
    Bench->Serve(c_Path, Bytes);
}

void GatewayRetryTest::cleanup()
{
    Bench.reset();
}

void GatewayRetryTest::PausesGrow()
{
    Bench->Options.RetryPause = 50ms;
    Bench->ScriptAll(c_Get, Answer::Status(500), 5);
    Bench->Open();
    QVERIFY(Bench->Content(c_Path).Body == Bytes);
    auto const requests = Bench->Requests(c_Path, "GET");
    QCOMPARE(requests.size(), std::size_t{6});
    // A connection that was kept and is closed under a request gets a second one at once.
    for (std::size_t i = 2; i < 6; ++i) {
        qint64 const pause = requests[i].Milliseconds - requests[i - 1].Milliseconds;
        QVERIFY2(pause >= (50 << (i - 2)) - 5, QByteArray::number(pause));
    }
}

void GatewayRetryTest::AServerSaysWhenItWantsToBeAskedAgain_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<bool>("isDate");
    QTest::newRow("429") << 429 << false;
    QTest::newRow("503") << 503 << false;
    QTest::newRow("by date") << 429 << true;
}

void GatewayRetryTest::AServerSaysWhenItWantsToBeAskedAgain()
{
    QFETCH(int, status);
    QFETCH(bool, isDate);
    QByteArray when = "2";
    if (isDate) // in whole seconds: at least two from now
        when = QLocale::c()
                   .toString(QDateTime::currentDateTimeUtc().addSecs(3),
                             "ddd, dd MMM yyyy hh:mm:ss 'GMT'")
                   .toLatin1();
    Bench->ScriptAll(c_Get, Answer::Status(status).With("Retry-After", when));
    Bench->Open();
    QVERIFY(Bench->Content(c_Path).Body == Bytes);
    auto const requests = Bench->Requests(c_Path, "GET");
    QCOMPARE(requests.size(), std::size_t{2});
    qint64 const pause = requests[1].Milliseconds - requests[0].Milliseconds;
    QVERIFY2(pause >= (isDate ? 1000 : 1990), QByteArray::number(pause));
}

void GatewayRetryTest::AServerThatWantsToBeLeftAloneIsReplacedAtOnce()
{
    GatewayBench bench;
    for (int i = 0; i < 20; ++i)
        bench.Serve("game/files/" + QString::number(i), "content");
    bench.Mirrors[0]->Script("*").Always(Answer::Status(429).With("Retry-After", "600"));
    bench.Open();
    for (int i = 0; i < 20; ++i)
        QCOMPARE(bench.Content("game/files/" + QByteArray::number(i)).Body, QByteArray("content"));
    // Its connections may all have been under way when the first was answered.
    int const asked = int(bench.Mirrors[0]->Requests().size());
    QVERIFY2(asked <= 2, QByteArray::number(asked));
    QCOMPARE(bench.Server->Count("/game/files/0"), 0);
}

void GatewayRetryTest::AFetchGoesOnWhenTheServerIsBack()
{
    GatewayBench bench;
    bench.Serve(c_Path, Bytes);
    bench.Open();
    bench.ScriptAll(c_Get, Answer::Truncated(50000));
    bench.ScriptForEver(c_Get, Answer::ClosedBeforeHeaders());
    DoorReader reader({bench.ContentUrl(c_Path)});
    QVERIFY(Becomes([&] { return bench.Requests(c_Path, "GET").size() >= 12; }));
    QVERIFY(!reader.IsDone());
    for (ScriptedServer* const server : bench.Servers())
        server->ClearScript(c_Get);
    QVERIFY(reader.Reply().IsWhole);
    QVERIFY(reader.Reply().Body == Bytes);
    QCOMPARE(bench.SentBytes(c_Path), qint64(Bytes.size()));
}

void GatewayRetryTest::BytesThatComeAreNoSilence()
{
    Bench->Options.RetryFor = 5s;
    Bench->Options.RetryPause = 300ms;
    Bench->ScriptAll(c_Get, Answer::Truncated(10000), 30);
    Bench->Open();
    QElapsedTimer timer;
    timer.start();
    DoorReply const reply = Bench->Content(c_Path);
    QVERIFY(reply.IsWhole);
    QVERIFY(reply.Body == Bytes);
    QVERIFY2(timer.elapsed() >= 5000, QByteArray::number(timer.elapsed()));
    QVERIFY(!Bench->Door->Snapshot().GaveUp);
}

void GatewayRetryTest::GivesUpWhenNothingComes_data()
{
    QTest::addColumn<Answer>("answer");
    QTest::addColumn<Kind>("kind");
    QTest::newRow("closed") << Answer::ClosedBeforeHeaders() << Kind::Dropped;
    QTest::newRow("500") << Answer::Status(500) << Kind::Refused;
    QTest::newRow("silent") << Answer::SilentBeforeHeaders() << Kind::Silent;
    QTest::newRow("wrong") << Answer::ClaimingRange("nonsense") << Kind::Unusable;
    QTest::newRow("nothing new") << Answer::IgnoringRange().CutAfter(50000) << Kind::Dropped;
}

void GatewayRetryTest::GivesUpWhenNothingComes()
{
    QFETCH(Answer, answer);
    QFETCH(Kind, kind);
    Bench->Options.RetryFor = 2500ms;
    Bench->Options.StallTime = StallFor(answer);
    Bench->Open();
    Bench->ScriptAll(c_Get, Answer::Truncated(100000));
    Bench->ScriptForEver(c_Get, answer);
    QElapsedTimer timer;
    timer.start();
    DoorReply const reply = Bench->Content(c_Path, "bytes=1-");
    QVERIFY2(timer.elapsed() >= 2500, QByteArray::number(timer.elapsed()));
    QVERIFY(!reply.IsWhole);
    QVERIFY(reply.Body == Bytes.mid(1, 100000));
    auto const gaveUp = Bench->Door->Snapshot().GaveUp;
    QVERIFY(gaveUp);
    QCOMPARE(gaveUp->Kind, kind);
    QCOMPARE(gaveUp->Url, Bench->Server->Url(c_ServerPath).toStdString());
    QVERIFY(gaveUp->Why != FetchProblem::Cause::Told);
    QCOMPARE(Bench->ProblemOf(c_Path).Kind, kind);
}

void GatewayRetryTest::WhoeverAsksAfterThatGetsNothing()
{
    Bench->Options.RetryFor = 500ms;
    Bench->Open();
    Bench->ScriptForEver("*", Answer::ClosedBeforeHeaders());
    QVERIFY(Bench->Content(c_Path).Status != 200);
    QVERIFY(Bench->Door->Snapshot().GaveUp);
    std::size_t const asked = Bench->Server->Requests().size();
    QVERIFY(Bench->Content("game/files/b").Status != 200);
    QVERIFY(!Bench->Door->Snapshot().Waits);
    QCOMPARE(Bench->Server->Requests().size(), asked);
}

void GatewayRetryTest::ANewRunBeginsAnew()
{
    Bench->Options.RetryFor = 2s;
    Bench->Open();
    Bench->ScriptForEver("*", Answer::ClosedBeforeHeaders());
    Bench->Content(c_Path);
    QVERIFY(Bench->Door->Snapshot().GaveUp);
    Bench->Server->ClearScript("*");
    Bench->Door->BeginRun(GatewayBench::Source::Server);
    QVERIFY(!Bench->Door->Snapshot().GaveUp);
    QVERIFY(!Bench->Door->ProblemOf(c_Path.toStdString()));
    Bench->FetchHosts();
    QVERIFY(Bench->Content(c_Path).Body == Bytes);
}

void GatewayRetryTest::NeverGivesUpWhenToldSo()
{
    Bench->Options.RetryFor = 0ms;
    Bench->Options.RetryPause = 1ms;
    Bench->Open();
    Bench->ScriptForEver(c_Get, Answer::ClosedBeforeHeaders());
    DoorReader reader({Bench->ContentUrl(c_Path)});
    QVERIFY(Becomes([&] { return Bench->Server->Count(c_ServerPath) >= 12; }));
    QVERIFY(!reader.IsDone());
    QVERIFY(!Bench->Door->Snapshot().GaveUp);
    Bench->Server->ClearScript(c_Get);
    QVERIFY(reader.Reply().Body == Bytes);
}

void GatewayRetryTest::WhatNobodyHasIsMissing_data()
{
    QTest::addColumn<int>("status");
    for (int const status : {403, 404, 410})
        QTest::newRow(QByteArray::number(status)) << status;
}

void GatewayRetryTest::WhatNobodyHasIsMissing()
{
    QFETCH(int, status);
    GatewayBench bench;
    bench.ScriptForEver("/game/files/missing", Answer::Status(status));
    bench.Open();
    DoorReply const reply = bench.Content("game/files/missing");
    QCOMPARE(reply.Status, status);
    QVERIFY(!bench.Door->Snapshot().GaveUp);
    FetchProblem const problem = bench.ProblemOf("game/files/missing");
    QCOMPARE(problem.Kind, Kind::Refused);
    QCOMPARE(problem.HttpStatus, status);
    for (ScriptedServer const* const server : bench.Servers())
        QVERIFY(server->Count("/game/files/missing") > 0);
    // Other files do not suffer.
    bench.Serve(c_Path, Bytes);
    QVERIFY(bench.Content(c_Path).Body == Bytes);
}

void GatewayRetryTest::AWaitIsShown()
{
    Bench->Options.RetryPause = 20s;
    Bench->Open();
    QVERIFY(!Bench->Door->Snapshot().Waits);
    Bench->ScriptForEver(c_Get, Answer::Status(503));
    DoorReader reader({Bench->ContentUrl(c_Path)});
    QVERIFY(Becomes([&] {
        auto const waits = Bench->Door->Snapshot().Waits;
        return waits && waits->NextAttempt > 0ms && waits->Silent > 0ms;
    }));
    auto const waits = Bench->Door->Snapshot().Waits;
    QCOMPARE(waits->Problem.HttpStatus, 503);
    QCOMPARE(waits->Problem.Url, Bench->Server->Url(c_ServerPath).toStdString());
    QVERIFY(waits->NextAttempt <= 20s);
    QVERIFY(waits->Silent < 20s);
    QCOMPARE(waits->Attempt, 2);
    QCOMPARE(waits->Attempts, 0);
    reader.Abandon();
    QVERIFY(Becomes([&] { return !Bench->Door->Snapshot().Waits; }));
}

/// What was under way before goes on to arrive, and does not hide why the rest has to wait.
void GatewayRetryTest::ABusyServerIsNotTakenForASilentOne()
{
    QByteArray const early = "game/files/early";
    Bench->Serve(early, Bytes);
    Bench->Server->Script("GET /" + early).Then(Answer::SilentAfter(1'000));
    Bench->ScriptForEver(c_Get, Answer::Status(503).With("Retry-After", "20"));
    Bench->Open();
    DoorReader const first({Bench->ContentUrl(early)});
    QVERIFY(Becomes([&] { return Bench->Server->BodyBytes('/' + early) == 1'000; }));
    DoorReader const second({Bench->ContentUrl(c_Path)});
    QVERIFY(Becomes([&] { return Bench->ProblemOf(c_Path).HttpStatus == 503; }));
    Bench->Server->OpenGate('/' + early);
    QVERIFY(Becomes([&] { return Bench->Door->Snapshot().Waits.has_value(); }));
    auto const waits = Bench->Door->Snapshot().Waits;
    QCOMPARE(waits->Problem.Why, FetchProblem::Cause::Status);
    QCOMPARE(waits->Problem.HttpStatus, 503);
    QCOMPARE(waits->Attempt, 2);
    QVERIFY(waits->NextAttempt > 1s);
}

void GatewayRetryTest::AStatusCountsThoughItsPageDoesNotCome_data()
{
    QTest::addColumn<Answer>("answer");
    Answer silent = Answer::Status(503);
    silent.HeldAfter = 0;
    QTest::newRow("silent") << silent;
    QTest::newRow("closed") << Answer::Status(503).CutAfter(0);
}

void GatewayRetryTest::AStatusCountsThoughItsPageDoesNotCome()
{
    QFETCH(Answer, answer);
    Bench->Options.StallTime = 1s;
    Bench->Open();
    Bench->ScriptForEver(c_Get, answer);
    DoorReader reader({Bench->ContentUrl(c_Path)});
    QVERIFY(Becomes([&] { return Bench->Door->LatestProblem().has_value(); }));
    QCOMPARE(Bench->Door->LatestProblem()->HttpStatus, 503);
    reader.Abandon();
}

void GatewayRetryTest::NobodyIsAskedWhileNobodyWaits()
{
    Bench->Options.RetryFor = 2s;
    Bench->Options.RetryPause = 1ms;
    Bench->Open();
    QVERIFY(Bench->Content(c_Path).Body == Bytes);
    // An idle door has no reason to give up.
    QVERIFY(!Happens([&] { return Bench->Door->Snapshot().GaveUp.has_value(); }, 3000));
    QCOMPARE(Bench->Requests(c_Path, "GET").size(), std::size_t{1});
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::GatewayRetryTest)
#include "tst_GatewayRetry.moc"
