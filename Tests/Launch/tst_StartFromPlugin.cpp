#include "Tests/Install/PluginGame.hpp"
#include "Tests/Launch/GameScript.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

namespace Varnholt::TestSupport {

namespace {

QString const c_Layout = QStringLiteral("Interface/GlueXMl/AccountLogin.xml");
QString const c_Script = QStringLiteral("Interface/GlueXMl/AccountLogin.lua");
QString const c_Executable = QStringLiteral("Game.app/Contents/MacOS/World of Warcraft");

} // namespace

/// The game as a player has it: installed by the built plug-in, started by it.
class StartFromPluginTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { Played.reset(); }

    void AnInstalledGameStartsLoggedIn();
    void TheLoginScreenStaysUntilTheNextStart();
    void AStartStopsTheInstallation();
    void AnUninstalledGameDoesNotStart();

private:
    [[nodiscard]] bool RunUntilStarted(int p_Times = 1);

    std::unique_ptr<PluginGame> Played;
};

void StartFromPluginTest::init()
{
    Played = std::make_unique<PluginGame>();
    Played->Content.Add({"Data/first", SampleContent::Bytes(3000)});
    Played->Content.Add({c_Executable, GameScript::Text(), 2 | Launcher::c_GameExecutableFlag});
    Played->Content.Add({"Wow-64.exe", "client"});
    Played->Content.Add({c_Layout + ".origin", "<{varnholt_autolog_login}>"
                                               "<{varnholt_autolog_password}>"});
    Played->Content.Add({c_Script + ".origin", "script"});
    Played->Content.Publish(Played->Server);
    QVERIFY(Played->Init());
}

bool StartFromPluginTest::RunUntilStarted(int p_Times)
{
    GameScript const script(Played->Path(c_Executable));
    return Played->Host().RunUntil([&] { return script.Starts().size() >= p_Times; });
}

void StartFromPluginTest::AnInstalledGameStartsLoggedIn()
{
    QVERIFY(Played->Install());
    QVERIFY(Played->App().Start("Accountant", "Sesame"));
    QVERIFY(RunUntilStarted());
    QCOMPARE(GameScript(Played->Path(c_Executable)).Starts(), QStringList("[-noautolaunch64bit]"));
    QCOMPARE(Played->Read(c_Layout), QByteArray("<Accountant><Sesame>"));
    QCOMPARE(ModeOf(Played->Path(c_Layout)), 0600);
    QCOMPARE(Played->Read(c_Script), QByteArray("script"));
    QVERIFY(!Played->Has("Wow-64.exe"));
    QCOMPARE(Played->Read("Wow-64.exe.disabled"), QByteArray("client"));
    QCOMPARE(Played->Log.CountContaining("Accountant"), 0);
    QCOMPARE(Played->Log.CountContaining("Sesame"), 0);
    QCOMPARE(Played->Host().Errors(), QStringList());
}

void StartFromPluginTest::TheLoginScreenStaysUntilTheNextStart()
{
    QVERIFY(Played->Install());
    QVERIFY(Played->App().Start("me", "secret"));
    QVERIFY(RunUntilStarted());
    Played->Restart();
    QVERIFY(Played->Init());
    QVERIFY(Played->Repair());
    QCOMPARE(Played->Read(c_Layout), QByteArray("<me><secret>"));
    QCOMPARE(Played->Read("Wow-64.exe"), QByteArray("client")); // it belongs to the build
    QVERIFY(Played->App().Start("", ""));
    QVERIFY(RunUntilStarted(2));
    QVERIFY(!Played->Has(c_Layout));
    QVERIFY(!Played->Has(c_Script));
}

void StartFromPluginTest::AStartStopsTheInstallation()
{
    QString const first = Played->Content.ServerPath("Data/first");
    Played->Put(c_Executable, GameScript::Text());
    Played->Server.Script(first).Then(Answer::Normal()).Then(Answer::SilentAfter(1000));
    Played->App().Install(Played->Folder, false);
    QVERIFY(Played->Host().RunUntil(
        [&] { return ReadFile(Played->Path("Data/first.part")).size() == 1000; }));
    QVERIFY(Played->App().Start("me", "secret"));
    QCOMPARE(Played->Progress().Mode, 4);
    QVERIFY(RunUntilStarted());
    QVERIFY(Played->Finish());
    QVERIFY(!Played->Has("Wow-64.exe"));
    Played->App().ResumeDownload();
    QVERIFY(Played->Finish());
    QCOMPARE(Played->Wrong(), QStringList());
}

void StartFromPluginTest::AnUninstalledGameDoesNotStart()
{
    QVERIFY(Played->Install());
    Played->App().Uninstall(false);
    QVERIFY(!Played->App().Start("me", "secret"));
    QVERIFY(!Played->Has(c_Layout));
    QVERIFY(Played->Has("Wow-64.exe"));
    QCOMPARE(Played->Log.CountContaining("Start  "), 0);
    QCOMPARE(Played->Wrong(), QStringList());
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::StartFromPluginTest)
#include "tst_StartFromPlugin.moc"
