#include "Tests/Screen/ScreenGame.hpp"
#include "Tests/Support/TestMain.hpp"

namespace Varnholt::TestSupport {

/// The program under a real X server, used by keyboard and mouse as a player does.
class WindowOnScreenTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void AGameIsInstalledPausedRepairedPlayedAndUninstalled();
};

void WindowOnScreenTest::AGameIsInstalledPausedRepairedPlayedAndUninstalled()
{
    QString const idle = ScreenGame::c_Name;
    ScreenGame game({1024, 640});
    QVERIFY2(game.On().Problem().isEmpty(), qPrintable(game.On().Problem()));
    QString const gate = game.HoldContent("Data/base.MPQ", 20000);
    QVERIFY(game.Open());

    // Install: what the dialog proposes is good, once it has been looked at.
    QVERIFY(game.Press(idle, {"alt+i"}));
    QVERIFY(game.On().Focus("Install " + idle));
    QVERIFY(game.WaitUntil([&] {
        game.On().Press({"Return"});
        return game.On().Window("Install " + idle) == 0;
    }));
    QVERIFY(game.WaitForTitle("[0-9]+ % – " + idle));

    // Pause and continue.
    QVERIFY(game.Press(idle, {"F9"}));
    QVERIFY(game.WaitForTitle("Paused – " + idle));
    game.Server.OpenGate(gate);
    game.Server.Script("GET " + gate).Always(Answer::Normal());
    QVERIFY(game.Press(idle, {"F9"}));
    QVERIFY(game.WaitForTitle(idle));
    QCOMPARE(game.Wrong("enUS"), QStringList());

    // Damage and repair, from the menu.
    game.Put("Data/streamed 1.MPQ", "damaged");
    QVERIFY(game.Press(idle, {"F10"}));
    game.On().Press({"r"});
    QVERIFY(game.WaitUntil([&] { return game.Wrong("enUS").isEmpty(); }));
    QVERIFY(game.WaitForTitle(idle));

    // Play, logged in.
    game.KeepRunning();
    QVERIFY(game.Press(idle, {"alt+p"}));
    QVERIFY(game.On().Focus("Play " + idle));
    game.On().Type("me");
    game.On().Press({"Tab"});
    game.On().Type("secret");
    game.On().Press({"Return"});
    QVERIFY(game.WaitForTitle("Playing – " + idle));
    QCOMPARE(game.Starts(), 1);
    QCOMPARE(game.Read("Interface/GlueXMl/AccountLogin.xml"), QByteArray("<me|secret>"));
    game.LetGo();
    QVERIFY(game.WaitForTitle(idle));

    // Uninstall.
    QVERIFY(game.Press(idle, {"F10"}));
    game.On().Press({"u"});
    QVERIFY(game.On().Focus("Uninstall " + idle));
    QVERIFY(game.WaitUntil([&] {
        game.On().Press({"alt+u"});
        return game.On().Window("Uninstall " + idle) == 0;
    }));
    QVERIFY(!game.Has("readme.txt") && !game.Has("Data/base.MPQ"));

    QCOMPARE(game.Close(), 0);
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::WindowOnScreenTest)
#include "tst_WindowOnScreen.moc"
