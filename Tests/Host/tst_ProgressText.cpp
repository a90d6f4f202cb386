#include "Host/Cli/ProgressText.hpp"
#include "Tests/Support/TestMain.hpp"

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

RunSnapshot Waiting()
{
    RunSnapshot snapshot = Download();
    snapshot.Rate = 0;
    snapshot.Remaining = -1;
    snapshot.Wait =
        ServerWait{QStringLiteral("mirror.example"), QStringLiteral("connection refused"), 12, 8};
    return snapshot;
}

QString const c_Wait = QStringLiteral(
    "server silent for 12 s, next attempt in 8 s (mirror.example: connection refused)");

} // namespace

class ProgressTextTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void DurationsAreWrittenAsOnAClock_data();
    void DurationsAreWrittenAsOnAClock();
    void TheLineTellsEverything();
    void TheLineLeavesOutWhatIsNotKnown();
    void TheLineNamesEveryServerThatServes();
    void TheLineTellsOfAWait();
    void AWaitIsToldInWords_data();
    void AWaitIsToldInWords();
    void TheBarGivesWayToAWait();
    void OfAWaitTheServerOutlivesTheRest_data();
    void OfAWaitTheServerOutlivesTheRest();
    void TheBarShowsTheShareOfBytesOfADownload();
    void TheBarShowsTheShareOfFilesOfAComparison();
    void ThePhaseAloneIsShownWithoutAMeasure();
    void TheBarIsNeverLongerThanTheTerminal();
    void TheFiguresOutliveTheBarOnANarrowTerminal();
    void NumbersAreLeftOutWholeOrNotAtAll();
    void ALongFileNameLosesItsBeginning();
    void NoHalfCharacterIsShown();
    void WhatSteersATerminalHasItsRoomInTheBar();
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

void ProgressTextTest::TheLineNamesEveryServerThatServes()
{
    RunSnapshot snapshot = Download();
    snapshot.Servers = {{"a.example", 5}, {"idle.example", 0}, {"b.example:81", 1}};
    QVERIFY2(ProgressText::Line(snapshot).endsWith(" left, from a.example, b.example:81"),
             qPrintable(ProgressText::Line(snapshot)));
    snapshot.Servers.pop_back();
    QVERIFY2(ProgressText::Line(snapshot).endsWith(" left, from mirror.example:8080"),
             qPrintable(ProgressText::Line(snapshot)));
}

void ProgressTextTest::TheLineTellsOfAWait()
{
    QCOMPARE(
        ProgressText::Line(Waiting()),
        "downloading base files: file 12 of 312 (Data/some file.MPQ), 25.0 MiB of 100.0 MiB, " +
            c_Wait);
    RunSnapshot snapshot;
    snapshot.Phase = RunPhase::Connecting;
    snapshot.Wait = Waiting().Wait;
    QCOMPARE(ProgressText::Line(snapshot), "connecting: " + c_Wait);
}

void ProgressTextTest::AWaitIsToldInWords_data()
{
    QTest::addColumn<qint64>("silent");
    QTest::addColumn<qint64>("next");
    QTest::addColumn<int>("attempt");
    QTest::addColumn<int>("attempts");
    QTest::addColumn<QString>("text");
    auto const row = [](char const* p_Name, qint64 p_Silent, qint64 p_Next, int p_Attempt,
                        int p_Attempts, char const* p_Text) {
        QTest::newRow(p_Name) << p_Silent << p_Next << p_Attempt << p_Attempts << p_Text;
    };
    row("just begun", 0, 1, 1, 0, "silent for 0 s, next attempt in 1 s");
    row("a minute", 60, 59, 1, 0, "silent for 1 min 0 s, next attempt in 59 s");
    row("hours", 7203, 61, 7, 0, "silent for 120 min 3 s, attempt 7 in 1 min 1 s");
    row("at it", 12, 0, 1, 0, "silent for 12 s, next attempt under way");
    row("few", 12, 0, 2, 3, "silent for 12 s, attempt 2 of 3 under way");
}

void ProgressTextTest::AWaitIsToldInWords()
{
    QFETCH(qint64, silent);
    QFETCH(qint64, next);
    QFETCH(int, attempt);
    QFETCH(int, attempts);
    QFETCH(QString, text);
    RunSnapshot snapshot = Waiting();
    snapshot.Wait->Silent = silent;
    snapshot.Wait->NextAttempt = next;
    snapshot.Wait->Attempt = attempt;
    snapshot.Wait->Attempts = attempts;
    for (QString const& shown :
         {ProgressText::Line(snapshot), ProgressText::Bar(snapshot, 200, true)})
        QVERIFY2(shown.endsWith("server " + text + " (mirror.example: connection refused)"),
                 qPrintable(shown));
}

void ProgressTextTest::TheBarGivesWayToAWait()
{
    QCOMPARE(ProgressText::Bar(Waiting(), 200, true), "downloading base files  25 %  " + c_Wait);
    RunSnapshot snapshot;
    snapshot.Phase = RunPhase::Connecting;
    snapshot.Wait = Waiting().Wait;
    QCOMPARE(ProgressText::Bar(snapshot, 200, true), "connecting  " + c_Wait);
}

void ProgressTextTest::OfAWaitTheServerOutlivesTheRest_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<QString>("bar");
    QTest::newRow("no percentage") << 104 << "downloading base files  " + c_Wait;
    QTest::newRow("no phase") << 80 << c_Wait;
    QTest::newRow("no server") << 79 << "server silent for 12 s, next attempt in 8 s";
    QTest::newRow("no attempt") << 42 << "silent for 12 s";
    QTest::newRow("no half number") << 14 << "";
    QTest::newRow("nothing") << 0 << "";
}

void ProgressTextTest::OfAWaitTheServerOutlivesTheRest()
{
    QFETCH(int, width);
    QTEST(ProgressText::Bar(Waiting(), width, true), "bar");
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
            for (RunSnapshot const& snapshot : {Download(), Waiting()}) {
                QString const bar = ProgressText::Bar(snapshot, width, unicode);
                QVERIFY2(bar.size() <= width, qPrintable(bar));
            }
        }
}

void ProgressTextTest::TheFiguresOutliveTheBarOnANarrowTerminal()
{
    QString const bar = ProgressText::Bar(Download(), 85, false);
    QVERIFY2(!bar.contains('#'), qPrintable(bar));
    QVERIFY2(bar.contains("25 %  25.0 MiB of 100.0 MiB, 1.0 MiB/s, 1:15 left"), qPrintable(bar));
}

void ProgressTextTest::NumbersAreLeftOutWholeOrNotAtAll()
{
    QString const bytes = "25 %  25.0 MiB of 100.0 MiB";
    QStringList const shown{"downloading base files  12/312  25 %  25.0 MiB of 100.0 MiB, 1.0 "
                            "MiB/s, 1:15 left",
                            "12/312  " + bytes + ", 1.0 MiB/s, 1:15 left",
                            bytes + ", 1.0 MiB/s, 1:15 left",
                            bytes + ", 1.0 MiB/s",
                            bytes,
                            "25 %",
                            ""};
    int narrowest = 0;
    for (int width = shown[0].size() + 1; width >= 0; --width) {
        QString const bar = ProgressText::Bar(Download(), width, false).simplified();
        int const place = QStringList(shown).replaceInStrings("  ", " ").indexOf(bar);
        QVERIFY2(place >= narrowest, qPrintable(bar));
        narrowest = place;
    }
    QCOMPARE(narrowest, shown.size() - 1);
}

void ProgressTextTest::ALongFileNameLosesItsBeginning()
{
    RunSnapshot snapshot = Download();
    snapshot.File = QString(300, 'x') + "/the end.MPQ";
    QString const bar = ProgressText::Bar(snapshot, 150, false);
    QCOMPARE(bar.size(), 150);
    QVERIFY2(bar.contains(" left  ...xx") && bar.endsWith("x/the end.MPQ"), qPrintable(bar));
    QVERIFY(ProgressText::Bar(snapshot, 150, true).contains(QString(" left  ") + QChar(0x2026)));
}

void ProgressTextTest::NoHalfCharacterIsShown()
{
    RunSnapshot snapshot = Download();
    for (char const* const end : {"", "x"}) {
        snapshot.File = QString::fromUtf8("\xf0\x9f\x8e\xae").repeated(100) + end;
        QString const bar = ProgressText::Bar(snapshot, 150, true);
        QCOMPARE(QString::fromUtf8(bar.toUtf8()), bar);
    }
}

void ProgressTextTest::WhatSteersATerminalHasItsRoomInTheBar()
{
    RunSnapshot snapshot = Download();
    snapshot.File = QString(300, '\x1b');
    QString const bar = ProgressText::Bar(snapshot, 150, false);
    QVERIFY2(!bar.contains('\x1b') && bar.endsWith("\\u001b"), qPrintable(bar));
    QCOMPARE(bar.size(), 150);
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

VARNHOLT_TEST(Varnholt::Host::ProgressTextTest)
#include "tst_ProgressText.moc"
