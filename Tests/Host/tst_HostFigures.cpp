#include "Host/Core/ByteText.hpp"
#include "Host/Core/DropWatch.hpp"
#include "Host/Core/RateMeter.hpp"
#include "Host/Core/RunPhase.hpp"
#include "Host/Core/StallWatch.hpp"

#include <QSet>
#include <QtTest>

namespace Varnholt::Host {

/// Bytes, rates and clocks.
class HostFiguresTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void BytesAreCountedInPowersOf1024_data();
    void BytesAreCountedInPowersOf1024();

    void ThereIsNoRateBeforeTwoSamples();
    void TheRateIsThatOfTheWholeMeasurementAtFirst();
    void TheRateForgetsWhatIsOlderThanItsWindow();
    void AStandstillLowersTheRateToZero();
    void AFallOfTheFigureBeginsAnew();
    void TwoSamplesOfOneMomentGiveNoRate();

    void FiguresThatMoveAreNoStall();
    void FiguresThatStandStillAreAStallOnceThenTheClockStartsAnew();
    void AnyOneOfTheFiguresKeepsItAlive();
    void AResetGivesTheWholeTimeAgain();

    void ThreeRestartsWithoutAByteAreTooMany();
    void ARestartThatBringsBytesBeginsTheCountAnew();
    void LosingItsBytesAgainAndAgainIsTooMany();
    void ATransferThatComesFurtherMayLoseItsBytes();

    void EveryPhaseHasItsOwnWords();
    void OnlyTheDownloadPhasesCountBytes();
};

void HostFiguresTest::BytesAreCountedInPowersOf1024_data()
{
    QTest::addColumn<quint64>("bytes");
    QTest::addColumn<QString>("text");
    QTest::newRow("nothing") << quint64(0) << "0 bytes";
    QTest::newRow("below a kibibyte") << quint64(1023) << "1023 bytes";
    QTest::newRow("a kibibyte") << quint64(1024) << "1.0 KiB";
    QTest::newRow("a half more") << quint64(1536) << "1.5 KiB";
    QTest::newRow("mebibytes") << quint64(12) * 1024 * 1024 << "12.0 MiB";
    QTest::newRow("more than 32 bits") << (quint64(25) << 30) << "25.0 GiB";
}

void HostFiguresTest::BytesAreCountedInPowersOf1024()
{
    QFETCH(quint64, bytes);
    QTEST(ByteText(bytes), "text");
}

void HostFiguresTest::ThereIsNoRateBeforeTwoSamples()
{
    RateMeter meter;
    QCOMPARE(meter.Rate(), quint64(0));
    meter.Add(100, 1000);
    QCOMPARE(meter.Rate(), quint64(0));
}

void HostFiguresTest::TheRateIsThatOfTheWholeMeasurementAtFirst()
{
    RateMeter meter;
    meter.Add(1000, 0);
    meter.Add(1500, 100);
    QCOMPARE(meter.Rate(), quint64(200));
    meter.Add(3000, 1000);
    QCOMPARE(meter.Rate(), quint64(500));
}

void HostFiguresTest::TheRateForgetsWhatIsOlderThanItsWindow()
{
    RateMeter meter;
    quint64 bytes = 0;
    for (qint64 now = 0; now <= 10'000; now += 100, bytes += 1000)
        meter.Add(now, bytes); // 10000 a second
    for (qint64 now = 10'100; now <= 20'000; now += 100, bytes += 10)
        meter.Add(now, bytes); // 100 a second
    QCOMPARE(meter.Rate(), quint64(100));
}

void HostFiguresTest::AStandstillLowersTheRateToZero()
{
    RateMeter meter;
    meter.Add(0, 0);
    meter.Add(1000, 100'000);
    QCOMPARE(meter.Rate(), quint64(100'000));
    for (qint64 now = 2000; now <= 12'000; now += 1000)
        meter.Add(now, 100'000);
    QCOMPARE(meter.Rate(), quint64(0));
}

void HostFiguresTest::AFallOfTheFigureBeginsAnew()
{
    RateMeter meter;
    meter.Add(0, 1'000'000);
    meter.Add(1000, 10);
    QCOMPARE(meter.Rate(), quint64(0));
    meter.Add(2000, 60);
    QCOMPARE(meter.Rate(), quint64(50));
}

void HostFiguresTest::TwoSamplesOfOneMomentGiveNoRate()
{
    RateMeter meter;
    meter.Add(1000, 0);
    meter.Add(1000, 5000);
    QCOMPARE(meter.Rate(), quint64(0));
}

void HostFiguresTest::FiguresThatMoveAreNoStall()
{
    StallWatch watch(1000);
    for (quint64 i = 0; i < 10; ++i)
        QVERIFY(!watch.Observe(static_cast<qint64>(i) * 5000, {i}));
}

void HostFiguresTest::FiguresThatStandStillAreAStallOnceThenTheClockStartsAnew()
{
    StallWatch watch(1000);
    QVERIFY(!watch.Observe(50, {1, 2}));
    QVERIFY(!watch.Observe(1049, {1, 2}));
    QVERIFY(watch.Observe(1050, {1, 2}));
    QVERIFY(!watch.Observe(1060, {1, 2}));
    QVERIFY(!watch.Observe(2059, {1, 2}));
    QVERIFY(watch.Observe(2060, {1, 2}));
}

void HostFiguresTest::AnyOneOfTheFiguresKeepsItAlive()
{
    StallWatch watch(1000);
    QVERIFY(!watch.Observe(0, {1, 2, 3}));
    QVERIFY(!watch.Observe(1000, {1, 2, 4}));
    QVERIFY(!watch.Observe(1999, {1, 2, 4}));
    QVERIFY(watch.Observe(2000, {1, 2, 4}));
}

void HostFiguresTest::AResetGivesTheWholeTimeAgain()
{
    StallWatch watch(1000);
    QVERIFY(!watch.Observe(0, {1}));
    watch.Reset();
    QVERIFY(!watch.Observe(1500, {1}));
    QVERIFY(watch.Observe(2500, {1}));
}

void HostFiguresTest::ThreeRestartsWithoutAByteAreTooMany()
{
    DropWatch watch;
    QVERIFY(!watch.Observe(10, 1, 500));
    QVERIFY(!watch.Observe(12, 1, 500));
    QVERIFY(watch.Observe(13, 1, 500));
    QVERIFY(!watch.Observe(13, 1, 500));
    QVERIFY(!watch.Observe(15, 1, 500));
    QVERIFY(watch.Observe(16, 1, 500));
}

void HostFiguresTest::ARestartThatBringsBytesBeginsTheCountAnew()
{
    DropWatch watch;
    QVERIFY(!watch.Observe(0, 1, 500));
    QVERIFY(!watch.Observe(2, 1, 500));
    QVERIFY(!watch.Observe(3, 1, 501));
    QVERIFY(!watch.Observe(5, 1, 501));
    QVERIFY(!watch.Observe(6, 2, 501)); // another transfer
    QVERIFY(!watch.Observe(8, 2, 501));
    QVERIFY(watch.Observe(9, 2, 501));
}

void HostFiguresTest::LosingItsBytesAgainAndAgainIsTooMany()
{
    DropWatch watch;
    quint32 restarts = 0;
    for (int loss = 1; loss <= 4; ++loss) {
        QVERIFY(!watch.Observe(++restarts, 1, 500));
        QCOMPARE(watch.Observe(++restarts, 1, 20), loss == 4);
    }
}

void HostFiguresTest::ATransferThatComesFurtherMayLoseItsBytes()
{
    DropWatch watch;
    for (quint32 loss = 1; loss <= 20; ++loss) {
        QVERIFY(!watch.Observe(2 * loss, 1, 500 + loss));
        QVERIFY(!watch.Observe(2 * loss + 1, 1, 20));
    }
}

void HostFiguresTest::EveryPhaseHasItsOwnWords()
{
    QSet<QString> words;
    int count = 0;
    for (int i = static_cast<int>(RunPhase::Idle); i <= static_cast<int>(RunPhase::Failed); ++i) {
        words += PhaseText(static_cast<RunPhase>(i));
        ++count;
    }
    QCOMPARE(words.size(), count);
    QVERIFY(!words.contains(QString()));
}

void HostFiguresTest::OnlyTheDownloadPhasesCountBytes()
{
    for (int i = static_cast<int>(RunPhase::Idle); i <= static_cast<int>(RunPhase::Failed); ++i) {
        auto const phase = static_cast<RunPhase>(i);
        QCOMPARE(IsDownloading(phase),
                 phase == RunPhase::DownloadingBase || phase == RunPhase::DownloadingStreamed);
    }
}

} // namespace Varnholt::Host

QTEST_GUILESS_MAIN(Varnholt::Host::HostFiguresTest)
#include "tst_HostFigures.moc"
