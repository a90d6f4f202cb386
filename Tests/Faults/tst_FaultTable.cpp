#include "Tests/Faults/Belongings.hpp"
#include "Tests/Faults/FaultProgram.hpp"
#include "Tests/Faults/FaultSuite.hpp"
#include "Tests/Faults/FaultTable.hpp"
#include "Tests/Faults/Pulse.hpp"
#include "Tests/Faults/Referee.hpp"

#include <QProcess>
#include <QSemaphore>
#include <QtTest>

#include <cstdio>
#include <cstdlib>

namespace Varnholt::TestSupport {

namespace {

FaultReport Report(int p_Injected, QString const& p_Outcome, QStringList const& p_Faults,
                   qint64 p_Silence)
{
    FaultReport report;
    report.Injected = p_Injected;
    report.Outcome = p_Outcome;
    report.Faults = p_Faults;
    report.Silence = p_Silence;
    return report;
}

void TellThatAllIsWell()
{
    std::fputs(FaultSuite::LineOf(Report(1, "complete: 1", {}, 1)).constData(), stdout);
    std::fflush(stdout);
}

/// Rows of this program itself, which it runs as the suite does.
std::vector<FaultRow> Rows()
{
    return {{QStringLiteral("fine"), [] { return Report(3, "complete: 3", {}, 7); }},
            {QStringLiteral("loses"), [] { return Report(1, "lost", {"a file was lost"}, 8); }},
            {QStringLiteral("never strikes"), [] { return Report(0, "not possible here", {}, 1); }},
            {QStringLiteral("crashes"), []() -> FaultReport { std::abort(); }},
            {QStringLiteral("ends early"), []() -> FaultReport { std::exit(0); }},
            {QStringLiteral("fails behind its report"),
             []() -> FaultReport {
                 TellThatAllIsWell();
                 std::_Exit(3);
             }},
            {QStringLiteral("dies behind its report"), []() -> FaultReport {
                 TellThatAllIsWell();
                 std::abort();
             }}};
}

} // namespace

/// The suite sees what it is there to see.
class FaultTableTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void WrongBytesUnderAFinalNameAreSeen();
    void BytesOfTheBuildAndTheAllowedOnesAreInOrder();
    void WhatIsRightAgainWasWrong();
    void ABlockedThreadIsSeenAndNotForgotten();
    void LostBelongingsAreNamed_data();
    void LostBelongingsAreNamed();
    void StraysAreNamed();
    void TheTableHasColumnsOfEqualWidth();
    void AReportSurvivesItsLine();
    void TheSuiteEndsByWhatItsRowsFound_data();
    void TheSuiteEndsByWhatItsRowsFound();
};

void FaultTableTest::WrongBytesUnderAFinalNameAreSeen()
{
    HostGame game;
    game.AddFiles();
    Referee eyes(game);
    game.Put("Data/base.MPQ", "wrong");
    game.Put("Data/base.MPQ.part", "wrong too");
    eyes.Look();
    QCOMPARE(eyes.Faults(), QStringList("Data/base.MPQ stood there with wrong content"));
}

void FaultTableTest::BytesOfTheBuildAndTheAllowedOnesAreInOrder()
{
    HostGame game;
    game.AddFiles();
    Referee eyes(game);
    eyes.Allow("readme.txt", "of before");
    eyes.Look();
    game.Put("Data/base.MPQ", game.Content.Files[0].Bytes);
    game.Put("readme.txt", "of before");
    eyes.Look();
    game.Put("readme.txt", "read me");
    eyes.Look();
    QCOMPARE(eyes.Faults(), QStringList());
}

void FaultTableTest::WhatIsRightAgainWasWrong()
{
    HostGame game;
    game.AddFiles();
    Referee eyes(game);
    game.Put("readme.txt", "wrong");
    eyes.Look();
    eyes.Look();
    game.Put("readme.txt", "read me");
    eyes.Look();
    QCOMPARE(eyes.Faults().size(), 1);
}

void FaultTableTest::ABlockedThreadIsSeenAndNotForgotten()
{
    constexpr qint64 c_Long = 100;

    QThread thread;
    thread.start();
    QObject inside;
    inside.moveToThread(&thread);
    QSemaphore blocked;
    bool isSeen = false;
    qint64 afterwards = 0;
    {
        Pulse const pulse(thread);
        QMetaObject::invokeMethod(
            &inside, [&] { blocked.acquire(); }, Qt::QueuedConnection);
        isSeen = QTest::qWaitFor([&] { return pulse.LongestSilence() >= c_Long; });
        blocked.release();
        QMetaObject::invokeMethod(
            &inside, [] {}, Qt::BlockingQueuedConnection);
        afterwards = pulse.LongestSilence();
    }
    thread.quit();
    thread.wait();
    QVERIFY(isSeen);
    QVERIFY(afterwards >= c_Long);
}

void FaultTableTest::LostBelongingsAreNamed_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");
    QTest::addColumn<bool>("lost");
    QByteArray const base = SampleContent::Bytes(60000, 1);
    QTest::newRow("finished file")
        << "readme.txt" << QByteArray("read me") << QByteArray("") << true;
    QTest::newRow("old file replaced")
        << "readme.txt" << QByteArray("old") << QByteArray("read me") << false;
    QTest::newRow("partial file") << "Data/base.MPQ.part" << base.left(9) << base.left(8) << true;
    QTest::newRow("partial file with other bytes")
        << "Data/base.MPQ.part" << base.left(9) << base.left(9) + "x" << true;
    QTest::newRow("longer partial file")
        << "Data/base.MPQ.part" << base.left(9) << base.left(10) << false;
    QTest::newRow("the player's file") << "own" << QByteArray("own") << QByteArray("") << true;
    QTest::newRow("half of a configuration")
        << "WTF/Config.wtf" << QByteArray("SET a\nSET b\n") << QByteArray("SET a\nSET") << true;
    QTest::newRow("longer configuration")
        << "WTF/Config.wtf" << QByteArray("SET a\n") << QByteArray("SET a\nSET b\n") << false;
    QTest::newRow("half of a list")
        << "ToDownload.db" << QByteArray("readme.txt\n") << QByteArray("readme") << true;
    QTest::newRow("list without what is there")
        << "ToDownload.db" << QByteArray("not of the build\n") << QByteArray("") << false;
}

void FaultTableTest::LostBelongingsAreNamed()
{
    QFETCH(QString, file);
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, after);
    QFETCH(bool, lost);
    HostGame game;
    game.AddFiles();
    game.Put(file, before);
    Belongings const belongings(game);
    QCOMPARE(belongings.Lost(), QStringList());
    game.Put(file, after);
    QCOMPARE(belongings.Lost(), lost ? QStringList(file + " was lost") : QStringList());
}

void FaultTableTest::StraysAreNamed()
{
    HostGame game;
    game.AddFiles();
    game.Put("own", "of the player");
    Belongings const belongings(game);
    for (char const* const file : {"readme.txt", "ToDownload.db", "WTF/Config.wtf"})
        game.Put(file, "x");
    QCOMPARE(belongings.Strays(), QStringList());
    game.Put("ToDownload.db.AbCdEf", "x");
    QCOMPARE(belongings.Strays(), QStringList("ToDownload.db.AbCdEf was left behind"));
}

void FaultTableTest::TheTableHasColumnsOfEqualWidth()
{
    FaultTable table;
    table.Add("a fault", Report(12, "complete: 12", {}, 5));
    table.Add("b", Report(1, "lost", {"one", "two"}, FaultReport::c_NotMeasured));
    QCOMPARE(table.Text(),
             QString("| fault   | injected | outcome: games | lost or wrong | silence, ms |\n"
                     "|---------|----------|----------------|---------------|-------------|\n"
                     "| a fault | 12       | complete: 12   | 0             | 5           |\n"
                     "| b       | 1        | lost           | 2             | -           |\n"));
    QCOMPARE(table.Faults(), QStringList({"b: one", "b: two"}));
}

void FaultTableTest::AReportSurvivesItsLine()
{
    FaultReport const report = Report(12, "été: 1", {"a", "b\nc"}, 5'000'000'000);
    FaultReport const read = FaultReport::FromJson(report.ToJson());
    QCOMPARE(read.Injected, report.Injected);
    QCOMPARE(read.Outcome, report.Outcome);
    QCOMPARE(read.Faults, report.Faults);
    QCOMPARE(read.Silence, report.Silence);
}

void FaultTableTest::TheSuiteEndsByWhatItsRowsFound_data()
{
    QTest::addColumn<QString>("row");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("sentence");
    QTest::newRow("fine") << "fine" << 0 << "| fine  | 3 ";
    QTest::newRow("lost") << "loses" << 1 << "\nloses: a file was lost\n";
    QTest::newRow("skipped") << "never strikes" << 77
                             << "\nnever strikes: the fault never struck\n";
    QTest::newRow("lost and skipped") << "loses,never strikes" << 1 << "\nloses: a file was lost\n";
    QTest::newRow("crash") << "crashes" << 1 << "\ncrashes: its process gave no report";
    QTest::newRow("no report") << "ends early" << 1 << "\nends early: its process gave no report";
    QTest::newRow("failed behind it")
        << "fails behind" << 1 << "\nfails behind its report: its process gave no report";
    QTest::newRow("died behind it")
        << "dies behind" << 1 << "\ndies behind its report: its process gave no report";
    QTest::newRow("no row") << "unknown" << 2 << "";
}

void FaultTableTest::TheSuiteEndsByWhatItsRowsFound()
{
    QFETCH(QString, row);
    QFETCH(int, status);
    QFETCH(QString, sentence);
    QProcess suite;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("VARNHOLT_FAULT_PROGRAM", "1");
    suite.setProcessEnvironment(environment);
    suite.start(QCoreApplication::applicationFilePath(), row.split(','));
    QVERIFY(suite.waitForFinished());
    QCOMPARE(suite.exitStatus(), QProcess::NormalExit);
    QString const said = QString::fromUtf8(suite.readAllStandardOutput());
    QVERIFY2(said.contains(sentence), qPrintable(said));
    QCOMPARE(suite.exitCode(), status);
}

} // namespace Varnholt::TestSupport

/// The suite starts its own program again for each row: this one then is such a program.
int main(int p_Count, char** p_Arguments)
{
    using namespace Varnholt::TestSupport;

    if (qEnvironmentVariableIsSet("VARNHOLT_FAULT_PROGRAM"))
        return RunFaultProgram(p_Count, p_Arguments, Rows());
    QCoreApplication const application(p_Count, p_Arguments);
    FaultTableTest test;
    return QTest::qExec(&test, p_Count, p_Arguments);
}

#include "tst_FaultTable.moc"
