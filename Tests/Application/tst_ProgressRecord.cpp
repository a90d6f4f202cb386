#include "Launcher/Application/ApplicationUISetting.hpp"
#include "Launcher/Application/RateClock.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

namespace Varnholt::Launcher {

class ProgressRecordTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void StartsAtZero();
    void TheNumbersOfStatesAndModesStayAsHostsKnowThem();
    void TheMeanRampsUpOverTheFirstTwentySamples();
    void TheTwentyFirstSampleReplacesTheFirst();
    void AnIndexBehindTheRingStartsAgain();
    void TheMeanIsRoundedDown();
    void BytesPerSecondNeverDividesByZeroNorGoesBelowZero();
    void ElapsedTimeIsNeverNegative();
};

void ProgressRecordTest::StartsAtZero()
{
    ApplicationUISetting const setting;
    QCOMPARE(setting.State, 0);
    auto const& download = setting.Download;
    QCOMPARE(download.Mode, 0);
    QCOMPARE(download.ModeFlag, false);
    QCOMPARE(download.StatusFlags, quint32{0});
    QCOMPARE(download.StatusFlag, false);
    QCOMPARE(download.Percent, quint32{0});
    QCOMPARE(download.Current, quint64{0});
    QCOMPARE(download.Total, quint64{0});
    QCOMPARE(download.AverageRate, quint64{0});
    QVERIFY(download.StatusText.isEmpty());
    QVERIFY(download.DetailText.isEmpty() && !download.DetailText.isNull());
    QCOMPARE(download.RateLogIndex, 0);
    for (quint64 const sample : download.RateLog)
        QCOMPARE(sample, quint64{0});
}

void ProgressRecordTest::TheNumbersOfStatesAndModesStayAsHostsKnowThem()
{
    using Setting = ApplicationUISetting;
    QCOMPARE((QVector<int>{Setting::StateStartingUp, Setting::StateNotInstalled,
                           Setting::StateInstalled}),
             (QVector<int>{0, 1, 2}));
    QCOMPARE((QVector<int>{Setting::ModeWaitingForHost, Setting::ModeWaitingForGame,
                           Setting::ModeAskingSizes, Setting::ModeDownloading,
                           Setting::ModeSuspended, Setting::ModeComparing}),
             (QVector<int>{0, 1, 2, 3, 4, 5}));
}

void ProgressRecordTest::TheMeanRampsUpOverTheFirstTwentySamples()
{
    // The divisor stays 20 while the ring fills: the shown rate starts low and climbs.
    ApplicationUISetting setting;
    for (quint64 i = 1; i <= 20; ++i) {
        setting.Download.LogDownloadRate(2000);
        QCOMPARE(setting.Download.AverageRate, i * 100);
    }
    setting.Download.LogDownloadRate(2000);
    QCOMPARE(setting.Download.AverageRate, quint64{2000});
}

void ProgressRecordTest::TheTwentyFirstSampleReplacesTheFirst()
{
    ApplicationUISetting setting;
    for (quint64 i = 0; i < 20; ++i)
        setting.Download.LogDownloadRate(100 + i);
    QCOMPARE(setting.Download.RateLogIndex, 20);
    setting.Download.LogDownloadRate(7);
    QCOMPARE(setting.Download.RateLog[0], quint64{7});
    QCOMPARE(setting.Download.RateLog[1], quint64{101});
    QCOMPARE(setting.Download.RateLog[19], quint64{119});
    QCOMPARE(setting.Download.RateLogIndex, 1);
}

void ProgressRecordTest::AnIndexBehindTheRingStartsAgain()
{
    ApplicationUISetting setting;
    setting.Download.RateLogIndex = 35;
    setting.Download.LogDownloadRate(40);
    QCOMPARE(setting.Download.RateLog[0], quint64{40});
    QCOMPARE(setting.Download.RateLogIndex, 1);
}

void ProgressRecordTest::TheMeanIsRoundedDown()
{
    ApplicationUISetting setting;
    setting.Download.LogDownloadRate(39);
    QCOMPARE(setting.Download.AverageRate, quint64{1});
}

void ProgressRecordTest::BytesPerSecondNeverDividesByZeroNorGoesBelowZero()
{
    QCOMPARE(RateClock::BytesPerSecond(3000, 1500), qint64{2000});
    QCOMPARE(RateClock::BytesPerSecond(1000, 3), qint64{333333});
    // A clock that jumped between two readings.
    QCOMPARE(RateClock::BytesPerSecond(5, 0), qint64{5000});
    QCOMPARE(RateClock::BytesPerSecond(5, -60000), qint64{5000});
    // A file that was taken away and begun anew.
    QCOMPARE(RateClock::BytesPerSecond(-5, 1000), qint64{0});
    QCOMPARE(RateClock::BytesPerSecond(0, 1000), qint64{0});
}

void ProgressRecordTest::ElapsedTimeIsNeverNegative()
{
    QCOMPARE(RateClock::Elapsed(QTime()), 0);
    QTime timer;
    RateClock::Restart(timer);
    QVERIFY(timer.isValid());
    QVERIFY(RateClock::Elapsed(timer) >= 0);
    // A clock that was set back reads as a wait across midnight.
    int const elapsed = RateClock::Elapsed(QTime::currentTime().addSecs(60));
    QVERIFY(elapsed >= 0);
    QVERIFY(elapsed <= 24 * 60 * 60 * 1000);
}

} // namespace Varnholt::Launcher

VARNHOLT_TEST(Varnholt::Launcher::ProgressRecordTest)
#include "tst_ProgressRecord.moc"
