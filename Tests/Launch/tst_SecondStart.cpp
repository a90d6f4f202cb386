#include "Tests/Launch/LaunchBench.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QtTest>

namespace Varnholt::TestSupport {

/// Starts beside a game that runs, with real processes.
class SecondStartTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void ASecondInstanceStartsWithoutLogin();
    void TheLoginIsBackWhenTheGameHasQuit();
    void EveryClientOfTheFolderCounts_data();
    void EveryClientOfTheFolderCounts();
    void AGameOfAnotherFolderDoesNotCount();
    void AnotherProgramOfTheFolderDoesNotCount();

private:
    /// Starts a program of this name that does nothing until the end of the test.
    [[nodiscard]] bool RunProgram(QString const& p_Path);

    std::unique_ptr<LaunchBench> Bench;
    std::unique_ptr<QProcess> Program;
};

void SecondStartTest::init()
{
    Bench = std::make_unique<LaunchBench>();
    Bench->App.GameRuns.reset();
    Bench->PutTemplates();
}

void SecondStartTest::cleanup()
{
    if (Program != nullptr) {
        Program->kill();
        Program->waitForFinished();
        Program.reset();
    }
    Bench.reset();
}

bool SecondStartTest::RunProgram(QString const& p_Path)
{
    QDir().mkpath(QFileInfo(p_Path).absolutePath());
    if (!QFile::copy(QStandardPaths::findExecutable("sleep"), p_Path) || !SetMode(p_Path, 0755))
        return false;
    Program = std::make_unique<QProcess>();
    Program->setProcessEnvironment(QProcessEnvironment());
    Program->start(p_Path, {"600"});
    return Program->waitForStarted();
}

void SecondStartTest::ASecondInstanceStartsWithoutLogin()
{
    LaunchBench& bench = *Bench;
    bench.Game.Write(0755, GameScript::Run::UntilQuit);
    QVERIFY(bench.App.Start("me", "secret"));
    QVERIFY(bench.RunUntilStarted());
    QVERIFY(bench.App.IsGameRunning());
    QVERIFY(bench.Has(LaunchBench::c_Layout));
    QVERIFY(bench.Has(LaunchBench::c_Script));

    QVERIFY(bench.App.Start("me", "secret"));
    QVERIFY(bench.RunUntilStarted(2));
    QVERIFY(!bench.HasLiveFiles());
    QCOMPARE(bench.Game.Starts(), QStringList({"[-noautolaunch64bit]", "[-noautolaunch64bit]"}));
    QCOMPARE(bench.LoggedStarts(), 2);
}

void SecondStartTest::TheLoginIsBackWhenTheGameHasQuit()
{
    LaunchBench& bench = *Bench;
    bench.Game.Write(0755, GameScript::Run::UntilQuit);
    QVERIFY(bench.App.Start("", ""));
    QVERIFY(bench.RunUntilStarted());
    bench.Game.Quit();
    QVERIFY(bench.Host.RunUntil([&] { return !bench.App.IsGameRunning(); }));
    QVERIFY(bench.App.Start("me", "secret"));
    QCOMPARE(bench.Read(LaunchBench::c_Layout), QByteArray("login me password secret ."));
}

void SecondStartTest::EveryClientOfTheFolderCounts_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("32 bits") << "Wow.exe";
    QTest::newRow("64 bits, disabled while it runs") << "Wow-64.exe";
    QTest::newRow("bundle") << "Beside/World of Warcraft.app/Contents/MacOS/World of Warcraft";
}

void SecondStartTest::EveryClientOfTheFolderCounts()
{
    QFETCH(QString, name);
    Bench->PutLiveFiles();
    QVERIFY(RunProgram(Bench->Path(name)));
    QVERIFY(Bench->App.Start("me", "secret"));
    QVERIFY(!Bench->HasLiveFiles());
    QVERIFY(Bench->RunUntilStarted());
    QCOMPARE(Bench->Log.Count("\"Mists of Pandaria\"  IsGameRunning :  true"), 1);
}

void SecondStartTest::AGameOfAnotherFolderDoesNotCount()
{
    QVERIFY(RunProgram(Bench->Temporary.path() + "/Other/Wow.exe"));
    QVERIFY(Bench->App.Start("me", "secret"));
    QCOMPARE(Bench->Read(LaunchBench::c_Layout), QByteArray("login me password secret ."));
}

void SecondStartTest::AnotherProgramOfTheFolderDoesNotCount()
{
    QVERIFY(RunProgram(Bench->Path("Repair tool")));
    QVERIFY(Bench->App.Start("me", "secret"));
    QCOMPARE(Bench->Read(LaunchBench::c_Layout), QByteArray("login me password secret ."));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::SecondStartTest)
#include "tst_SecondStart.moc"
