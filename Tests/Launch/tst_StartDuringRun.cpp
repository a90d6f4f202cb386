#include "Tests/Launch/GameScript.hpp"
#include "Tests/Runs/Game.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

namespace Varnholt::TestSupport {

/// A start in the middle of a run: nothing is fetched while the game starts, nor behind it.
class StartDuringRunTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void TheTransferIsSuspendedAndNotResumed_data();
    void TheTransferIsSuspendedAndNotResumed();
    void AResumeFetchesTheRest();
    void BetweenTwoFilesNothingIsSuspended();

private:
    static constexpr int c_Size = 5000;
    static constexpr int c_Half = 2000;

    /// Begins a run that stands still in its first file.
    [[nodiscard]] static bool BeginHalf(Game& p_Game);
};

bool StartDuringRunTest::BeginHalf(Game& p_Game)
{
    p_Game.Add({"a", SampleContent::Bytes(c_Size)}).Add({"b", "b"});
    p_Game.Server.Script(p_Game.Content.ServerPath("a"))
        .Then(Answer::Normal())
        .Then(Answer::SilentAfter(c_Half));
    p_Game.Begin();
    return p_Game.RunUntilPart("a", c_Half);
}

void StartDuringRunTest::TheTransferIsSuspendedAndNotResumed_data()
{
    QTest::addColumn<bool>("executable");
    QTest::newRow("started") << true;
    QTest::newRow("no executable in the build") << false;
}

void StartDuringRunTest::TheTransferIsSuspendedAndNotResumed()
{
    QFETCH(bool, executable);
    Game game;
    GameScript const script(game.Path("game"));
    script.Write();
    game.Add({"game", GameScript::Text(), 2 | (executable ? Launcher::c_GameExecutableFlag : 0)});
    QVERIFY(BeginHalf(game));
    auto* const transfer = game.App.CurrentDownload;
    int const requests = game.Requested().size();

    QCOMPARE(game.App.Start("me", "secret"), executable);
    QVERIFY(transfer->Aborted);
    QVERIFY(transfer->AbortAcknowledged);
    QCOMPARE(game.Host.FinishedCount.load(), 1);
    QCOMPARE(game.App.UISetting.Download.Mode, 4);

    if (executable)
        QVERIFY(game.Host.RunUntil([&] { return !script.Starts().isEmpty(); }));
    QVERIFY(game.Finish());
    QCOMPARE(game.App.UISetting.Download.Mode, 4);
    QCOMPARE(game.Requested().size(), requests);
    QCOMPARE(game.Read("a.part"), SampleContent::Bytes(c_Size).left(c_Half));
    QVERIFY(!game.Has("b"));
    QCOMPARE(game.Host.StartingCount.load(), 1); // of the run
}

void StartDuringRunTest::AResumeFetchesTheRest()
{
    Game game;
    GameScript const script(game.Path("game"));
    script.Write();
    game.Add({"game", GameScript::Text(), 2 | Launcher::c_GameExecutableFlag});
    QVERIFY(BeginHalf(game));
    QVERIFY(game.App.Start("", ""));
    QVERIFY(game.Host.RunUntil([&] { return !script.Starts().isEmpty(); }));
    game.App.ResumeDownload();
    QVERIFY(game.Finish());
    QCOMPARE(game.Read("a"), SampleContent::Bytes(c_Size));
    QCOMPARE(game.Read("b"), QByteArray("b"));
}

void StartDuringRunTest::BetweenTwoFilesNothingIsSuspended()
{
    Game game(TestHost::Worker::ByHand);
    GameScript const script(game.Path("game"));
    script.Write();
    game.Add({"a", "a"}).Add({"game", GameScript::Text(), Launcher::c_GameExecutableFlag});
    game.Publish().Install();
    game.App.GetInstallationPath();
    game.App.FilesToDownload = game.App.Manifest.Files;
    game.App.UISetting.State = Launcher::ApplicationUISetting::StateInstalled;
    game.App.UISetting.Download.Mode = Launcher::ApplicationUISetting::ModeDownloading;
    game.App.UISettingChanged = false;
    QVERIFY(game.App.Start("", ""));
    QCOMPARE(game.App.UISetting.Download.Mode, 3);
    QVERIFY(!game.App.UISettingChanged);
    QCOMPARE(game.Host.FinishedCount.load(), 0);
    QCOMPARE(game.Listed(), QStringList({"a", "game"}));
    QVERIFY(game.Host.RunUntil([&] { return !script.Starts().isEmpty(); }));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::StartDuringRunTest)
#include "tst_StartDuringRun.moc"
