#include "Tests/Support/TestMain.hpp"
#include "Tests/Suspend/PausableGame.hpp"

#include <QtTest>

namespace Varnholt::TestSupport {

namespace {

QByteArray const c_A = SampleContent::Bytes(60000, 1);
QByteArray const c_B = SampleContent::Bytes(40000, 2);

/// Publishes two files and runs until the first one's transfer has fallen silent.
bool Stall(PausableGame& p_Game)
{
    p_Game.Add({"a.bin", c_A}).Add({"b.bin", c_B});
    p_Game.Stall("a.bin", 1000);
    p_Game.Begin();
    return p_Game.RunUntilPart("a.bin", 1000);
}

} // namespace

/// Resumes and suspensions close together.
class ResumeTurnsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void RightAfterASuspensionGoesOn();
    void RightAfterASuspensionGoesOnWhenTheStartComesBeforeTheCompletion();
    void SuspendedAgainInTheSameTurnStaysSuspended();
    void SuspendedAgainBeforeTheCompletionStaysSuspended();
    void TwiceStartsOneTransfer();
    void AmidTheEndOfAFileFetchesTheNextOnce();
    void AmidTheEndOfAFileStaysSuspendedAfterwards();
    void ASuspensionBeforeTheQueuedStartHasNothingToStop();
    void ARepairReplacesAQueuedStart();
    void FromTheNotificationOfTheSuspensionGoesOn();
    void ASuspensionFromTheNotificationOfTheResumeHolds();
    void ManyTurnsEndInOneGoodInstallation();
};

void ResumeTurnsTest::RightAfterASuspensionGoesOn()
{
    PausableGame game;
    QVERIFY(Stall(game));
    game.App.SuspendDownload();
    game.App.ResumeDownload();
    QCOMPARE(game.App.UISetting.Download.Mode, 3);
    QVERIFY(game.Finish());
    QCOMPARE(game.Requests("a.bin"), 3);
    QCOMPARE(game.Server.Requests(game.Content.ServerPath("a.bin")).back().Header("Range"),
             QByteArray("bytes=1000-"));
    QCOMPARE(game.Wrong(), QStringList());
}

void ResumeTurnsTest::RightAfterASuspensionGoesOnWhenTheStartComesBeforeTheCompletion()
{
    PausableGame game;
    QVERIFY(Stall(game));
    game.App.SuspendDownload();
    game.App.ResumeDownload();
    QVERIFY(game.Host.RunNextSync());
    QVERIFY(game.App.CurrentDownload != nullptr); // the stopped one: no second one beside it
    QVERIFY(game.App.CurrentDownload->Aborted);
    QVERIFY(game.Finish());
    QCOMPARE(game.Requests("a.bin"), 3);
    QCOMPARE(game.Wrong(), QStringList());
}

void ResumeTurnsTest::SuspendedAgainInTheSameTurnStaysSuspended()
{
    PausableGame game;
    QVERIFY(Stall(game));
    game.App.SuspendDownload();
    game.App.ResumeDownload();
    game.App.SuspendDownload();
    QCOMPARE(game.App.UISetting.Download.Mode, 4);
    QVERIFY(game.Finish());
    QCOMPARE(game.App.UISetting.Download.Mode, 4);
    QCOMPARE(game.Requests("a.bin"), 2);

    game.App.ResumeDownload();
    QVERIFY(game.Finish());
    QCOMPARE(game.Wrong(), QStringList());
}

void ResumeTurnsTest::SuspendedAgainBeforeTheCompletionStaysSuspended()
{
    PausableGame game;
    QVERIFY(Stall(game));
    game.App.SuspendDownload();
    game.App.ResumeDownload();
    QVERIFY(game.Host.RunNextSync());
    game.App.SuspendDownload();
    QVERIFY(game.Finish());
    QCOMPARE(game.App.UISetting.Download.Mode, 4);
    QCOMPARE(game.Requests("a.bin"), 2);
}

void ResumeTurnsTest::TwiceStartsOneTransfer()
{
    PausableGame game;
    QVERIFY(Stall(game));
    game.Server.Script(game.Content.ServerPath("a.bin")).Then(Answer::SilentBeforeHeaders());
    game.App.SuspendDownload();
    QVERIFY(game.RunUntilHandled());
    game.App.ResumeDownload();
    game.App.ResumeDownload();
    QVERIFY(game.Host.RunNextSync());
    Launcher::HTTP_DownloadFileRequest const* const transfer = game.App.CurrentDownload;
    QVERIFY(transfer != nullptr);
    QVERIFY(game.Host.RunNextSync());
    QCOMPARE(game.App.CurrentDownload, transfer);
    QVERIFY(!transfer->Aborted);
    game.OpenGate("a.bin");
    QVERIFY(game.Finish());
    QCOMPARE(game.Requests("a.bin"), 3);
    QCOMPARE(game.Requests("b.bin"), 2);
    QCOMPARE(game.Wrong(), QStringList());
}

void ResumeTurnsTest::AmidTheEndOfAFileFetchesTheNextOnce()
{
    PausableGame game;
    game.Add({"a.bin", c_A}).Add({"b.bin", c_B}).Begin();
    QVERIFY(game.Host.RunUntil([&] { return game.App.CurrentDownload != nullptr; }));
    QVERIFY(game.WaitUntilEnded());
    game.App.ResumeDownload(); // the completion is still to be handled
    QVERIFY(game.Finish());
    QCOMPARE(game.Requests("a.bin"), 2);
    QCOMPARE(game.Requests("b.bin"), 2);
    QCOMPARE(game.Wrong(), QStringList());
}

void ResumeTurnsTest::AmidTheEndOfAFileStaysSuspendedAfterwards()
{
    PausableGame game;
    game.Add({"a.bin", c_A}).Add({"b.bin", c_B});
    game.Stall("b.bin", 1000);
    game.Begin();
    QVERIFY(game.Host.RunUntil([&] { return game.App.CurrentDownload != nullptr; }));
    QVERIFY(game.WaitUntilEnded());
    game.App.ResumeDownload();
    while (game.App.CurrentDownload != nullptr) // events only, until the completion is handled
        QCoreApplication::processEvents();
    QCOMPARE(game.Host.SyncCount(), std::size_t{2}); // two starts of the second file
    QVERIFY(game.Host.RunNextSync());
    QVERIFY(game.App.CurrentDownload != nullptr);
    game.App.SuspendDownload();
    QVERIFY(game.Finish());
    QCOMPARE(game.App.UISetting.Download.Mode, 4);
    QVERIFY(!game.Has("b.bin"));

    game.App.ResumeDownload();
    game.OpenGate("b.bin");
    QVERIFY(game.Finish());
    QCOMPARE(game.Wrong(), QStringList());
}

void ResumeTurnsTest::ASuspensionBeforeTheQueuedStartHasNothingToStop()
{
    PausableGame game;
    QVERIFY(Stall(game));
    game.App.SuspendDownload();
    QVERIFY(game.RunUntilHandled());
    game.App.ResumeDownload();
    game.App.SuspendDownload();
    // Pins: with nothing in flight a suspension changes nothing, not even the start on its way.
    QCOMPARE(game.App.UISetting.Download.Mode, 3);
    QVERIFY(game.Finish());
    QCOMPARE(game.Wrong(), QStringList());
}

void ResumeTurnsTest::ARepairReplacesAQueuedStart()
{
    PausableGame game;
    QVERIFY(Stall(game));
    game.App.SuspendDownload();
    QVERIFY(game.RunUntilHandled());
    game.App.ResumeDownload();
    game.App.Repair();
    QVERIFY(game.Finish());
    QCOMPARE(game.Wrong(), QStringList());
    QCOMPARE(game.Requests("a.bin"), 4); // size, stopped, size, rest
    QCOMPARE(game.Requests("b.bin"), 3);
}

void ResumeTurnsTest::FromTheNotificationOfTheSuspensionGoesOn()
{
    PausableGame game;
    QVERIFY(Stall(game));
    game.Host.OnDownloadFinished = [&] {
        if (game.Host.FinishedCount == 1)
            game.App.ResumeDownload();
    };
    game.App.SuspendDownload();
    QVERIFY(game.Finish());
    QCOMPARE(game.Requests("a.bin"), 3);
    QCOMPARE(game.Wrong(), QStringList());
}

void ResumeTurnsTest::ASuspensionFromTheNotificationOfTheResumeHolds()
{
    PausableGame game;
    QVERIFY(Stall(game));
    game.Host.OnDownloadStarting = [&] { game.App.SuspendDownload(); };
    game.App.ResumeDownload();
    QCOMPARE(game.App.UISetting.Download.Mode, 4);
    QVERIFY(game.Finish());
    QCOMPARE(game.App.UISetting.Download.Mode, 4);
    QCOMPARE(game.Requests("a.bin"), 2);
}

void ResumeTurnsTest::ManyTurnsEndInOneGoodInstallation()
{
    constexpr int c_Files = 6;
    PausableGame game;
    for (int i = 0; i < c_Files; ++i)
        game.Add({QString("file %1").arg(i), SampleContent::Bytes(20000, quint32(i + 1))});
    game.Add({"s", "streamed", 0, {}, true}).Begin();
    // Somewhere else each time: behind so many requests, the sizes' among them.
    for (int requests = 1; requests < 2 * c_Files; ++requests) {
        QVERIFY(game.Host.RunUntil([&] { return game.Requested().size() >= requests; }));
        game.App.SuspendDownload();
        if (requests % 2 == 0)
            game.Host.RunPending();
        game.App.ResumeDownload();
    }
    QVERIFY(game.Finish());
    QCOMPARE(game.Wrong(), QStringList());
    QCOMPARE(game.FilesOnDisk().filter(".part"), QStringList());
    QCOMPARE(game.Log.CountContaining("Download restarted for"), 0);
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::ResumeTurnsTest)
#include "tst_ResumeTurns.moc"
