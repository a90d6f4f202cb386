#include "Tests/Gateway/GatewayBench.hpp"
#include "Tests/Support/TestMain.hpp"

#include <chrono>
#include <thread>

namespace Varnholt::TestSupport {

namespace {

using Source = GatewayBench::Source;
using namespace std::chrono_literals;

QByteArray const c_Path = "game/files/a";
QString const c_ServerPath = "/game/files/a";

} // namespace

/// Pause, rate limit, and the ends of runs and doors.
class GatewayFlowTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void APauseTakesNothingMore();
    void APauseBeforeTheFirstByteTakesNothing();
    void WhatHasArrivedIsHandedOnInAPause();
    void APauseIsNoSilence();
    void TheRateIsHeld_data();
    void TheRateIsHeld();
    void TheRateCanBeChanged();
    void ALowRateIsNoStall();
    void TheEndOfARunEndsItsReaders();
    void DestructionEndsReaders_data();
    void DestructionEndsReaders();

private:
    /// Bytes per second between two amounts received.
    static double RateBetween(GatewayBench const& p_Bench, std::uint64_t p_From,
                              std::uint64_t p_To);
};

double GatewayFlowTest::RateBetween(GatewayBench const& p_Bench, std::uint64_t p_From,
                                    std::uint64_t p_To)
{
    auto const waitFor = [&](std::uint64_t p_Bytes) {
        std::uint64_t received = 0;
        QDeadlineTimer const deadline(DoorClient::c_Patience);
        do {
            std::this_thread::sleep_for(1ms);
            received = p_Bench.Door->Snapshot().Received;
        } while (received < p_Bytes && !deadline.hasExpired());
        return std::make_pair(std::chrono::steady_clock::now(), received);
    };
    auto const [begin, first] = waitFor(p_From);
    auto const [end, last] = waitFor(p_To);
    return double(last - first) / std::chrono::duration<double>(end - begin).count();
}

void GatewayFlowTest::APauseTakesNothingMore()
{
    GatewayBench bench;
    QByteArray const bytes = LargeBytes(100 * c_MiB);
    bench.Serve(c_Path, bytes);
    bench.ScriptForEver("GET " + c_ServerPath, Answer::Drip(64 * 1024, 5));
    bench.Open();
    bench.Door->Plan({Planned(c_Path)});
    DoorReader reader({bench.ContentUrl(c_Path)});
    QVERIFY(Becomes([&] { return reader.Received() > c_MiB; }));
    bench.Door->Pause();
    QCOMPARE(bench.Door->Snapshot().Rate, std::uint64_t{0});
    // A piece that was in a library's hands may still be counted, not what comes in two seconds.
    std::uint64_t const received = bench.Door->Snapshot().Received;
    QVERIFY(!Happens([&] { return bench.Door->Snapshot().Received > received + c_MiB; }, 2000));
    QVERIFY(!reader.IsDone());
    for (ScriptedServer* const server : bench.Servers())
        server->ClearScript("GET " + c_ServerPath);
    bench.Door->Continue();
    QVERIFY(reader.Reply().Body == bytes);
}

void GatewayFlowTest::APauseBeforeTheFirstByteTakesNothing()
{
    GatewayBench bench;
    bench.Serve(c_Path, "content");
    bench.Open();
    bench.Door->Pause();
    bench.Door->Plan({Planned(c_Path)});
    DoorReader reader({bench.ContentUrl(c_Path)});
    QVERIFY(!Happens([&] { return bench.Door->Snapshot().Received > 0; }));
    QVERIFY(!reader.IsDone());
    bench.Door->Continue();
    QCOMPARE(reader.Reply().Body, QByteArray("content"));
}

void GatewayFlowTest::WhatHasArrivedIsHandedOnInAPause()
{
    GatewayBench bench;
    QByteArray const bytes = LargeBytes(3 * c_MiB);
    bench.Serve(c_Path, bytes);
    bench.Open();
    bench.Door->Plan({Planned(c_Path)});
    QVERIFY(Becomes([&] { return bench.Door->Snapshot().Received == 3 * c_MiB; }));
    bench.Door->Pause();
    QVERIFY(bench.Content(c_Path).Body == bytes);
}

void GatewayFlowTest::APauseIsNoSilence()
{
    GatewayBench bench;
    QByteArray const bytes = LargeBytes(30 * c_MiB);
    bench.Serve(c_Path, bytes);
    bench.Options.RetryFor = bench.Options.StallTime = 2s;
    bench.Options.BytesPerSecond = 4 * c_MiB;
    bench.Open();
    DoorReader reader({bench.ContentUrl(c_Path)});
    QVERIFY(Becomes([&] { return reader.Received() > c_MiB; }));
    bench.Door->Pause();
    // Longer than a stall takes, and than is waited without a byte.
    QVERIFY(!Happens([&] { return bench.Door->Snapshot().GaveUp || reader.IsDone(); }, 3000));
    QVERIFY(!bench.Door->Snapshot().Waits);
    bench.Door->SetRateLimit(0);
    bench.Door->Continue();
    QVERIFY(reader.Reply().Body == bytes);
    for (auto const& server : bench.Door->Snapshot().Servers)
        QVERIFY(!server.IsBehind);
}

void GatewayFlowTest::TheRateIsHeld_data()
{
    QTest::addColumn<int>("connections");
    QTest::addColumn<int>("rate");
    QTest::newRow("1 MiB/s") << 4 << c_MiB;
    QTest::newRow("8 MiB/s") << 4 << 8 * c_MiB;
    QTest::newRow("8 MiB/s on one") << 1 << 8 * c_MiB;
    QTest::newRow("20 MB/s") << 4 << 20'000'000;
}

void GatewayFlowTest::TheRateIsHeld()
{
    QFETCH(int, connections);
    QFETCH(int, rate);
    GatewayBench bench;
    bench.Serve(c_Path, LargeBytes(5 * rate));
    bench.Options.Connections = connections;
    bench.Options.BytesPerSecond = std::uint64_t(rate);
    bench.Open();
    DoorReader reader({bench.ContentUrl(c_Path)});
    double const measured = RateBetween(bench, std::uint64_t(rate), std::uint64_t(4) * rate);
    QVERIFY2(std::abs(measured / rate - 1) < 0.05, QByteArray::number(measured));
}

void GatewayFlowTest::TheRateCanBeChanged()
{
    GatewayBench bench;
    QByteArray const bytes = LargeBytes(64 * c_MiB);
    bench.Serve(c_Path, bytes);
    bench.Options.BytesPerSecond = 2 * c_MiB;
    bench.Open();
    DoorReader reader({bench.ContentUrl(c_Path)});
    double const slow = RateBetween(bench, 2 * c_MiB, 6 * c_MiB);
    QVERIFY2(std::abs(slow / (2 * c_MiB) - 1) < 0.05, QByteArray::number(slow));
    bench.Door->SetRateLimit(8 * c_MiB);
    double const fast = RateBetween(bench, 10 * c_MiB, 26 * c_MiB);
    QVERIFY2(std::abs(fast / (8 * c_MiB) - 1) < 0.05, QByteArray::number(fast));
    bench.Door->SetRateLimit(0);
    QVERIFY(reader.Reply().Body == bytes);
    QVERIFY(bench.Door->Snapshot().Rate > 8 * c_MiB);
}

void GatewayFlowTest::ALowRateIsNoStall()
{
    GatewayBench bench;
    QByteArray const bytes = LargeBytes(100'000);
    bench.Serve(c_Path, bytes);
    bench.Options.BytesPerSecond = 20'000;
    bench.Options.StallTime = 1s;
    bench.Open();
    QVERIFY(bench.Content(c_Path).Body == bytes);
    for (auto const& server : bench.Door->Snapshot().Servers)
        QVERIFY(!server.IsBehind);
}

void GatewayFlowTest::TheEndOfARunEndsItsReaders()
{
    GatewayBench bench;
    bench.Serve(c_Path, LargeBytes(c_MiB));
    bench.ScriptForEver("GET " + c_ServerPath, Answer::SilentAfter(1000));
    bench.ScriptForEver("/game/version.json", Answer::SilentBeforeHeaders());
    bench.Open();
    DoorReader content({bench.ContentUrl(c_Path)});
    DoorReader document({bench.DocumentUrl("game/version.json")});
    QVERIFY(Becomes([&] { return content.Received() > 0 && bench.AnswersNow() >= 2; }));
    bench.Door->EndRun();
    QVERIFY(!content.Reply().IsWhole);
    QVERIFY(document.Reply().Status != 200);
    QVERIFY(Becomes([&] { return bench.AnswersNow() == 0; }));
    QVERIFY(bench.Content(c_Path).Status != 200);
    QVERIFY(!bench.Door->Snapshot().GaveUp);
    for (ScriptedServer* const server : bench.Servers())
        for (QString const& rule : {"GET " + c_ServerPath, QString("/game/version.json")})
            server->ClearScript(rule);
    bench.Door->BeginRun(Source::Server);
    bench.FetchHosts();
    QVERIFY(bench.Content(c_Path).Body == LargeBytes(c_MiB));
}

void GatewayFlowTest::DestructionEndsReaders_data()
{
    QTest::addColumn<Answer>("answer");
    QTest::newRow("silent") << Answer::SilentBeforeHeaders();
    QTest::newRow("silent in the middle") << Answer::SilentAfter(1000);
    QTest::newRow("sick") << Answer::ClosedBeforeHeaders();
    QTest::newRow("busy") << Answer::Drip(1000, 10);
}

void GatewayFlowTest::DestructionEndsReaders()
{
    QFETCH(Answer, answer);
    GatewayBench bench;
    bench.Serve(c_Path, LargeBytes(20 * c_MiB));
    bench.ScriptForEver("GET *", answer);
    for (ScriptedServer* const server : bench.Servers())
        server->Script("/cdns.info").Always(Answer::Normal());
    bench.Open();
    std::vector<std::unique_ptr<DoorReader>> readers;
    for (int i = 0; i < 6; ++i)
        readers.push_back(std::make_unique<DoorReader>(DoorRequest{bench.ContentUrl(c_Path)}));
    DoorReader document({bench.DocumentUrl("game/version.json")});
    QVERIFY(Becomes([&] { return bench.Requests(c_Path, "GET").size() >= 2; }));
    QElapsedTimer timer;
    timer.start();
    bench.Door.reset();
    QVERIFY2(timer.elapsed() < 10000, QByteArray::number(timer.elapsed()));
    for (auto const& reader : readers)
        QVERIFY(!reader->Reply().IsWhole || reader->Reply().Status >= 500);
    for (ScriptedServer const* const server : bench.Servers())
        QVERIFY(Becomes([&] { return server->OpenConnections() == 0; }));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::GatewayFlowTest)
#include "tst_GatewayFlow.moc"
