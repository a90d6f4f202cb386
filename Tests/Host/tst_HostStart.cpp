#include "Tests/Host/JsonReport.hpp"
#include "Tests/Host/PlayedGame.hpp"
#include "Tests/Host/WatchingSession.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/JsonSchema.hpp"
#include "Tests/Support/TestHost.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

#include <csignal>

namespace Varnholt::TestSupport {

namespace {

QStringList const c_Account{"--account", "me"};

/// Of a text presenter's result.
QString OutputFileOf(Outcome const& p_Outcome)
{
    return p_Outcome.Out.section("its output goes to ", 1).trimmed();
}

/// Runs the host below a shell's line, in which it is "$@". \return what the line has written
Outcome BelowShell(HostGame const& p_Game, QString const& p_Line, QStringList const& p_Arguments)
{
    QProcess shell;
    shell.setProcessEnvironment(HostProcess::Environment(p_Game));
    shell.start("sh", QStringList{"-c", p_Line, "sh", HostProcess::Program()} +
                          HostProcess::Options(p_Game) + p_Arguments);
    shell.closeWriteChannel();
    Outcome outcome;
    if (shell.waitForFinished(TestHost::c_Timeout))
        outcome.Status = shell.exitCode();
    outcome.Out = QString::fromUtf8(shell.readAllStandardOutput());
    outcome.Err = QString::fromUtf8(shell.readAllStandardError());
    return outcome;
}

} // namespace

/// What becomes of the program that "play" starts.
class HostStartTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void AProgramThatTheSystemRefusesIsTold_data();
    void AProgramThatTheSystemRefusesIsTold();
    void AProgramOnAVolumeWithoutProgramsIsTold();
    void AProgramThatEndsWithAnErrorIsTold_data();
    void AProgramThatEndsWithAnErrorIsTold();
    void TheOutputGoesToAFileOfItsOwner();
    void TheOutputBeforeIsKeptOnce();
    void TheOutputDoesNotGoIntoTheGamesFolder();
    void WithoutAPlaceForTheOutputTheGameIsStarted();
    void TheModuleItselfStartsNothing();
    void NothingOfTheHostIsHeldOpen();
    void NoSignalStaysIgnored();
    void TheResultNamesProcessAndOutput();
    void WordsBehindTheMarkAreTheGames();
};

void HostStartTest::AProgramThatTheSystemRefusesIsTold_data()
{
    QTest::addColumn<QByteArray>("program");
    QTest::addColumn<int>("flags");
    QTest::addColumn<QString>("cause");
    int const all = PlayedGame::c_ExecutableFlags;
    QString const format = "this system runs no program of its format";
    QTest::newRow("random bytes") << SampleContent::Bytes(5000, 7) << all << format;
    QTest::newRow("no bytes") << QByteArray("") << all << format;
    QTest::newRow("of another system") << QByteArray("MZ\x90\0\3\0\0\0", 8) << all << format;
    QTest::newRow("no interpreter") << QByteArray("#! /nowhere/sh -e\nexit 0\n") << all
                                    << "its interpreter /nowhere/sh is missing";
    QTest::newRow("a file for an interpreter")
        << QByteArray("#!/etc/passwd\nexit 0\n") << all
        << "its interpreter /etc/passwd is no program that you may run";
    QTest::newRow("no permission")
        << QByteArray("#!/bin/sh\nexit 0\n") << (all & ~0x02) << "its permissions do not let you";
}

void HostStartTest::AProgramThatTheSystemRefusesIsTold()
{
    QFETCH(QByteArray, program);
    QFETCH(int, flags);
    QFETCH(QString, cause);
    PlayedGame const game(program, flags);
    Outcome const outcome = game.Play(c_Account, "S3cret\n");
    QVERIFY2(IsOneSentence(outcome.Err), qPrintable(outcome.Err));
    QVERIFY2(outcome.Err.contains(game.Path(game.Program) + " is no program that you may run (" +
                                  cause + ");"),
             qPrintable(outcome.Err));
    QCOMPARE(outcome.Status, 7);
    QCOMPARE(outcome.Out, QString());
    QVERIFY(!game.Has(game.Layout)); // no password lies about for nothing
}

void HostStartTest::AProgramOnAVolumeWithoutProgramsIsTold()
{
    PlayedGame const game;
    QString const mounted = QStringLiteral(
        "unshare -rm sh -c 'mount --bind \"$0\" \"$0\" && mount -o remount,bind,noexec \"$0\" && "
        "exec \"$@\"' '%1' ");
    if (BelowShell(game, mounted.arg(game.Folder) + "true", {}).Status != 0)
        QSKIP("this user cannot mount");
    Outcome const outcome = BelowShell(game, mounted.arg(game.Folder) + "\"$@\"", {"-q", "play"});
    QVERIFY2(outcome.Err.contains("(its volume is mounted for no programs);"),
             qPrintable(outcome.Err));
    QCOMPARE(outcome.Status, 7);
}

void HostStartTest::AProgramThatEndsWithAnErrorIsTold_data()
{
    QTest::addColumn<QByteArray>("program");
    QTest::addColumn<QString>("cause");
    QTest::newRow("a status") << QByteArray("exit 3") << "exit status 3";
    QTest::newRow("a signal") << QByteArray("kill -KILL $$") << "signal 9, Killed";
    QTest::newRow("its last lines") << QByteArray("seq 100; echo; echo out; echo err >&2; exit 4")
                                    << R"(exit status 4; it said last: "100 / out / err")";
    QTest::newRow("no control characters")
        << QByteArray(R"(printf '\033[31mred\033[0m\a \r\nend'; exit 1)")
        << R"(exit status 1; it said last: "[31mred[0m / end")";
    QTest::newRow("not too much") << QByteArray("printf '%05000d' 0; exit 1")
                                  << "exit status 1; it said last: \"…" + QString(200, '0') + '"';
}

void HostStartTest::AProgramThatEndsWithAnErrorIsTold()
{
    QFETCH(QByteArray, program);
    QFETCH(QString, cause);
    PlayedGame const game("#!/bin/sh\n" + program + '\n');
    WatchingSession session(game);
    Host::RunRequest request;
    request.Kind = RequestType::Play;
    request.Argument = "me";
    request.Password = "S3cret";
    QCOMPARE(session.Run(request), QString("game-failed"));
    QCOMPARE(session.Sentence(), "the game has ended with an error (" + cause +
                                     "), its output is in " + game.Base +
                                     "settings/host.pelmora_app.log");
    QVERIFY(!game.Has(game.Layout));
}

void HostStartTest::TheOutputGoesToAFileOfItsOwner()
{
    PlayedGame const game("#!/bin/sh\necho out\necho err >&2\ncat\npwd >\"$0.folder\"\n");
    Outcome const outcome = BelowShell(game, "umask 0; exec \"$@\"", {"-q", "play"});
    QCOMPARE(outcome.Err, QString());
    QString const file = game.Base + "settings/host.pelmora_app.log";
    QCOMPARE(OutputFileOf(outcome), file);
    QTRY_COMPARE_WITH_TIMEOUT(ReadFile(file), QByteArray("out\nerr\n"), TestHost::c_Timeout);
    QCOMPARE(ModeOf(file), 0600);
    // As the module's own start has it.
    QTRY_COMPARE_WITH_TIMEOUT(game.Read(game.Program + ".folder"),
                              QFileInfo(HostProcess::Program()).canonicalPath().toUtf8() + '\n',
                              TestHost::c_Timeout);
}

void HostStartTest::TheOutputBeforeIsKeptOnce()
{
    PlayedGame const game("#!/bin/sh\necho \"$2\"\n");
    QString file;
    for (char const* const word : {"one", "two", "three"})
        file = OutputFileOf(game.Play({"--", word}));
    QTRY_COMPARE_WITH_TIMEOUT(ReadFile(file), QByteArray("three\n"), TestHost::c_Timeout);
    QTRY_COMPARE_WITH_TIMEOUT(ReadFile(file + ".1"), QByteArray("two\n"), TestHost::c_Timeout);
    QCOMPARE(ModeOf(file + ".1"), 0600);
    QCOMPARE(QDir(QFileInfo(file).path()).entryList({"*.log*"}).size(), 2);
    QCOMPARE(HostProcess(game, {"-q", "uninstall"}).Finish().Status, 0);
    QCOMPARE(QDir(QFileInfo(file).path()).entryList({"*.log*"}), QStringList());
}

void HostStartTest::TheOutputDoesNotGoIntoTheGamesFolder()
{
    PlayedGame game("#!/bin/sh\necho out\n");
    QString const settings = game.Path("WTF/host.ini");
    QVERIFY(QDir().mkpath(game.Path("WTF")) && QFile::copy(game.SettingsFile, settings));
    game.SettingsFile = settings;
    QString const file = OutputFileOf(game.Play());
    QVERIFY2(!file.startsWith(game.Folder), qPrintable(file));
    QTRY_COMPARE_WITH_TIMEOUT(ReadFile(file), QByteArray("out\n"), TestHost::c_Timeout);
    QVERIFY(!game.FilesOnDisk().join('\n').contains(".log"));
}

void HostStartTest::WithoutAPlaceForTheOutputTheGameIsStarted()
{
    PlayedGame const game;
    QString const file = game.Base + "settings/host.pelmora_app.log";
    QVERIFY(WriteFile(file + "/file", "x") && WriteFile(file + ".1/file", "x"));
    Outcome const outcome = HostProcess(game, {"--json", "play"}).Finish();
    QCOMPARE(outcome.Status, 0);
    JsonReport const report(outcome.Out);
    QVERIFY2(report.Texts("notice", "text").filter(file + " cannot be written").size() == 1,
             qPrintable(outcome.Out));
    QVERIFY(!report.Last().contains("output"));
    QVERIFY(game.WaitForStarts(1));
}

void HostStartTest::TheModuleItselfStartsNothing()
{
    PlayedGame const game;
    QString const err = HostProcess(game, {"-v", "play"}).Finish().Err;
    QVERIFY2(err.contains("IsGameRunning : "), qPrintable(err));
    QVERIFY2(!err.contains("Start  \""), qPrintable(err)); // what the module says before it
    QVERIFY(game.WaitForStarts(1));
}

void HostStartTest::NothingOfTheHostIsHeldOpen()
{
    PlayedGame const game;
    game.KeepRunning();
    // "cat" ends when nobody holds the pipe any more, which the descriptor 9 is too.
    Outcome const outcome = BelowShell(game, "\"$@\" 2>&1 9>&1 | cat", {"-q", "play"});
    QVERIFY2(outcome.Out.contains("was started"), qPrintable(outcome.Out));
    QCOMPARE(outcome.Status, 0);
    QVERIFY(game.IsRunning());
}

void HostStartTest::NoSignalStaysIgnored()
{
    PlayedGame const game("#!/bin/sh\nkill -HUP $$\n");
    auto* const former = std::signal(SIGHUP, SIG_IGN);
    WatchingSession session(game);
    QCOMPARE(session.Run(RequestType::Play), QString("game-failed"));
    QVERIFY2(session.Sentence().contains("signal 1,"), qPrintable(session.Sentence()));
    std::signal(SIGHUP, former);
}

void HostStartTest::TheResultNamesProcessAndOutput()
{
    PlayedGame const game;
    game.KeepRunning();
    JsonReport const report(HostProcess(game, {"--json", "play"}).Finish().Out);
    QVERIFY(game.WaitForStarts(1));
    auto const process = static_cast<pid_t>(report.Last()["processId"].toInt());
    QVERIFY(process > 1);
    QCOMPARE(::getsid(process), process); // no terminal's Ctrl-C comes there
    QVERIFY(QFileInfo(report.Last()["output"].toString()).isFile());
    QVERIFY2(report.Phases().contains("starting-game"), qPrintable(report.Phases().join(' ')));
    for (QJsonObject const& line : report.Lines)
        QCOMPARE(JsonSchema::Documented("host-json").Fault(line), QString());
    ::kill(process, SIGKILL);
    QVERIFY(QTest::qWaitFor([&] { return !game.IsRunning(); }, TestHost::c_Timeout));
}

void HostStartTest::WordsBehindTheMarkAreTheGames()
{
    PlayedGame const game;
    QCOMPARE(game.Play({"--", "-windowed", "two words", "[1,2]", "", "--", "--help"}).Err,
             QString());
    QVERIFY(game.WaitForStarts(1));
    QCOMPARE(game.Arguments(),
             QString("-noautolaunch64bit\n-windowed\ntwo words\n[1,2]\n\n--\n--help\n"));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::HostStartTest)
#include "tst_HostStart.moc"
