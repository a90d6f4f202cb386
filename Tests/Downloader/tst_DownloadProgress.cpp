#include "Tests/Downloader/DownloadBench.hpp"
#include "Tests/Support/SampleContent.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

#include <limits>
#include <set>

namespace Varnholt::Launcher {

using TestSupport::Answer;
using TestSupport::DownloadBench;
using TestSupport::DownloadEvent;
using TestSupport::SampleContent;
using Kind = TestSupport::DownloadEvent::Kind;

class DownloadProgressTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void CountsBytesAndPercentOfTheAttempt();
    void AResumedDownloadFallsBackToTheBytesOfTheAttempt();
    void ThePercentageIsOfATruncatedTotal_data();
    void ThePercentageIsOfATruncatedTotal();
    void AnUnknownTotalShowsZeroPercent();
    void TheRateIsSampledAtMostOncePerSecond();
    void EveryBlockCostsTwoPauses();
    void ReadingAheadIsBounded();
};

void DownloadProgressTest::CountsBytesAndPercentOfTheAttempt()
{
    DownloadBench bench;
    QByteArray const bytes = SampleContent::Bytes(1000);
    bench.Serve(bytes);
    bench.Script().Then(Answer::Drip(100, 40));
    std::atomic<bool> isWrittenAsItArrives{true};
    bench.OnEvent = [&](DownloadEvent const& p_Event) {
        if (bench.File() != bytes.left(static_cast<int>(p_Event.BytesOnDisk)))
            isWrittenAsItArrives = false;
    };
    QVERIFY(bench.Run());
    QVERIFY(isWrittenAsItArrives);
    std::set<qint64> counts;
    for (DownloadEvent const& event : bench.Events()) {
        counts.insert(event.CurrentBytes);
        QCOMPARE(event.Percent, static_cast<int>(event.CurrentBytes * 100 / 1000));
    }
    QVERIFY2(counts.size() > 2, "no progress was told on the way");
    QCOMPARE(bench.Completion().Percent, 100);
}

void DownloadProgressTest::AResumedDownloadFallsBackToTheBytesOfTheAttempt()
{
    // From the resume point to what the new attempt has brought: hosts know it so.
    DownloadBench bench;
    QByteArray const bytes = SampleContent::Bytes(1000);
    bench.Serve(bytes);
    bench.Script().Then(Answer::SilentBeforeHeaders()).Then(Answer::Normal());
    QVERIFY(bench.WriteFile(bytes.left(400)));
    HTTP_DownloadFileRequest* const request = bench.Start();
    QVERIFY(bench.Host->RunUntil([&] { return bench.RequestCount() == 1; }));
    DownloadEvent const seen = DownloadBench::Look(*request);
    QCOMPARE(seen.CurrentBytes, qint64{400});
    QCOMPARE(seen.BytesOnDisk, qint64{400});
    QCOMPARE(seen.RateSampleBytes, qint64{400});
    bench.Server.OpenGate(DownloadBench::c_Path);
    QVERIFY(bench.RunToEnd());
    QCOMPARE(bench.Completion().CurrentBytes, qint64{600});
    QCOMPARE(bench.Completion().BytesOnDisk, qint64{1000});
    QCOMPARE(bench.Completion().Percent, 100);
}

void DownloadProgressTest::ThePercentageIsOfATruncatedTotal_data()
{
    QTest::addColumn<qint64>("Total");
    QTest::addColumn<qint64>("Divisor");
    // The total is cut to 32 signed bits: files above 2 GiB have always shown a meaningless figure.
    QTest::newRow("below 2 GiB") << qint64{100000} << qint64{100000};
    QTest::newRow("exactly 4 GiB") << qint64{4294967296} << qint64{1};
    QTest::newRow("3 GiB, negative") << qint64{3221225472} << std::numeric_limits<qint64>::max();
    QTest::newRow("a bit more than 4 GiB") << qint64{4294967296 + 2000} << qint64{2000};
    QTest::newRow("more than 255 percent") << qint64{4294967296 + 50} << qint64{50};
}

void DownloadProgressTest::ThePercentageIsOfATruncatedTotal()
{
    QFETCH(qint64, Total);
    QFETCH(qint64, Divisor);
    DownloadBench bench;
    bench.Serve(QByteArray(1000, 'x'));
    Answer endless = Answer::Drip(90, 40);
    endless.HeldAfter = 990;
    endless.ClaimedLength = Total;
    bench.Script().Then(endless);
    std::atomic<bool> hasProgressed{false};
    bench.OnEvent = [&](DownloadEvent const& p_Event) {
        if (p_Event.CurrentBytes > 0)
            hasProgressed = true;
    };
    HTTP_DownloadFileRequest* const request = bench.Start();
    QVERIFY(bench.Host->RunUntil([&] { return hasProgressed.load(); }));
    request->Abort();
    QVERIFY(bench.RunToEnd());
    QCOMPARE(bench.Completion().ContentLength, static_cast<quint64>(Total));
    for (DownloadEvent const& event : bench.Events())
        QCOMPARE(event.Percent, static_cast<int>(event.CurrentBytes * 100 / Divisor) & 0xff);
}

void DownloadProgressTest::AnUnknownTotalShowsZeroPercent()
{
    DownloadBench bench;
    bench.Serve(QByteArray(1000, 'x'));
    Answer endless = Answer::Drip(90, 40);
    endless.HeldAfter = 990;
    endless.HasLength = false;
    endless.AtEnd = Answer::End::Close;
    bench.Script().Then(endless);
    HTTP_DownloadFileRequest* const request = bench.Start();
    QVERIFY(bench.Host->RunUntil([&] { return DownloadBench::Look(*request).CurrentBytes > 0; }));
    request->Abort();
    QVERIFY(bench.RunToEnd());
    // At the end of a reply Qt takes what has come for the total.
    for (DownloadEvent const& event : bench.Events())
        QVERIFY(event.Percent == 0 || event.Aborted);
}

void DownloadProgressTest::TheRateIsSampledAtMostOncePerSecond()
{
    DownloadBench bench;
    bench.Serve(QByteArray(30000, 'x'));
    bench.Script().Then(Answer::Drip(100, 10));
    QElapsedTimer clock;
    clock.start();
    QVERIFY(bench.Run());
    qint64 const elapsed = clock.elapsed();
    std::set<qint64> samples;
    for (DownloadEvent const& event : bench.Events(Kind::Update)) {
        if (event.RateSampleBytes == 0) {
            QCOMPARE(event.BytesPerSecond, qint64{0});
            continue;
        }
        samples.insert(event.RateSampleBytes);
        QVERIFY(event.RateSampleBytes <= event.BytesOnDisk);
        QVERIFY(event.BytesPerSecond > 0);
        // A sample spans a second at the least: no rate is above all bytes in one second.
        QVERIFY(event.BytesPerSecond <= 30000);
    }
    QVERIFY(!samples.empty());
    QVERIFY(samples.size() <= static_cast<std::size_t>(elapsed / 1000));
}

void DownloadProgressTest::EveryBlockCostsTwoPauses()
{
    // Deliberate: blocks grow instead of becoming more.
    DownloadBench bench;
    bench.Serve(QByteArray(6000, 'x'));
    bench.Script().Then(Answer::Drip(100, 2));
    QElapsedTimer clock;
    clock.start();
    QVERIFY(bench.Run());
    std::set<qint64> blocks;
    for (DownloadEvent const& event : bench.Events(Kind::Update))
        blocks.insert(event.BytesOnDisk);
    QVERIFY(blocks.size() > 1);
    QVERIFY(clock.elapsed() >= static_cast<qint64>(blocks.size() - 1) * 10);
}

void DownloadProgressTest::ReadingAheadIsBounded()
{
    // A download thread that is busy must not make a fast server fill the memory.
    constexpr qint64 c_Bytes = qint64{160} * 1024 * 1024;
    constexpr qint64 c_Bound = qint64{64} * 1024 * 1024; // read buffer, sockets, and a margin
    DownloadBench bench;
    bench.Serve(QByteArray(static_cast<int>(c_Bytes), 'x'));
    QSemaphore goOn;
    std::atomic<bool> isBlocked{false};
    bench.OnEvent = [&](DownloadEvent const& p_Event) {
        if (p_Event.What == Kind::Update && !isBlocked.exchange(true))
            goOn.acquire();
    };
    HTTP_DownloadFileRequest* const request = bench.Start();
    QVERIFY(bench.Host->RunUntil([&] { return isBlocked.load(); }));
    qint64 last = -1;
    QElapsedTimer sinceChange;
    sinceChange.start();
    QVERIFY(bench.Host->RunUntil([&] {
        qint64 const sent = bench.Server.BodyBytes(DownloadBench::c_Path);
        if (sent != last)
            sinceChange.restart();
        last = sent;
        return sent == c_Bytes || sent > c_Bound || sinceChange.elapsed() > 1000;
    }));
    request->Aborted = true;
    goOn.release();
    QVERIFY2(last <= c_Bound, qPrintable(QString::number(last)));
    QVERIFY(bench.RunToEnd());
}

} // namespace Varnholt::Launcher

VARNHOLT_TEST(Varnholt::Launcher::DownloadProgressTest)
#include "tst_DownloadProgress.moc"
