#include "Tests/Support/TestMain.hpp"
#include "Tests/Suspend/PausableGame.hpp"

#include <QSemaphore>
#include <QThread>
#include <QtTest>

namespace Varnholt::TestSupport {

namespace {

QByteArray const c_A = SampleContent::Bytes(60000, 1);
QByteArray const c_B = SampleContent::Bytes(40000, 2);
QByteArray const c_S = SampleContent::Bytes(30000, 3);
QByteArray const c_T = SampleContent::Bytes(20000, 4);

/// Two base files, two streamed ones.
void AddFiles(PausableGame& p_Game)
{
    p_Game.Add({"a.bin", c_A, 0x20})
        .Add({"b.bin", c_B, 0x20})
        .Add({"s.bin", c_S, 0, {}, true})
        .Add({"t.bin", c_T, 0, {}, true});
}

void HoldSize(PausableGame& p_Game, QString const& p_File)
{
    p_Game.Server.Script(p_Game.Content.ServerPath(p_File)).Then(Answer::SilentBeforeHeaders());
}

/// Runs until one of the streamed files' two sizes is known.
bool RunUntilStreamedSize(PausableGame& p_Game)
{
    return p_Game.RunUntilRequested("t.bin", 1) && p_Game.RunUntilSizes(1) &&
           p_Game.Host.RunUntil([&] {
               return p_Game.Progress().Download.Mode ==
                      Launcher::ApplicationUISetting::ModeAskingSizes;
           });
}

} // namespace

/// Resumes before a run has begun with its files.
class ResumeSizePassTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void WhileTheListIsBuiltLeavesTheRunAlone();
    void OfTheBaseFilesFetchesThemThenTheStreamedOnes();
    void OfTheBaseFilesIsNotStartedOverByTheLastSize();
    void OfTheBaseFilesSuspendedAgainStaysSuspended();
    void OfTheStreamedFilesRewritesTheirList();
    void OfTheStreamedFilesCountsTheirBytesOnly();
    void OfAWaitingListStartsWithItsFirstFile();
    void DoesNotTakeTheServerOfASizeQuestion_data();
    void DoesNotTakeTheServerOfASizeQuestion();
};

void ResumeSizePassTest::WhileTheListIsBuiltLeavesTheRunAlone()
{
    QSemaphore reached;
    QSemaphore released;
    int workerQuestions = 0;
    PausableGame game;
    AddFiles(game);
    game.AnswerContinue([&, test = QThread::currentThread()](int) {
        if (QThread::currentThread() != test && ++workerQuestions == 2) {
            reached.release();
            released.tryAcquire(1, TestHost::c_Timeout);
        }
        return true;
    });
    game.Begin();
    QVERIFY(reached.tryAcquire(1, TestHost::c_Timeout));
    game.App.ResumeDownload();
    QVERIFY(!game.App.UISetting.Download.ModeFlag); // idle: nothing is pending yet
    QCOMPARE(game.Host.StartingCount.load(), 0);
    QCOMPARE(game.Host.SyncCount(), std::size_t{0});
    released.release();
    QVERIFY(game.Finish());
    QCOMPARE(game.Wrong(), QStringList());
    QCOMPARE(game.Requests("a.bin"), 2);
}

void ResumeSizePassTest::OfTheBaseFilesFetchesThemThenTheStreamedOnes()
{
    PausableGame game;
    AddFiles(game);
    HoldSize(game, "b.bin");
    game.Begin();
    QVERIFY(game.RunUntilSizes(1));
    QCOMPARE(game.App.UISetting.Download.Mode, 2);
    game.App.ResumeDownload();
    QVERIFY(game.Host.RunUntil([&] { return game.Host.FinishedCount == 1; }));
    game.OpenGate("b.bin"); // an answer of a list that is long done
    QVERIFY(game.Finish());
    QCOMPARE(game.Wrong(), QStringList());
    for (QString const path : {"a.bin", "b.bin", "s.bin", "t.bin"})
        QCOMPARE(game.Requests(path), 2);
    QCOMPARE(game.Read("ToDownloadBase.db"), QByteArray(""));
    QCOMPARE(game.Read("ToDownload.db"), QByteArray(""));
    QVERIFY(!game.App.IsDownloadingBase);
}

void ResumeSizePassTest::OfTheBaseFilesIsNotStartedOverByTheLastSize()
{
    PausableGame game;
    AddFiles(game);
    game.Stall("a.bin", 1000);
    HoldSize(game, "b.bin");
    game.Begin();
    QVERIFY(game.RunUntilSizes(1));
    game.App.ResumeDownload();
    QVERIFY(game.RunUntilPart("a.bin", 1000));
    Launcher::HTTP_DownloadFileRequest const* const transfer = game.App.CurrentDownload;
    game.OpenGate("b.bin");
    QVERIFY(game.Host.RunUntil(
        [&] { return game.App.UISetting.Download.DetailText == "Downloading base files..."; }));
    QCOMPARE(game.App.UISetting.Download.Mode, 3);
    QCOMPARE(game.App.CurrentDownload, transfer);
    QCOMPARE(game.App.CurrentDownloadIndex, 0u);
    QCOMPARE(game.Read("ToDownloadBase.db"), QByteArray("a.bin\nb.bin\n"));
    game.OpenGate("a.bin");
    QVERIFY(game.Finish());
    QCOMPARE(game.Wrong(), QStringList());
    QCOMPARE(game.Requests("a.bin"), 2);
    QCOMPARE(game.Read("ToDownloadBase.db"), QByteArray(""));
}

void ResumeSizePassTest::OfTheBaseFilesSuspendedAgainStaysSuspended()
{
    PausableGame game;
    AddFiles(game);
    game.Stall("a.bin", 1000);
    HoldSize(game, "b.bin");
    game.Begin();
    QVERIFY(game.RunUntilSizes(1));
    game.App.ResumeDownload();
    QVERIFY(game.RunUntilPart("a.bin", 1000));
    game.App.SuspendDownload();
    QVERIFY(game.RunUntilHandled());
    game.OpenGate("b.bin");
    QVERIFY(game.RunUntilSizes(2));
    QVERIFY(game.Finish());
    QCOMPARE(game.App.UISetting.Download.Mode, 4);
    QCOMPARE(game.Requests("a.bin"), 2);

    game.App.ResumeDownload();
    QVERIFY(game.Finish());
    QCOMPARE(game.Wrong(), QStringList());
}

void ResumeSizePassTest::OfTheStreamedFilesRewritesTheirList()
{
    PausableGame game;
    AddFiles(game);
    HoldSize(game, "t.bin");
    game.Stall("s.bin", 1000);
    game.Begin();
    QVERIFY(RunUntilStreamedSize(game));
    game.Put("ToDownloadBase.db", "s.bin\n"); // names the file, but is not its list
    game.App.ResumeDownload();
    QVERIFY(game.RunUntilPart("s.bin", 1000));
    QCOMPARE(game.Read("ToDownload.db"), QByteArray("s.bin\nt.bin\n"));
    game.OpenGate("s.bin");
    QVERIFY(game.RunUntilFile(1));
    QCOMPARE(game.Read("ToDownload.db"), QByteArray("t.bin\n"));
    QCOMPARE(game.Read("ToDownloadBase.db"), QByteArray("s.bin\n"));
    QVERIFY(game.Host.RunUntil([&] { return game.Host.FinishedCount == 1; }));
    game.OpenGate("t.bin");
    QVERIFY(game.Finish());
    QCOMPARE(game.Wrong(), QStringList());
    QCOMPARE(game.Read("ToDownload.db"), QByteArray(""));
}

void ResumeSizePassTest::OfTheStreamedFilesCountsTheirBytesOnly()
{
    PausableGame game;
    AddFiles(game);
    game.Stall("s.bin", 1000);
    HoldSize(game, "t.bin");
    game.Begin();
    QVERIFY(RunUntilStreamedSize(game));
    game.App.ResumeDownload();
    QVERIFY(game.RunUntilPart("s.bin", 1000));
    game.OpenGate("t.bin");
    QVERIFY(game.RunUntilSizes(2));
    game.OpenGate("s.bin");
    QVERIFY(game.Finish());
    QCOMPARE(game.Wrong(), QStringList());
    QCOMPARE(game.App.UISetting.Download.Total, quint64(c_S.size() + c_T.size()));
    QCOMPARE(game.App.UISetting.Download.Current, quint64(c_S.size() + c_T.size()));
    QCOMPARE(game.App.UISetting.Download.Percent, 100u);
}

void ResumeSizePassTest::OfAWaitingListStartsWithItsFirstFile()
{
    PausableGame game(TestHost::Worker::ByHand);
    game.Add({"a.bin", c_A}).Add({"b.bin", c_B}).Add({"c.bin", c_S});
    game.App.CurrentDownloadIndex = 1; // as the run before has left them
    game.App.DownloadedBytes = 5000;
    game.Host.DownloadBlocked = true;
    game.Begin();
    QVERIFY(game.Host.RunNextAsync()); // compares, finds three files, waits
    QCOMPARE(game.Listed(), QStringList({"a.bin", "b.bin", "c.bin"}));
    game.App.ResumeDownload(); // waits too
    QVERIFY(game.Host.RunNextAsync());
    game.Host.DownloadBlocked = false;
    QVERIFY(game.Host.RunNextAsync()); // the resume goes first
    QVERIFY(game.Host.RunNextSync());
    QVERIFY(game.App.CurrentDownload != nullptr);
    QCOMPARE(game.App.CurrentDownload->FilePath, game.Path("a.bin.part"));
    QCOMPARE(game.App.DownloadedBytes, quint64{0});
    QVERIFY(game.Host.RunUntil([&] { return game.Has("c.bin"); }));
    QCOMPARE(game.Wrong(), QStringList());
}

void ResumeSizePassTest::DoesNotTakeTheServerOfASizeQuestion_data()
{
    QTest::addColumn<int>("FirstFlags");
    QTest::addColumn<int>("SecondFlags");
    QTest::addColumn<QString>("FromMirror");
    QTest::newRow("file of the default server") << 0x40 << 0 << "b.bin";
    QTest::newRow("file of a mirror") << 0 << 0x40 << "a.bin";
}

void ResumeSizePassTest::DoesNotTakeTheServerOfASizeQuestion()
{
    QFETCH(int, FirstFlags);
    QFETCH(int, SecondFlags);
    QFETCH(QString, FromMirror);
    ScriptedServer mirror;
    PausableGame game(TestHost::Worker::ByHand);
    game.Add({"a.bin", c_A, FirstFlags}).Add({"b.bin", c_B, SecondFlags});
    game.Begin();
    game.Content.Publish(game.Server, {&mirror});
    game.App.CdnHosts = QStringList(mirror.Host());
    QVERIFY(game.Host.RunNextAsync());
    QCOMPARE(game.Host.SyncCount(), std::size_t{2}); // the questions for the sizes
    QVERIFY(game.Host.RunNextSync());
    game.App.ResumeDownload();
    QVERIFY(game.Host.RunNextSync()); // chooses the other server
    QVERIFY(game.Host.RunUntil([&] { return game.Has("b.bin"); }));
    QCOMPARE(game.Wrong(), QStringList());
    QCOMPARE(game.Requested(mirror), QStringList({FromMirror, FromMirror}));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::ResumeSizePassTest)
#include "tst_ResumeSizePass.moc"
