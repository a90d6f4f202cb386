#include "Tests/Host/HostProcess.hpp"
#include "Tests/Host/SessionGame.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

#include <csignal>

namespace Varnholt::TestSupport {

using Host::RunPhase;

namespace {

QString const c_Base = QStringLiteral("Data/base.MPQ");
QString const c_FirstBuild = QStringLiteral("Data/first build.MPQ");
QString const c_Streamed = QStringLiteral("Data/streamed 1.MPQ");
constexpr qint64 c_Held = 5000; ///< bytes that arrive before a run is stopped

} // namespace

/// Runs that are stopped half-way, and the next one.
class HostInterruptTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void AnInterruptionEndsTheRunInEveryPhase_data();
    void AnInterruptionEndsTheRunInEveryPhase();
    void AnInterruptedPauseEnds();
    void AnInterruptionWhileWaitingToTryAgainEnds();
    void AfterAnyStopTheNextRunBringsEveryFile_data();
    void AfterAnyStopTheNextRunBringsEveryFile();
    void AnUpdateIsMarkedUnfinishedFromItsFirstByte();
    void AnInterruptedRepairIsMadeUpFor_data();
    void AnInterruptedRepairIsMadeUpFor();
    void AnInterruptedChangeOfLanguageIsMadeUpFor();
    void ASecondSignalDoesNotWait();

private:
    static void StopInProcess(HostGame& p_Game, QString const& p_File, int p_Signal, bool p_Paused);
};

void HostInterruptTest::AnInterruptionEndsTheRunInEveryPhase_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<Answer>("answer");
    Answer const silence = Answer::SilentBeforeHeaders();
    Answer const cut = Answer::SilentAfter(c_Held);
    QString const base = QStringLiteral("/pelmora_app/builds/build_1/files/Data/base.MPQ");
    QString const streamed =
        QStringLiteral("/pelmora_app/builds/build_1/files/Data/streamed 1.MPQ");
    QTest::newRow("asking for the version") << "/pelmora_app/version.json" << silence;
    QTest::newRow("asking for the manifest") << "/pelmora_app/builds/build_1/info.json" << silence;
    QTest::newRow("asking for the mirrors") << "/cdns.info" << silence;
    QTest::newRow("asking for a size") << base << silence;
    QTest::newRow("within a base file") << "GET " + base << cut;
    QTest::newRow("asking for a streamed size") << streamed << silence;
    QTest::newRow("within a streamed file") << "GET " + streamed << cut;
}

void HostInterruptTest::AnInterruptionEndsTheRunInEveryPhase()
{
    QFETCH(QString, path);
    QFETCH(Answer, answer);
    SessionGame game;
    game.AddFiles().Publish();
    game.Server.Script(path).Then(answer);
    QVERIFY(game.Open());
    game.Start(RequestType::Install, game.Folder);
    QVERIFY(game.WaitUntil([&] { return game.Server.ScriptedAnswers(path) == 1; }));
    game.Session().Interrupt();
    QCOMPARE(game.End(), QString("interrupted"));
    QCOMPARE(game.Result().Problem->ExitStatus(), 130);
    QCOMPARE(game.Snapshots.back().Phase, RunPhase::Failed);
    // In the same session and in the next one, with what is left of the former still hanging.
    QCOMPARE(game.Install(), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
    QVERIFY(game.Open());
    QCOMPARE(game.Run(RequestType::Update), QString("done"));
    QCOMPARE(game.Result().Transfers, 0u);
}

void HostInterruptTest::AnInterruptedPauseEnds()
{
    SessionGame game;
    game.AddFiles().Publish();
    game.HoldContent(c_Base, c_Held);
    QVERIFY(game.Open());
    game.Start(RequestType::Install, game.Folder);
    QVERIFY(game.WaitForPart(c_Base, c_Held));
    game.Session().Pause();
    QVERIFY(game.WaitForPhase(RunPhase::Suspended));
    game.Session().Interrupt();
    QCOMPARE(game.End(), QString("interrupted"));
    QCOMPARE(game.Run(RequestType::Update), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
}

void HostInterruptTest::AnInterruptionWhileWaitingToTryAgainEnds()
{
    SessionGame game;
    game.AddFiles().Publish();
    game.Options.RetryPauseMilliseconds = 2000;
    QString const path = game.Content.ServerPath(c_Base);
    game.Server.Script(path).Always(Answer::ClosedBeforeHeaders());
    QVERIFY(game.Open());
    game.Start(RequestType::Install, game.Folder);
    QVERIFY(game.WaitUntil([&] { // and not just at it
        return !game.Snapshots.empty() && game.Snapshots.back().Wait &&
               game.Snapshots.back().Wait->NextAttempt > 0;
    }));
    Host::RunSnapshot const shown = game.Snapshots.back();
    QCOMPARE(shown.Wait->Cause, QString("connection closed before the end"));
    QVERIFY(shown.Wait->Attempt > 1 && shown.Wait->Attempts == 0);
    QCOMPARE(shown.Phase, RunPhase::WaitingToRetry);
    QCOMPARE(shown.FileCount, 4u); // as in the phase before
    game.Session().Interrupt();
    QCOMPARE(game.End(), QString("interrupted"));
    game.Server.ClearScript(path);
    QCOMPARE(game.Run(RequestType::Update), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
}

void HostInterruptTest::AfterAnyStopTheNextRunBringsEveryFile_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<int>("signal");
    QTest::addColumn<bool>("paused"); ///< before: the module strikes the file from its list then
    for (QString const& file : {c_Base, c_FirstBuild, c_Streamed}) {
        QTest::newRow(qPrintable("Ctrl-C in " + file)) << file << SIGINT << false;
        QTest::newRow(qPrintable("kill -9 in " + file)) << file << SIGKILL << false;
        QTest::newRow(qPrintable("kill -9 in a pause of " + file)) << file << SIGKILL << true;
    }
    QTest::newRow("kill") << c_FirstBuild << SIGTERM << false;
    QTest::newRow("the terminal's end") << c_FirstBuild << SIGHUP << false;
    QTest::newRow("Ctrl-C in a pause") << c_FirstBuild << SIGINT << true;
}

/// Installs until a file has arrived in part, then stops the program.
void HostInterruptTest::StopInProcess(HostGame& p_Game, QString const& p_File, int p_Signal,
                                      bool p_Paused)
{
    p_Game.HoldContent(p_File, c_Held);
    HostProcess host(p_Game, {"install", p_Game.Folder});
    QVERIFY(host.WaitUntil([&] { return p_Game.Read(p_File + ".part").size() == c_Held; }));
    if (p_Paused) {
        host.Signal(SIGUSR1);
        QVERIFY(host.WaitForErr("\nsuspended\n"));
    }
    host.Signal(p_Signal);
    Outcome const outcome = host.Finish();
    QCOMPARE(outcome.Out, QString());
    QCOMPARE(outcome.Status, p_Signal == SIGKILL ? -1 : 130);
    if (p_Signal != SIGKILL)
        QVERIFY2(outcome.Err.endsWith("\nvarnholt-host: interrupted; give the same command again "
                                      "to go on; what has arrived is kept.\n"),
                 qPrintable(outcome.Err));
    QVERIFY(p_Game.IsMarkedUnfinished());
    QCOMPARE(p_Game.Read(p_File + ".part").size(), int(c_Held));
}

void HostInterruptTest::AfterAnyStopTheNextRunBringsEveryFile()
{
    QFETCH(QString, file);
    QFETCH(int, signal);
    QFETCH(bool, paused);
    HostGame game;
    game.AddFiles().Publish();
    StopInProcess(game, file, signal, paused);
    if (QTest::currentTestFailed())
        return;
    QVERIFY(game.Wrong().contains(file));
    Outcome const outcome = HostProcess(game, {"-q", "update"}).Finish();
    QCOMPARE(outcome.Err, QString());
    QCOMPARE(outcome.Status, 0);
    QCOMPARE(game.Wrong(), QStringList());
    QVERIFY(game.WasResumedAt(file, c_Held));
    QVERIFY(!game.IsMarkedUnfinished());
}

void HostInterruptTest::AnUpdateIsMarkedUnfinishedFromItsFirstByte()
{
    SessionGame game;
    game.AddFiles().Publish().PutInstalled();
    QVERIFY(QFile::remove(game.Path(c_FirstBuild)));
    game.Put("ToDownloadBase.db", c_FirstBuild.toUtf8() + '\n');
    game.HoldContent(c_FirstBuild, c_Held);
    QVERIFY(game.Open());
    game.Start(RequestType::Update);
    QVERIFY(game.WaitForPart(c_FirstBuild, c_Held));
    QVERIFY(game.IsMarkedUnfinished());
    game.Session().Pause();
    QVERIFY(game.WaitForPhase(RunPhase::Suspended));
    QVERIFY(game.WaitUntil([&] { return game.Read("ToDownloadBase.db").isEmpty(); }));
    game.Close();
    QVERIFY(game.Open());
    QVERIFY(game.Status().IsUnfinished);
    QCOMPARE(game.Run(RequestType::Update), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
    QVERIFY(!game.IsMarkedUnfinished());
}

void HostInterruptTest::AnInterruptedRepairIsMadeUpFor_data()
{
    QTest::addColumn<QString>("file");
    for (QString const& file : {c_FirstBuild, c_Streamed})
        QTest::newRow(qPrintable(file)) << file;
}

/// The damaged file is there, so that only the mark tells the next run to look at it.
void HostInterruptTest::AnInterruptedRepairIsMadeUpFor()
{
    QFETCH(QString, file);
    SessionGame game;
    game.AddFiles().Publish().PutInstalled();
    game.Put(file, "damaged");
    game.HoldContent(file, c_Held);
    QVERIFY(game.Open());
    game.Start(RequestType::Repair);
    QVERIFY(game.WaitForPart(file, c_Held));
    game.Session().Pause();
    QVERIFY(game.WaitForPhase(RunPhase::Suspended));
    QString const list = file == c_Streamed ? "ToDownload.db" : "ToDownloadBase.db";
    QVERIFY(game.WaitUntil([&] { return game.Read(list).isEmpty(); }));
    QVERIFY(game.Open());
    QCOMPARE(game.Wrong(), QStringList(file));
    QCOMPARE(game.Run(RequestType::Update), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
}

void HostInterruptTest::AnInterruptedChangeOfLanguageIsMadeUpFor()
{
    SessionGame game;
    game.AddFiles();
    game.Content.Add({"Data/frFR/streamed.MPQ", SampleContent::Bytes(9000, 9), 0, "frFR", true});
    game.Publish().PutInstalled();
    game.HoldContent("Data/frFR/streamed.MPQ", c_Held);
    QVERIFY(game.Open());
    QCOMPARE(game.Run(RequestType::ChooseLocale, "frFR"), QString("done"));
    QVERIFY(game.IsMarkedUnfinished());
    game.Start(RequestType::Update);
    QVERIFY(game.WaitForPart("Data/frFR/streamed.MPQ", c_Held));
    game.Session().Interrupt();
    QCOMPARE(game.End(), QString("interrupted"));
    QVERIFY(game.Open());
    QCOMPARE(game.Run(RequestType::Update), QString("done"));
    QVERIFY(game.Has("Data/frFR/streamed.MPQ") && game.Has("Data/frFR/locale.MPQ"));
}

void HostInterruptTest::ASecondSignalDoesNotWait()
{
    HostGame game;
    game.AddFiles().Publish();
    game.HoldContent(c_Base, c_Held);
    HostProcess host(game, {"install", game.Folder});
    QVERIFY(host.WaitUntil([&] { return game.Read(c_Base + ".part").size() == c_Held; }));
    // Stopped meanwhile, it meets both at once; two of the same kind would be one.
    for (int const signal : {SIGSTOP, SIGINT, SIGTERM, SIGCONT})
        host.Signal(signal);
    Outcome const outcome = host.Finish();
    QCOMPARE(outcome.Status, 130);
    QVERIFY2(!outcome.Err.contains("interrupted"), qPrintable(outcome.Err)); // as it ends else
    QCOMPARE(HostProcess(game, {"-q", "install", game.Folder}).Finish().Status, 0);
    QCOMPARE(game.Wrong(), QStringList());
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::HostInterruptTest)
#include "tst_HostInterrupt.moc"
