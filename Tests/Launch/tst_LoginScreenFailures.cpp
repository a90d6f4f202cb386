#include "Tests/Launch/LaunchBench.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/OrdinaryUser.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

namespace Varnholt::TestSupport {

/// Whatever becomes of the login screen, the game starts, and nobody hears of it.
class LoginScreenFailuresTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void AMissingTemplateMeansNoLoginScreen_data();
    void AMissingTemplateMeansNoLoginScreen();
    void AFolderInTheLayoutTemplatesPlaceLeavesTheScriptOnly();
    void AFolderInTheScriptTemplatesPlaceLeavesTheLayoutOnly();
    void AnUnreadableLayoutTemplateLeavesTheScriptOnly();
    void AnUnreadableScriptTemplateLeavesTheLayoutOnly();
    void AFolderInTheLayoutsPlaceStays();
    void AFolderInTheScriptsPlaceStays();
    void AFolderWithoutWritePermissionKeepsWhatIsThere();
    void AFolderWithoutWritePermissionGetsNothing();
    void WithoutAnInterfaceNothingIsMade();

private:
    /// Starts with credentials: the game starts, nothing is reported.
    void StartTheGame();

    std::unique_ptr<OrdinaryUser> User;
    std::unique_ptr<LaunchBench> Bench;
};

void LoginScreenFailuresTest::init()
{
    if (!OrdinaryUser::IsPossible())
        QSKIP("permissions do not stop root");
    User = std::make_unique<OrdinaryUser>();
    Bench = std::make_unique<LaunchBench>();
    Bench->PutTemplates();
}

void LoginScreenFailuresTest::cleanup()
{
    Bench.reset();
    User.reset();
}

void LoginScreenFailuresTest::StartTheGame()
{
    QVERIFY(Bench->App.Start("me", "secret"));
    QVERIFY(Bench->RunUntilStarted());
    QCOMPARE(Bench->Game.Starts(), QStringList("[-noautolaunch64bit]"));
    QCOMPARE(Bench->Host.Errors(), QStringList());
    // Qt's own complaints would be of another category.
    QCOMPARE(Bench->Log.Texts(), QStringList("Start  \"" + Bench->Game.Path + "\""));
}

void LoginScreenFailuresTest::AMissingTemplateMeansNoLoginScreen_data()
{
    QTest::addColumn<QStringList>("missing");
    QTest::newRow("layout") << QStringList(LaunchBench::c_LayoutTemplate);
    QTest::newRow("script") << QStringList(LaunchBench::c_ScriptTemplate);
    QTest::newRow("both") << QStringList(
        {LaunchBench::c_LayoutTemplate, LaunchBench::c_ScriptTemplate});
}

void LoginScreenFailuresTest::AMissingTemplateMeansNoLoginScreen()
{
    QFETCH(QStringList, missing);
    Bench->PutLiveFiles();
    for (QString const& name : missing)
        QVERIFY(QFile::remove(Bench->Path(name)));
    StartTheGame();
    QVERIFY(!Bench->HasLiveFiles());
}

void LoginScreenFailuresTest::AFolderInTheLayoutTemplatesPlaceLeavesTheScriptOnly()
{
    QVERIFY(QFile::remove(Bench->Path(LaunchBench::c_LayoutTemplate)));
    Bench->MakeFolder(LaunchBench::c_LayoutTemplate);
    StartTheGame();
    QVERIFY(!Bench->Has(LaunchBench::c_Layout));
    QCOMPARE(Bench->Read(LaunchBench::c_Script), Bench->Read(LaunchBench::c_ScriptTemplate));
}

void LoginScreenFailuresTest::AFolderInTheScriptTemplatesPlaceLeavesTheLayoutOnly()
{
    QVERIFY(QFile::remove(Bench->Path(LaunchBench::c_ScriptTemplate)));
    Bench->MakeFolder(LaunchBench::c_ScriptTemplate);
    StartTheGame();
    QCOMPARE(Bench->Read(LaunchBench::c_Layout), QByteArray("login me password secret ."));
    QVERIFY(!Bench->Has(LaunchBench::c_Script));
}

void LoginScreenFailuresTest::AnUnreadableLayoutTemplateLeavesTheScriptOnly()
{
    QVERIFY(SetMode(Bench->Path(LaunchBench::c_LayoutTemplate), 0200));
    StartTheGame();
    QVERIFY(!Bench->Has(LaunchBench::c_Layout));
    QVERIFY(Bench->Has(LaunchBench::c_Script));
}

void LoginScreenFailuresTest::AnUnreadableScriptTemplateLeavesTheLayoutOnly()
{
    QVERIFY(SetMode(Bench->Path(LaunchBench::c_ScriptTemplate), 0200));
    StartTheGame();
    QCOMPARE(Bench->Read(LaunchBench::c_Layout), QByteArray("login me password secret ."));
    QVERIFY(!Bench->Has(LaunchBench::c_Script));
}

void LoginScreenFailuresTest::AFolderInTheLayoutsPlaceStays()
{
    Bench->Put(LaunchBench::c_Layout + QString("/inside"), "the player's");
    StartTheGame();
    QCOMPARE(Bench->Read(LaunchBench::c_Layout + QString("/inside")), QByteArray("the player's"));
    QVERIFY(Bench->Has(LaunchBench::c_Script));
}

void LoginScreenFailuresTest::AFolderInTheScriptsPlaceStays()
{
    Bench->Put(LaunchBench::c_Script + QString("/inside"), "the player's");
    StartTheGame();
    QCOMPARE(Bench->Read(LaunchBench::c_Script + QString("/inside")), QByteArray("the player's"));
    QCOMPARE(Bench->Read(LaunchBench::c_Layout), QByteArray("login me password secret ."));
}

void LoginScreenFailuresTest::AFolderWithoutWritePermissionKeepsWhatIsThere()
{
    Bench->PutLiveFiles();
    QVERIFY(SetMode(Bench->Path("Interface/GlueXMl"), 0555));
    StartTheGame();
    QVERIFY(SetMode(Bench->Path("Interface/GlueXMl"), 0755));
    QCOMPARE(Bench->Read(LaunchBench::c_Layout), QByteArray("layout of before"));
    QCOMPARE(Bench->Read(LaunchBench::c_Script), QByteArray("script of before"));
}

void LoginScreenFailuresTest::AFolderWithoutWritePermissionGetsNothing()
{
    QVERIFY(SetMode(Bench->Path("Interface/GlueXMl"), 0555));
    StartTheGame();
    QVERIFY(SetMode(Bench->Path("Interface/GlueXMl"), 0755));
    QVERIFY(!Bench->HasLiveFiles());
}

void LoginScreenFailuresTest::WithoutAnInterfaceNothingIsMade()
{
    QVERIFY(QDir(Bench->Path("Interface")).removeRecursively());
    StartTheGame();
    QVERIFY(!Bench->Has("Interface"));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::LoginScreenFailuresTest)
#include "tst_LoginScreenFailures.moc"
