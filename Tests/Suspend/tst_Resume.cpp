#include "Tests/Support/TestMain.hpp"
#include "Tests/Suspend/PausableGame.hpp"

#include <QtTest>

namespace Varnholt::TestSupport {

namespace {

Launcher::ApplicationManifestFileEntry Entry(QString const& p_Path, qint32 p_Flags = 0)
{
    Launcher::ApplicationManifestFileEntry entry;
    entry.Path = p_Path;
    entry.Location = "files/" + p_Path;
    entry.Flags = p_Flags;
    return entry;
}

/// A game that no run has built a list for, drained by hand.
class ListedGame : public PausableGame {
public:
    explicit ListedGame(Launcher::StandartApplication::Entries const& p_Files)
        : PausableGame(TestHost::Worker::ByHand)
    {
        App.FilesToDownload = p_Files;
    }
    std::size_t Queued() const { return Host.SyncCount() + Host.AsyncCount(); }
};

} // namespace

/// What a resume itself does, and at once.
class ResumeTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void WithAnEmptyListIsTheIdleReset();
    void WithTheIndexPastTheListIsTheIdleReset();
    void ShowsMode3AndTheBytesWhenItMayStart();
    void TellsTheHostBeforeMode3();
    void TakesATotalOfZeroAsOne();
    void CutsThePercentageTo32Bits();
    void FetchesFlaggedFilesFromTheDefaultServer();
    void LogsTheServer();
    void StartsTheCurrentFileAsAResumableTransfer();
    void ARepairFromTheNotificationVoidsIt();
};

void ResumeTest::WithAnEmptyListIsTheIdleReset()
{
    ListedGame game({});
    auto& progress = game.App.UISetting.Download;
    progress.StatusFlags = 7;
    progress.StatusFlag = true;
    progress.ModeFlag = true;
    progress.Percent = 12;
    game.App.ResumeDownload();
    QCOMPARE(game.App.UISetting.State, 2);
    QCOMPARE(progress.StatusFlags, 0u);
    QVERIFY(!progress.StatusFlag);
    QVERIFY(!progress.ModeFlag);
    QCOMPARE(progress.Percent, 12u);
    QVERIFY(game.App.UISettingChanged);
    QCOMPARE(game.Queued(), std::size_t{0});
    QCOMPARE(game.Host.StartingCount.load(), 0);
    QCOMPARE(game.App.GameQuestions.load(), 0);
}

void ResumeTest::WithTheIndexPastTheListIsTheIdleReset()
{
    ListedGame game({Entry("a")});
    game.App.CurrentDownloadIndex = 1;
    game.App.UISetting.Download.ModeFlag = true;
    game.App.ResumeDownload();
    QCOMPARE(game.App.UISetting.State, 2);
    QVERIFY(!game.App.UISetting.Download.ModeFlag);
    QCOMPARE(game.Queued(), std::size_t{0});
    QCOMPARE(game.Host.StartingCount.load(), 0);
}

void ResumeTest::ShowsMode3AndTheBytesWhenItMayStart()
{
    ListedGame game({Entry("a")});
    auto& progress = game.App.UISetting.Download;
    progress.Current = 999;
    progress.Total = 2000;
    game.App.UISetting.State = Launcher::ApplicationUISetting::StateInstalled;
    game.App.ResumeDownload();
    QCOMPARE(progress.Mode, 3);
    QCOMPARE(progress.Percent, 49u);
    QCOMPARE(game.App.UISetting.State, 2);
    QVERIFY(game.App.UISettingChanged);
    QCOMPARE(game.Host.StartingCount.load(), 1);
    QCOMPARE(game.Host.SyncCount(), std::size_t{1});
    QCOMPARE(game.Host.AsyncCount(), std::size_t{0});
}

void ResumeTest::TellsTheHostBeforeMode3()
{
    ListedGame game({Entry("a")});
    game.App.UISetting.Download.Mode = Launcher::ApplicationUISetting::ModeSuspended;
    int mode = -1;
    quint32 percent = 0;
    bool changed = false;
    game.Host.OnDownloadStarting = [&] {
        mode = game.App.UISetting.Download.Mode;
        percent = game.App.UISetting.Download.Percent;
        changed = game.App.UISettingChanged;
    };
    game.App.ResumeDownload();
    QCOMPARE(mode, 0);
    QCOMPARE(percent, 100u);
    QVERIFY(changed);
}

void ResumeTest::TakesATotalOfZeroAsOne()
{
    ListedGame game({Entry("a")});
    game.App.UISetting.Download.Current = 3;
    game.App.ResumeDownload();
    QCOMPARE(game.App.UISetting.Download.Percent, 300u);
}

void ResumeTest::CutsThePercentageTo32Bits()
{
    ListedGame game({Entry("a")});
    game.App.UISetting.Download.Current = (quint64{1} << 32) + 1;
    game.App.UISetting.Download.Total = 100;
    // Pins: computed in 64 bits, stored in 32.
    game.App.ResumeDownload();
    QCOMPARE(game.App.UISetting.Download.Percent, 1u);
}

void ResumeTest::FetchesFlaggedFilesFromTheDefaultServer()
{
    ListedGame game({Entry("a", 0x40), Entry("b")});
    game.App.CdnHosts = QStringList("mirror.varnholt.example");
    game.App.ResumeDownload();
    QCOMPARE(game.App.ContentBaseUrl, game.Server.BaseUrl());
    game.App.CurrentDownloadIndex = 1;
    game.App.ResumeDownload();
    QCOMPARE(game.App.ContentBaseUrl, QString("http://mirror.varnholt.example/"));
}

void ResumeTest::LogsTheServer()
{
    ListedGame game({Entry("a")});
    game.App.CdnHosts = QStringList("mirror.varnholt.example");
    game.Log.Clear();
    game.App.ResumeDownload();
    QCOMPARE(game.Log.Texts(),
             QStringList("Selected CDN  \"Test Game\"   \"http://mirror.varnholt.example/\""));
    QCOMPARE(game.Log.Messages().front().Type, QtWarningMsg);
}

void ResumeTest::StartsTheCurrentFileAsAResumableTransfer()
{
    PausableGame game;
    game.Add({"Data/a.bin", SampleContent::Bytes(60000)});
    game.ScriptTransfer("Data/a.bin")
        .Then(Answer::SilentAfter(1000))
        .Then(Answer::SilentBeforeHeaders());
    game.Begin();
    QVERIFY(game.RunUntilPart("Data/a.bin", 1000));
    game.App.SuspendDownload();
    QVERIFY(game.RunUntilHandled());
    game.App.ResumeDownload();
    QVERIFY(game.App.CurrentDownload == nullptr); // never from inside the call
    QVERIFY(game.Host.RunUntil([&] { return game.App.CurrentDownload != nullptr; }));
    Launcher::HTTP_DownloadFileRequest const& transfer = *game.App.CurrentDownload;
    QCOMPARE(transfer.Url, game.Server.BaseUrl() + "test_app/builds/build_1/files/Data/a.bin");
    QCOMPARE(transfer.FilePath, game.Path("Data/a.bin.part"));
    QVERIFY(transfer.Resume);
}

void ResumeTest::ARepairFromTheNotificationVoidsIt()
{
    PausableGame game(TestHost::Worker::ByHand);
    game.Add({"a.bin", "a"}).Begin();
    game.App.FilesToDownload = game.App.Manifest.Files;
    game.Host.OnDownloadStarting = [&] { game.App.Repair(); };
    game.App.ResumeDownload();
    QCOMPARE(game.App.UISetting.Download.Mode, 5);
    QCOMPARE(game.Host.SyncCount(), std::size_t{0});
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::ResumeTest)
#include "tst_Resume.moc"
