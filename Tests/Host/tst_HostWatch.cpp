#include "Tests/Host/HostProcess.hpp"
#include "Tests/Host/JsonReport.hpp"
#include "Tests/Host/Terminal.hpp"
#include "Tests/Support/JsonSchema.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

#include <csignal>

namespace Varnholt::TestSupport {

/// What other programs see of one that downloads.
class HostWatchTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { Game.reset(); }

    void StatusTellsOfADownload();
    void StatusTellsProgramsOfADownload();
    void WatchShowsTheDownloadToItsEnd();
    void WatchTellsProgramsWhatTheDownloadTellsThem();
    void WatchDrawsABarOnATerminalAndTakesItAway();
    void WatchEndsAsTheDownloadDoes();
    void WatchTellsOfADownloadThatWasKilled();
    void TheEndOfWatchIsNotThatOfTheDownload();
    void AWatchThatStandsStillHoldsNothingUp();
    void WithoutADownloadThereIsNothingToWatch();

private:
    std::unique_ptr<HostProcess> Start(QStringList const& p_Arguments) const
    {
        return std::make_unique<HostProcess>(*Game, p_Arguments);
    }
    Outcome Run(QStringList const& p_Arguments) const { return Start(p_Arguments)->Finish(); }
    /// An installation that stands still in the middle of a file.
    std::unique_ptr<HostProcess> Begin(QStringList const& p_Options = {}) const;
    QString File() const { return Game->Content.ServerPath("Data/base.MPQ"); }

    static constexpr int c_Half = 30'000;
    QString const Bar = QStringLiteral("downloading base files");
    std::unique_ptr<HostGame> Game;
};

void HostWatchTest::init()
{
    Game = std::make_unique<HostGame>();
    Game->AddFiles().Publish();
    Game->Server.Script("GET " + File()).Then(Answer::SilentAfter(c_Half));
}

std::unique_ptr<HostProcess> HostWatchTest::Begin(QStringList const& p_Options) const
{
    auto process = Start(p_Options + QStringList{"install", Game->Folder});
    if (!process->WaitUntil(
            [&] { return QFileInfo(Game->Path("Data/base.MPQ.part")).size() == c_Half; }))
        qFatal("the download does not begin");
    return process;
}

void HostWatchTest::StatusTellsOfADownload()
{
    auto const process = Begin();
    QRegularExpression const line(QStringLiteral("\nA download runs: process %1, (\\d+) %(, "
                                                 "[\\d.]+ [KM]?i?B/s)?\n$")
                                      .arg(process->ProcessId()));
    QTRY_VERIFY(Run({"status"}).Out.contains(line));
    QString const out = Run({"status"}).Out;
    QVERIFY2(out.contains(QRegularExpression("\nState: +not complete yet\n")), qPrintable(out));
    Game->Server.OpenGate(File());
    QCOMPARE(process->Finish().Status, 0);
    QVERIFY(!Run({"status"}).Out.contains("A download runs"));
}

void HostWatchTest::StatusTellsProgramsOfADownload()
{
    auto const process = Begin();
    QJsonObject download;
    auto const look = [&] {
        QJsonObject const status = JsonReport(Run({"--json", "status"}).Out).Last();
        if (!JsonSchema::Documented("host-json").Fault(status).isEmpty())
            return false;
        download = status["download"].toObject();
        return download["bytes"].toDouble() >= c_Half;
    };
    QTRY_VERIFY(look());
    QCOMPARE(download.take("process").toDouble(), double(process->ProcessId()));
    QCOMPARE(download["phase"].toString(), QString("downloading-base"));
    download["type"] = "progress";
    download["time"] = "now";
    QCOMPARE(JsonSchema::Documented("host-json").Fault(download), QString());
    Game->Server.OpenGate(File());
    QCOMPARE(process->Finish().Status, 0);
    QVERIFY(!JsonReport(Run({"--json", "status"}).Out).Last().contains("download"));
}

void HostWatchTest::WatchShowsTheDownloadToItsEnd()
{
    auto const process = Begin();
    auto const watch = Start({"watch"});
    QVERIFY(watch->WaitForErr(Bar + ": file "));
    Game->Server.OpenGate(File());
    Outcome const seen = watch->Finish();
    Outcome const done = process->Finish();
    QCOMPARE(done.Status, 0);
    QCOMPARE(seen.Status, 0);
    QCOMPARE(seen.Out, done.Out);
    QVERIFY2(seen.Out.contains(" is complete in " + Game->Folder), qPrintable(seen.Out));
}

void HostWatchTest::WatchTellsProgramsWhatTheDownloadTellsThem()
{
    auto const process = Begin();
    auto const watch = Start({"--json", "watch"});
    QVERIFY(watch->WaitForOut("\"downloading-base\""));
    Game->Server.OpenGate(File());
    JsonReport const report(watch->Finish().Out);
    QCOMPARE(process->Finish().Status, 0);
    QCOMPARE(report.Foreign, QStringList());
    for (QJsonObject const& line : report.Lines)
        QCOMPARE(JsonSchema::Documented("host-json").Fault(line), QString());
    QCOMPARE(report.Last()["type"].toString(), QString("result"));
    QCOMPARE(report.Last()["folder"].toString(), Game->Folder);
    QVERIFY(!report.Last()["game"].toString().isEmpty());
    QVERIFY(report.Phases().contains("downloading-base"));
    QCOMPARE(report.Phases().last(), QString("finished"));
}

void HostWatchTest::WatchDrawsABarOnATerminalAndTakesItAway()
{
    auto const process = Begin();
    Terminal terminal(*Game, {"watch"});
    QVERIFY(terminal.WaitForLine("29.3 KiB of 89.9 KiB"));
    terminal.Type(QByteArray(1, Terminal::c_CtrlC));
    QCOMPARE(terminal.Finish(), 130);
    QCOMPARE(terminal.Screen(), QStringList(QString()));
    Game->Server.OpenGate(File());
    QCOMPARE(process->Finish().Status, 0);
}

void HostWatchTest::WatchEndsAsTheDownloadDoes()
{
    auto const process = Begin();
    auto const watch = Start({"watch"});
    auto const json = Start({"--json", "watch"});
    QVERIFY(watch->WaitForErr(Bar));
    QVERIFY(json->WaitForOut("progress"));
    process->Signal(SIGTERM);
    Outcome const done = process->Finish();
    Outcome const seen = watch->Finish();
    QCOMPARE(done.Status, 130);
    QCOMPARE(seen.Status, 130);
    QVERIFY(done.Err.endsWith('\n' + seen.Err.section('\n', -2)));
    QJsonObject const last = JsonReport(json->Finish().Out).Last();
    QCOMPARE(last["error"].toString(), QString("interrupted"));
}

void HostWatchTest::WatchTellsOfADownloadThatWasKilled()
{
    auto const process = Begin();
    auto const watch = Start({"watch"});
    QVERIFY(watch->WaitForErr(Bar));
    process->Signal(SIGKILL);
    QCOMPARE(process->Finish().Status, -1);
    Outcome const seen = watch->Finish();
    QCOMPARE(seen.Status, 1);
    QVERIFY2(seen.Err.endsWith("varnholt-host: the program that downloads into " + Game->Folder +
                               " has ended without a word; \"update\" goes on with the "
                               "download.\n"),
             qPrintable(seen.Err));
}

void HostWatchTest::TheEndOfWatchIsNotThatOfTheDownload()
{
    auto const process = Begin();
    for (int const signal : {SIGINT, SIGKILL}) {
        auto const watch = Start({"watch"});
        QVERIFY(watch->WaitForErr(Bar));
        watch->Signal(signal);
        Outcome const seen = watch->Finish();
        QCOMPARE(seen.Status, signal == SIGINT ? 130 : -1);
        QVERIFY(!seen.Err.contains("varnholt-host: "));
    }
    Game->Server.OpenGate(File());
    QCOMPARE(process->Finish().Status, 0);
    QCOMPARE(Game->Wrong(), QStringList());
}

void HostWatchTest::AWatchThatStandsStillHoldsNothingUp()
{
    auto const process = Begin();
    auto const watch = Start({"watch"});
    QVERIFY(watch->WaitForErr(Bar));
    watch->Signal(SIGSTOP);
    Game->Server.OpenGate(File());
    QCOMPARE(process->Finish().Status, 0);
    watch->Signal(SIGCONT);
    QCOMPARE(watch->Finish().Status, 0);
}

void HostWatchTest::WithoutADownloadThereIsNothingToWatch()
{
    Outcome const outcome = Run({"watch"});
    QCOMPARE(outcome.Status, 1);
    QCOMPARE(outcome.Err, "varnholt-host: no download is under way with the settings " +
                              Game->SettingsFile + "; start one first.\n");
    QCOMPARE(JsonReport(Run({"--json", "watch"}).Out).Last()["error"].toString(),
             QString("nothing-running"));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::HostWatchTest)
#include "tst_HostWatch.moc"
