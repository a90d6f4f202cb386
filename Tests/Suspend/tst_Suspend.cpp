#include "Tests/Support/TestMain.hpp"
#include "Tests/Suspend/PausableGame.hpp"

#include <QtTest>

namespace Varnholt::TestSupport {

namespace {

QByteArray const c_A = SampleContent::Bytes(60000, 1);
QByteArray const c_B = SampleContent::Bytes(40000, 2);

/// Runs until the first file's transfer has fallen silent after 1000 bytes.
bool Stall(PausableGame& p_Game)
{
    p_Game.Add({"a.bin", c_A}).Add({"b.bin", c_B});
    p_Game.Stall("a.bin", 1000);
    p_Game.Begin();
    return p_Game.RunUntilPart("a.bin", 1000);
}

} // namespace

class SuspendTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void StopsTheTransferAndShowsMode4();
    void TellsTheHostWhenTheTransferHasEndedAndBeforeMode4();
    void WithNothingPendingIsTheIdleReset();
    void WithTheIndexPastTheListIsTheIdleReset();
    void TwiceBeforeTheCompletionIsHandledIsHarmless();
    void ARepairFromTheNotificationIsNotShownAsSuspended();
};

void SuspendTest::StopsTheTransferAndShowsMode4()
{
    PausableGame game;
    QVERIFY(Stall(game));
    QCOMPARE(game.App.UISetting.Download.Mode, 3);
    Launcher::HTTP_DownloadFileRequest* const transfer = game.App.CurrentDownload;
    game.App.UISettingChanged = false;

    game.App.SuspendDownload();
    QCOMPARE(game.App.UISetting.Download.Mode, 4);
    QVERIFY(game.App.UISettingChanged);
    QCOMPARE(game.Host.FinishedCount.load(), 1);
    // Cleared by the completion, which is still on its way.
    QCOMPARE(game.App.CurrentDownload, transfer);
    QVERIFY(transfer->Aborted && transfer->AbortAcknowledged);

    QVERIFY(game.RunUntilHandled());
    QVERIFY(game.Finish());
    QCOMPARE(game.App.UISetting.Download.Mode, 4);
    QCOMPARE(game.App.UISetting.State, 2);
    QCOMPARE(game.Host.Errors(), QStringList());
    QCOMPARE(game.Requests("a.bin"), 2);
}

void SuspendTest::TellsTheHostWhenTheTransferHasEndedAndBeforeMode4()
{
    PausableGame game;
    QVERIFY(Stall(game));
    bool ended = false;
    int mode = 0;
    game.Host.OnDownloadFinished = [&] {
        ended = game.App.CurrentDownload->AbortAcknowledged;
        mode = game.App.UISetting.Download.Mode;
    };
    game.App.SuspendDownload();
    QVERIFY(ended);
    QCOMPARE(mode, 3);
}

void SuspendTest::WithNothingPendingIsTheIdleReset()
{
    PausableGame game;
    game.Publish();
    game.App.OnManifestReceived();
    QCOMPARE(game.App.UISetting.State, 1);
    auto& progress = game.App.UISetting.Download;
    progress.StatusFlags = 7;
    progress.StatusFlag = true;
    progress.ModeFlag = true;
    progress.Mode = Launcher::ApplicationUISetting::ModeComparing;
    game.App.UISettingChanged = false;

    // Pins: even a game that is not installed is shown as state 2.
    game.App.SuspendDownload();
    QCOMPARE(game.App.UISetting.State, 2);
    QCOMPARE(progress.StatusFlags, 0u);
    QVERIFY(!progress.StatusFlag);
    QVERIFY(!progress.ModeFlag);
    QCOMPARE(progress.Mode, 5);
    QVERIFY(game.App.UISettingChanged);
    QCOMPARE(game.Host.FinishedCount.load(), 0);
}

void SuspendTest::WithTheIndexPastTheListIsTheIdleReset()
{
    PausableGame game;
    game.App.FilesToDownload.resize(1);
    game.App.CurrentDownloadIndex = 1;
    game.App.UISetting.Download.ModeFlag = true;
    game.App.SuspendDownload();
    QCOMPARE(game.App.UISetting.State, 2);
    QVERIFY(!game.App.UISetting.Download.ModeFlag);
    QCOMPARE(game.Host.FinishedCount.load(), 0);
}

void SuspendTest::TwiceBeforeTheCompletionIsHandledIsHarmless()
{
    PausableGame game;
    QVERIFY(Stall(game));
    game.App.SuspendDownload();
    game.App.SuspendDownload();
    QCOMPARE(game.App.UISetting.Download.Mode, 4);
    QVERIFY(game.RunUntilHandled());
    QVERIFY(game.Finish());
    game.App.SuspendDownload(); // now nothing is in flight
    QCOMPARE(game.Host.FinishedCount.load(), 2);
    QCOMPARE(game.App.UISetting.Download.Mode, 4);
}

void SuspendTest::ARepairFromTheNotificationIsNotShownAsSuspended()
{
    PausableGame game;
    QVERIFY(Stall(game));
    game.Host.StopWorker(); // its comparison stays queued
    game.Host.OnDownloadFinished = [&] { game.App.Repair(); };
    game.App.SuspendDownload();
    QCOMPARE(game.App.UISetting.Download.Mode, 5);
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::SuspendTest)
#include "tst_Suspend.moc"
