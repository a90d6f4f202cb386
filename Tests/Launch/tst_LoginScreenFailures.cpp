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
    void OneThatCannotBeMadeLeavesTheOther_data();
    void OneThatCannotBeMadeLeavesTheOther();
    void AFolderWithoutWritePermissionKeepsWhatIsThere();
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

void LoginScreenFailuresTest::OneThatCannotBeMadeLeavesTheOther_data()
{
    QTest::addColumn<QString>("broken");
    QTest::addColumn<bool>("isFolder"); ///< otherwise it cannot be read
    AddRow("a folder for the layout's template", LaunchBench::c_LayoutTemplate, true);
    AddRow("a folder for the script's template", LaunchBench::c_ScriptTemplate, true);
    AddRow("a folder for the layout", LaunchBench::c_Layout, true);
    AddRow("a folder for the script", LaunchBench::c_Script, true);
    AddRow("an unreadable template of the layout", LaunchBench::c_LayoutTemplate, false);
    AddRow("an unreadable template of the script", LaunchBench::c_ScriptTemplate, false);
}

void LoginScreenFailuresTest::OneThatCannotBeMadeLeavesTheOther()
{
    QFETCH(QString, broken);
    QFETCH(bool, isFolder);
    if (isFolder) {
        QFile::remove(Bench->Path(broken));
        Bench->Put(broken + "/inside", "the player's");
    } else {
        QVERIFY(SetMode(Bench->Path(broken), 0200));
    }
    StartTheGame();
    bool const isLayout = broken.startsWith(LaunchBench::c_Layout);
    QCOMPARE(Bench->Read(isLayout ? LaunchBench::c_Script : LaunchBench::c_Layout),
             isLayout ? Bench->Read(LaunchBench::c_ScriptTemplate)
                      : QByteArray("login me password secret ."));
    QString const other = isLayout ? LaunchBench::c_Layout : LaunchBench::c_Script;
    QVERIFY(!QFileInfo(Bench->Path(other)).isFile());
    if (isFolder)
        QCOMPARE(Bench->Read(broken + "/inside"), QByteArray("the player's"));
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

void LoginScreenFailuresTest::WithoutAnInterfaceNothingIsMade()
{
    QVERIFY(QDir(Bench->Path("Interface")).removeRecursively());
    StartTheGame();
    QVERIFY(!Bench->Has("Interface"));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::LoginScreenFailuresTest)
#include "tst_LoginScreenFailures.moc"
