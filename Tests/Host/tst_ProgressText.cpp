#include "Host/Cli/ProgressText.hpp"

#include <QtTest>

namespace Varnholt::Host {

namespace {

RunSnapshot Download()
{
    constexpr quint64 c_Mebibyte = 1024 * 1024;

    RunSnapshot snapshot;
    snapshot.Phase = RunPhase::DownloadingBase;
    snapshot.FileNumber = 12;
    snapshot.FileCount = 312;
    snapshot.File = QStringLiteral("Data/some file.MPQ");
    snapshot.BytesDone = 25 * c_Mebibyte;
    snapshot.BytesTotal = 100 * c_Mebibyte;
    snapshot.Rate = c_Mebibyte;
    snapshot.Remaining = 75;
    snapshot.Mirror = QStringLiteral("mirror.example:8080");
    return snapshot;
}

} // namespace

class ProgressTextTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void DurationsAreWrittenAsOnAClock_data();
    void DurationsAreWrittenAsOnAClock();
    void TheLineTellsEverything();
    void TheLineLeavesOutWhatIsNotKnown();
    void TheBarShowsTheShareOfBytesOfADownload();
    void TheBarShowsTheShareOfFilesOfAComparison();
    void ThePhaseAloneIsShownWithoutAMeasure();
    void TheBarIsNeverLongerThanTheTerminal();
    void TheFiguresOutliveTheBarOnANarrowTerminal();
    void ALongFileNameLosesItsBeginning();
    void FiguresAboveTheTotalFillTheBarAndNoMore();
    void TheBarIsDrawnInAsciiWhereNothingElseIsShown();
};

void ProgressTextTest::DurationsAreWrittenAsOnAClock_data()
{
    QTest::addColumn<qint64>("seconds");
    QTest::addColumn<QString>("text");
    QTest::newRow("none") << qint64(0) << "0:00";
    QTest::newRow("seconds") << qint64(5) << "0:05";
    QTest::newRow("minutes") << qint64(754) << "12:34";
    QTest::newRow("an hour") << qint64(3600) << "1:00:00";
    QTest::newRow("hours") << qint64(3723) << "1:02:03";
    QTest::newRow("days") << qint64(360'000) << "100:00:00";
}

void ProgressTextTest::DurationsAreWrittenAsOnAClock()
{
    QFETCH(qint64, seconds);
    QTEST(ProgressText::Duration(seconds), "text");
}

void ProgressTextTest::TheLineTellsEverything()
{
    QCOMPARE(ProgressText::Line(Download()),
             QString("downloading base files: file 12 of 312 (Data/some file.MPQ), 25.0 MiB of "
                     "100.0 MiB, 1.0 MiB/s, 1:15 left, from mirror.example:8080"));
}

void ProgressTextTest::TheLineLeavesOutWhatIsNotKnown()
{
    RunSnapshot snapshot;
    snapshot.Phase = RunPhase::Connecting;
    QCOMPARE(ProgressText::Line(snapshot), QString("connecting"));
    snapshot.Phase = RunPhase::AskingSizes;
    snapshot.FileNumber = 3;
    snapshot.FileCount = 9;
    QCOMPARE(ProgressText::Line(snapshot), QString("asking for file sizes: file 3 of 9"));
}

void ProgressTextTest::TheBarShowsTheShareOfBytesOfADownload()
{
    QString const bar = ProgressText::Bar(Download(), 200, true);
    QCOMPARE(bar.count(QChar(0x2588)), 7); // of 30
    QCOMPARE(bar.count(QChar(0x2591)), 23);
    QVERIFY2(bar.contains("  25 %  25.0 MiB of 100.0 MiB, 1.0 MiB/s, 1:15 left"), qPrintable(bar));
    QVERIFY2(bar.startsWith("downloading base files  12/312  "), qPrintable(bar));
    QVERIFY2(bar.endsWith("  Data/some file.MPQ"), qPrintable(bar));
}

void ProgressTextTest::TheBarShowsTheShareOfFilesOfAComparison()
{
    RunSnapshot snapshot;
    snapshot.Phase = RunPhase::Comparing;
    snapshot.FileNumber = 1;
    snapshot.FileCount = 2;
    QString const bar = ProgressText::Bar(snapshot, 80, false);
    QCOMPARE(bar,
             QString("comparing files  1/2  ") + QString(15, '#') + QString(15, '-') + "  50 %");
}

void ProgressTextTest::ThePhaseAloneIsShownWithoutAMeasure()
{
    RunSnapshot snapshot;
    snapshot.Phase = RunPhase::Suspended;
    QCOMPARE(ProgressText::Bar(snapshot, 80, true), QString("suspended"));
}

void ProgressTextTest::TheBarIsNeverLongerThanTheTerminal()
{
    for (int width = 0; width < 200; ++width)
        for (bool const unicode : {false, true}) {
            QString const bar = ProgressText::Bar(Download(), width, unicode);
            QVERIFY2(bar.size() <= width, qPrintable(bar));
        }
}

void ProgressTextTest::TheFiguresOutliveTheBarOnANarrowTerminal()
{
    QString const bar = ProgressText::Bar(Download(), 85, false);
    QVERIFY2(!bar.contains('#'), qPrintable(bar));
    QVERIFY2(bar.contains("25 %  25.0 MiB of 100.0 MiB, 1.0 MiB/s, 1:15 left"), qPrintable(bar));
}

void ProgressTextTest::ALongFileNameLosesItsBeginning()
{
    RunSnapshot snapshot = Download();
    snapshot.File = QString(300, 'x') + "/the end.MPQ";
    QString const bar = ProgressText::Bar(snapshot, 150, false);
    QCOMPARE(bar.size(), 150);
    QVERIFY2(bar.endsWith("x/the end.MPQ"), qPrintable(bar));
}

void ProgressTextTest::FiguresAboveTheTotalFillTheBarAndNoMore()
{
    RunSnapshot snapshot;
    snapshot.Phase = RunPhase::Comparing;
    snapshot.FileNumber = 20;
    snapshot.FileCount = 10;
    QString const bar = ProgressText::Bar(snapshot, 80, false);
    QCOMPARE(bar.count('#'), 30);
    QVERIFY2(bar.endsWith(" 100 %"), qPrintable(bar));
}

void ProgressTextTest::TheBarIsDrawnInAsciiWhereNothingElseIsShown()
{
    for (QChar const character : ProgressText::Bar(Download(), 200, false))
        QVERIFY(character.unicode() < 128);
}

} // namespace Varnholt::Host

QTEST_GUILESS_MAIN(Varnholt::Host::ProgressTextTest)
#include "tst_ProgressText.moc"
