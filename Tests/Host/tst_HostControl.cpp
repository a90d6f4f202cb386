#include "Host/Core/Session/ControlLine.hpp"
#include "Tests/Host/HostProcess.hpp"
#include "Tests/Host/JsonReport.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/TestHost.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QDir>
#include <QLocalSocket>
#include <QSettings>
#include <QtTest>

#include <csignal>

namespace Varnholt::TestSupport {

/// Words from one program to another that downloads.
class HostControlTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void ADownloadIsPausedAndResumedByAnotherProgram();
    void APauseOfManySmallFilesIsAnsweredWhenItHolds();
    void AWordThatChangesNothingIsTakenToo();
    void ASignalResumesWhatAWordHasPaused();
    void APausedDownloadCanBeEnded();
    void WithoutADownloadThereIsNobodyToSpeakTo_data();
    void WithoutADownloadThereIsNobodyToSpeakTo();
    void ACommandThatDoesNotDownloadTakesNoWord();
    void TheSocketGoesWithTheRunAndIsTheUsersOwn();
    void AKilledDownloadStandsInNobodysWay();
    void WordsForOtherSettingsDoNothing();
    void TheFolderOfTheGameFindsIt_data();
    void TheFolderOfTheGameFindsIt();
    void AWordMayComeInPieces();
    void ASecondRunLeavesTheFirstItsEar();
    void AKeptLimitIsToldToADownload();

private:
    Outcome Run(QStringList const& p_Arguments) const
    {
        return HostProcess(*Game, p_Arguments).Finish();
    }
    /// An installation that stands still in the middle of a file.
    std::unique_ptr<HostProcess> Begin() const;
    QString Socket() const { return Host::ControlLine::SocketOf(Game->Folder); }
    /// Sends the pieces to the program at work. \return its answer, until it hangs up
    QByteArray Say(QList<QByteArray> const& p_Pieces) const;
    QString File() const { return Game->Content.ServerPath("Data/base.MPQ"); }

    static constexpr int c_Half = 30000;
    std::unique_ptr<HostGame> Game;
};

void HostControlTest::init()
{
    Game = std::make_unique<HostGame>();
    Game->AddFiles().Publish();
    Game->Server.Script("GET " + File()).Then(Answer::SilentAfter(c_Half));
}

void HostControlTest::cleanup()
{
    Game.reset();
}

std::unique_ptr<HostProcess> HostControlTest::Begin() const
{
    auto process = std::make_unique<HostProcess>(*Game, QStringList{"install", Game->Folder});
    if (!process->WaitUntil([&] {
            return QFileInfo(Game->Path("Data/base.MPQ.part")).size() == c_Half &&
                   QFileInfo::exists(Socket());
        }))
        qFatal("the download does not begin");
    return process;
}

QByteArray HostControlTest::Say(QList<QByteArray> const& p_Pieces) const
{
    QLocalSocket socket;
    socket.connectToServer(Socket());
    if (!socket.waitForConnected(TestHost::c_Timeout))
        return "nobody";
    for (QByteArray const& piece : p_Pieces) {
        socket.write(piece);
        socket.waitForBytesWritten(TestHost::c_Timeout);
    }
    if (socket.state() != QLocalSocket::UnconnectedState)
        socket.waitForDisconnected(TestHost::c_Timeout);
    return socket.readAll();
}

void HostControlTest::ADownloadIsPausedAndResumedByAnotherProgram()
{
    auto const process = Begin();
    Outcome const pause = Run({"pause"});
    QCOMPARE(pause.Err + pause.Out, QString());
    QCOMPARE(pause.Status, 0);
    QVERIFY(process->WaitForErr("suspended\n"));
    QCOMPARE(Run({"resume"}).Status, 0);
    Game->Server.OpenGate(File());
    QCOMPARE(process->Finish().Status, 0);
    QCOMPARE(Game->Wrong(), QStringList());
}

void HostControlTest::APauseOfManySmallFilesIsAnsweredWhenItHolds()
{
    constexpr int c_Many = 300;
    constexpr int c_Pauses = 8;
    constexpr int c_LookMilliseconds = 100; // some turns of the module

    Game->Content.Files.clear();
    for (int i = 0; i < c_Many; ++i)
        Game->Content.Add({QStringLiteral("small/%1").arg(i), QByteArray::number(i)});
    Game->Publish();
    HostProcess process(*Game, {"install", Game->Folder});
    QDir const folder(Game->Path("small"));
    auto const files = [&] { return folder.entryList(QDir::Files); };
    int before = 1;
    for (int i = 0; i < c_Pauses; ++i) {
        QVERIFY(process.WaitUntil([&] { return files().size() > before; }));
        Outcome const pause = Run({"pause"});
        QStringList const atPause = files();
        QCOMPARE(pause.Err, QString());
        QVERIFY(atPause.size() < c_Many);
        QVERIFY(!QTest::qWaitFor([&] { return files() != atPause; }, c_LookMilliseconds));
        QCOMPARE(Run({"pause"}).Status, 0);
        QCOMPARE(Run({"resume"}).Status, 0);
        before = atPause.size();
    }
    QCOMPARE(process.Finish().Status, 0);
    QCOMPARE(Game->Wrong(), QStringList());
}

void HostControlTest::AWordThatChangesNothingIsTakenToo()
{
    auto const process = Begin();
    QCOMPARE(Run({"resume"}).Status, 0);
    QCOMPARE(Run({"pause"}).Status, 0);
    QCOMPARE(Run({"pause"}).Status, 0);
    QVERIFY(process->WaitForErr("suspended\n"));
    QCOMPARE(Run({"resume"}).Status, 0);
    Game->Server.OpenGate(File());
    QCOMPARE(process->Finish().Status, 0);
    QCOMPARE(Game->Wrong(), QStringList());
}

void HostControlTest::ASignalResumesWhatAWordHasPaused()
{
    auto const process = Begin();
    QCOMPARE(Run({"pause"}).Status, 0);
    QVERIFY(process->WaitForErr("suspended\n"));
    process->Signal(SIGUSR1);
    Game->Server.OpenGate(File());
    QCOMPARE(process->Finish().Status, 0);
    QCOMPARE(Game->Wrong(), QStringList());
}

void HostControlTest::APausedDownloadCanBeEnded()
{
    auto const process = Begin();
    QCOMPARE(Run({"pause"}).Status, 0);
    QVERIFY(process->WaitForErr("suspended\n"));
    process->Signal(SIGTERM);
    QCOMPARE(process->Finish().Status, 130);
    QCOMPARE(QFileInfo(Game->Path("Data/base.MPQ.part")).size(), qint64(c_Half));
    QCOMPARE(Run({"-q", "update"}).Status, 0);
    QCOMPARE(Game->Wrong(), QStringList());
}

void HostControlTest::WithoutADownloadThereIsNobodyToSpeakTo_data()
{
    QTest::addColumn<QString>("word");
    QTest::newRow("pause") << "pause";
    QTest::newRow("resume") << "resume";
}

void HostControlTest::WithoutADownloadThereIsNobodyToSpeakTo()
{
    QFETCH(QString, word);
    Outcome const outcome = Run({word});
    QCOMPARE(outcome.Err, "varnholt-host: no download is under way with the settings " +
                              Game->SettingsFile + "; start one first.\n");
    QCOMPARE(outcome.Out, QString());
    QCOMPARE(outcome.Status, 1);
    QCOMPARE(JsonReport(Run({"--json", word}).Out).Last()["error"].toString(),
             QString("nothing-running"));
}

void HostControlTest::ACommandThatDoesNotDownloadTakesNoWord()
{
    QString const manifest = Game->Content.ManifestPath();
    Game->Server.Script(manifest).Always(Answer::SilentBeforeHeaders());
    HostProcess process(*Game, {"locales"});
    QVERIFY(process.WaitUntil([&] { return Game->Server.Count(manifest) > 0; }));
    QCOMPARE(Run({"pause"}).Status, 1);
}

void HostControlTest::TheSocketGoesWithTheRunAndIsTheUsersOwn()
{
    auto const process = Begin();
    QVERIFY(QFile::exists(Socket()));
    QCOMPARE(ModeOf(Socket()) & 077, 0);
    Game->Server.OpenGate(File());
    QCOMPARE(process->Finish().Status, 0);
    QVERIFY(!QFile::exists(Socket()));
}

void HostControlTest::AKilledDownloadStandsInNobodysWay()
{
    {
        auto const process = Begin();
        process->Signal(SIGKILL);
        QCOMPARE(process->Finish().Status, -1);
    }
    QVERIFY(QFile::exists(Socket()));
    QCOMPARE(Run({"pause"}).Status, 1);

    QVERIFY(QFile::remove(Game->Path("Data/base.MPQ.part")));
    Game->Server.Script("GET " + File()).Then(Answer::SilentAfter(c_Half));
    auto const process = Begin();
    QCOMPARE(Run({"pause"}).Status, 0);
    QVERIFY(process->WaitForErr("suspended\n"));
    QCOMPARE(Run({"resume"}).Status, 0);
    Game->Server.OpenGate(File());
    QCOMPARE(process->Finish().Status, 0);
    QVERIFY(!QFile::exists(Socket()));
}

void HostControlTest::WordsForOtherSettingsDoNothing()
{
    auto const process = Begin();
    HostProcess other(*Game, {"--settings", Game->Base + "settings/other.ini"}, {"pause"});
    QCOMPARE(other.Finish().Status, 1);
    Game->Server.OpenGate(File());
    Outcome const outcome = process->Finish();
    QCOMPARE(outcome.Status, 0);
    QVERIFY2(!outcome.Err.contains("suspended"), qPrintable(outcome.Err));
}

void HostControlTest::TheFolderOfTheGameFindsIt_data()
{
    QTest::addColumn<QString>("settings");
    QTest::addColumn<QString>("folder"); ///< that other settings name; empty: the same settings
    QTest::addColumn<QString>("runtime");
    QString const folder = QString::fromUtf8("Jeux été/Game/");
    QTest::newRow("another way to the settings") << "settings/../link/host.ini"
                                                 << ""
                                                 << "run";
    QTest::newRow("without a runtime folder") << "settings/host.ini"
                                              << ""
                                              << "";
    QTest::newRow("other settings") << "other.ini" << folder << "other run";
    QTest::newRow("another way to the folder") << "other.ini"
                                               << "link/../Jeux/Game"
                                               << "run";
}

void HostControlTest::TheFolderOfTheGameFindsIt()
{
    QFETCH(QString, settings);
    QFETCH(QString, folder);
    QFETCH(QString, runtime);
    QVERIFY(QFile::link("settings", Game->Base + "link"));
    QVERIFY(QFile::link(QString::fromUtf8("Jeux été"), Game->Base + "Jeux"));
    auto const process = Begin();
    if (!folder.isEmpty()) {
        QSettings other(Game->Base + settings, QSettings::IniFormat);
        other.setValue("pelmora_app.InstallFolder", QDir(Game->Base).absoluteFilePath(folder));
    }
    Outcome const pause = HostProcess(*Game, {"--settings", settings}, {"pause"},
                                      {{"XDG_RUNTIME_DIR", runtime}, {"TMPDIR", runtime}})
                              .Finish();
    QCOMPARE(pause.Err, QString());
    QCOMPARE(pause.Status, 0);
    QVERIFY(process->WaitForErr("suspended\n"));
}

void HostControlTest::AWordMayComeInPieces()
{
    auto const process = Begin();
    QCOMPARE(Say({"pa", "us", "e\n"}), QByteArray("ok\n"));
    QVERIFY(process->WaitForErr("suspended\n"));
    QCOMPARE(Say({"resume\n"}), QByteArray("ok\n"));
    Game->Server.OpenGate(File());
    QCOMPARE(process->Finish().Status, 0);
}

void HostControlTest::ASecondRunLeavesTheFirstItsEar()
{
    auto const process = Begin();
    QCOMPARE(Run({"-q", "update"}).Status, 8);
    QCOMPARE(Run({"pause"}).Status, 0);
    QVERIFY(process->WaitForErr("suspended\n"));
    QCOMPARE(Run({"resume"}).Status, 0);
    Game->Server.OpenGate(File());
    QCOMPARE(process->Finish().Status, 0);
}

void HostControlTest::AKeptLimitIsToldToADownload()
{
    auto const process = Begin();
    Outcome const outcome = Run({"config", "limit-rate", "1.5M"});
    QCOMPARE(outcome.Err + outcome.Out, QString());
    QCOMPARE(outcome.Status, 0);
    QVERIFY(process->WaitForErr("The download is now limited to 1.5 MiB/s.\n"));
    QCOMPARE(Run({"config", "limit-rate", "fast"}).Status, 2);
    QCOMPARE(Run({"config", "connections", "8"}).Status, 0);
    QCOMPARE(Run({"config", "limit-rate", ""}).Status, 0);
    QVERIFY(process->WaitForErr("The download is no longer limited.\n"));
    Game->Server.OpenGate(File());
    Outcome const ended = process->Finish();
    QCOMPARE(ended.Status, 0);
    QCOMPARE(ended.Err.count(" limited"), 2);
    QCOMPARE(Game->Wrong(), QStringList());
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::HostControlTest)
#include "tst_HostControl.moc"
