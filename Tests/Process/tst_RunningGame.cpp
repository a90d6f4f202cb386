#include "Launcher/Helper/Process.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/LogCapture.hpp"
#include "Tests/Support/ScopedVariable.hpp"
#include "Tests/Support/TestApplication.hpp"
#include "Tests/Support/TestHost.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

namespace Varnholt::Launcher {

using Helper::Process::IsProcessRunningIn;
using TestSupport::WriteFile;

class RunningGameTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void SeesAGameThatRunsFromTheFolder();
    void DoesNotSeeAGameOfAnotherFolder();
    void SeesTheGameQuit();
    void AnEmptyFolderStartsNoListing();
    void AFolderOfBlanksIsSearchedLikeAnyOther();
    void ListsWithTheFullCommandLinesAndEnvironments();
    void ReadsStandardErrorToo();
    void AMissingListingProgramMeansNotRunning();
    void TheApplicationAsksForItsGamesNamesInItsCachedFolder();
    void TheApplicationLogsItsResult();
    void TheLogHoldsNothingOfAnEnvironment();

private:
    /// Puts a "ps" with this shell script first in PATH.
    void InstallPs(QByteArray const& p_Script);
    QByteArray PathWithPs() const { return Folder->path().toUtf8() + "/bin:" + qgetenv("PATH"); }
    /// Starts a program of this name that does nothing for a long time.
    std::unique_ptr<QProcess> StartGame(QString const& p_Path,
                                        QStringList const& p_Environment = {});

    std::unique_ptr<QTemporaryDir> Folder;
};

void RunningGameTest::init()
{
    Folder = std::make_unique<QTemporaryDir>();
}

void RunningGameTest::InstallPs(QByteArray const& p_Script)
{
    QString const ps = Folder->path() + "/bin/ps";
    QVERIFY(WriteFile(ps, "#!/bin/sh\n" + p_Script + "\n"));
    QVERIFY(TestSupport::SetMode(ps, 0755));
}

std::unique_ptr<QProcess> RunningGameTest::StartGame(QString const& p_Path,
                                                     QStringList const& p_Environment)
{
    QDir().mkpath(QFileInfo(p_Path).absolutePath());
    QFile::copy(QStandardPaths::findExecutable("sleep"), p_Path);
    TestSupport::SetMode(p_Path, 0755);
    auto game = std::make_unique<QProcess>();
    game->setEnvironment(p_Environment);
    game->start(p_Path, {"600"});
    if (!game->waitForStarted())
        return nullptr;
    return game;
}

void RunningGameTest::SeesAGameThatRunsFromTheFolder()
{
    for (QString const name :
         {"Wow-64.exe", "World of Warcraft.app/Contents/MacOS/World of Warcraft"}) {
        QString const folder = Folder->path() + "/Game/";
        auto const game = StartGame(folder + name);
        QVERIFY(game != nullptr);
        QString line;
        QVERIFY(IsProcessRunningIn(folder, {"wow-64.exe", "macos/world of warcraft"}, &line));
        QVERIFY(line.contains((folder + name).toLower()));
        game->kill();
        QVERIFY(game->waitForFinished());
    }
}

void RunningGameTest::DoesNotSeeAGameOfAnotherFolder()
{
    auto const game = StartGame(Folder->path() + "/Other/Wow-64.exe");
    QVERIFY(game != nullptr);
    QVERIFY(IsProcessRunningIn(Folder->path() + "/Other/", {"wow-64.exe"}, nullptr));
    QVERIFY(!IsProcessRunningIn(Folder->path() + "/Game/", {"wow-64.exe"}, nullptr));
    game->kill();
    QVERIFY(game->waitForFinished());
}

void RunningGameTest::SeesTheGameQuit()
{
    QString const folder = Folder->path() + "/Game/";
    auto const game = StartGame(folder + "Wow-64.exe");
    QVERIFY(game != nullptr);
    QVERIFY(IsProcessRunningIn(folder, {"wow-64.exe"}, nullptr));
    game->kill();
    QVERIFY(game->waitForFinished());
    QVERIFY(!IsProcessRunningIn(folder, {"wow-64.exe"}, nullptr));
}

void RunningGameTest::AnEmptyFolderStartsNoListing()
{
    InstallPs("touch \"$(dirname \"$0\")/started\"; echo u 1 wow-64.exe");
    TestSupport::ScopedVariable const path("PATH", PathWithPs());
    QVERIFY(!IsProcessRunningIn("", {"wow-64.exe"}, nullptr));
    QVERIFY(!IsProcessRunningIn(QString(), {"wow-64.exe"}, nullptr));
    QVERIFY(!QFile::exists(Folder->path() + "/bin/started"));
    QVERIFY(IsProcessRunningIn("u", {"wow-64.exe"}, nullptr));
    QVERIFY(QFile::exists(Folder->path() + "/bin/started"));
}

void RunningGameTest::AFolderOfBlanksIsSearchedLikeAnyOther()
{
    InstallPs("echo 'u 1   wow-64.exe'");
    TestSupport::ScopedVariable const path("PATH", PathWithPs());
    QVERIFY(IsProcessRunningIn(" ", {"wow-64.exe"}, nullptr));
    QVERIFY(IsProcessRunningIn("   ", {"wow-64.exe"}, nullptr));
    QVERIFY(!IsProcessRunningIn("    ", {"wow-64.exe"}, nullptr));
}

void RunningGameTest::ListsWithTheFullCommandLinesAndEnvironments()
{
    InstallPs("echo \"u 1 arguments=[$*] wow-64.exe\"");
    TestSupport::ScopedVariable const path("PATH", PathWithPs());
    QString line;
    QVERIFY(IsProcessRunningIn("u", {"wow-64.exe"}, &line));
    QCOMPARE(line, QString("u 1 arguments=[auxwwwe] wow-64.exe"));
}

void RunningGameTest::ReadsStandardErrorToo()
{
    InstallPs("echo 'u 1 /games/wow-64.exe' >&2");
    TestSupport::ScopedVariable const path("PATH", PathWithPs());
    QVERIFY(IsProcessRunningIn("/games/", {"wow-64.exe"}, nullptr));
}

void RunningGameTest::AMissingListingProgramMeansNotRunning()
{
    TestSupport::ScopedVariable const path("PATH", Folder->path().toUtf8());
    QString line = "before";
    QVERIFY(!IsProcessRunningIn("/", {"wow-64.exe"}, &line));
    QCOMPARE(line, QString("before"));
}

void RunningGameTest::TheApplicationAsksForItsGamesNamesInItsCachedFolder()
{
    TestSupport::LogCapture const log;
    TestSupport::TestApplication app;
    TestSupport::TestHost host(app);
    app.AsksProcessList = true;
    host.SetSetting("test_app.InstallFolder", "/stored/");
    TestSupport::ScopedVariable const path("PATH", PathWithPs());
    for (QByteArray const name :
         {"WoW.exe", "Wow-64.exe", "x.app/Contents/MacOS/World of Warcraft"}) {
        InstallPs("echo 'u 1 /cached/" + name + "'");
        app.InstallationPath = "/cached/";
        QVERIFY(app.IsGameRunning());
        app.InstallationPath = "/stored/";
        QVERIFY(!app.IsGameRunning());
        app.InstallationPath.clear();
        QVERIFY(!app.IsGameRunning());
    }
}

void RunningGameTest::TheApplicationLogsItsResult()
{
    TestSupport::LogCapture const log;
    TestSupport::TestApplication app;
    TestSupport::TestHost const host(app);
    app.AsksProcessList = true;
    app.InstallationPath = "/games/";
    InstallPs("echo 'U  1234 0.5 \"/Games/Wow-64.exe\" -x'");
    {
        TestSupport::ScopedVariable const path("PATH", PathWithPs());
        QVERIFY(app.IsGameRunning());
    }
    InstallPs("true");
    {
        TestSupport::ScopedVariable const path("PATH", PathWithPs());
        QVERIFY(!app.IsGameRunning());
    }
    QCOMPARE(
        log.Texts("varnholt.launch"),
        QStringList({"\"Test Game\"  IsGameRunning :  true", "Candidate is :  \"wow-64.exe 1234\"",
                     "\"Test Game\"  IsGameRunning :  false", "Candidate is :  \"\""}));
    for (auto const& message : log.Messages())
        QCOMPARE(message.Type, QtWarningMsg);
}

void RunningGameTest::TheLogHoldsNothingOfAnEnvironment()
{
    QString const folder = Folder->path() + "/Game/";
    auto const game = StartGame(folder + "Wow-64.exe", {"TOKEN=s3cret"});
    QVERIFY(game != nullptr);
    QString line;
    QVERIFY(IsProcessRunningIn(folder, {"wow-64.exe"}, &line));
    QVERIFY2(line.contains("s3cret"), qPrintable(line));
    TestSupport::LogCapture const log;
    TestSupport::TestApplication app;
    TestSupport::TestHost const host(app);
    app.AsksProcessList = true;
    app.InstallationPath = folder;
    QVERIFY(app.IsGameRunning());
    QCOMPARE(log.Count(QString("Candidate is :  \"wow-64.exe %1\"").arg(game->processId())), 1);
    QCOMPARE(log.CountContaining("s3cret"), 0);
    game->kill();
    QVERIFY(game->waitForFinished());
}

} // namespace Varnholt::Launcher

VARNHOLT_TEST(Varnholt::Launcher::RunningGameTest)
#include "tst_RunningGame.moc"
