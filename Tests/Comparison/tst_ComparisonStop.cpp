#include "Tests/Runs/Game.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

namespace Varnholt::TestSupport {

namespace {

QString const c_List = QStringLiteral("ToDownloadBase.db");

/// Runs the comparison of the base files under a host that has answered so often that the module
/// may continue, and from then on that it must stop. Returns what has been found.
QStringList CompareUntil(Game& p_Game, int p_Answers, bool p_FirstBuild = true)
{
    p_Game.App.IsFirstManifestBuild = p_FirstBuild;
    p_Game.App.OnManifestReceived();
    p_Game.AnswerContinue([p_Answers](int p_Question) { return p_Question <= p_Answers; });
    p_Game.Host.RunNextAsync();
    return p_Game.Listed();
}

} // namespace

class ComparisonStopTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void StoppedBeforeTheFirstFileItFindsNothingAndStillHandsOver();
    void StoppedBetweenTwoFilesItHandsOverWhatItHasFound();
    void AFileThatIsHalfHashedJoinsTheList();
    void AStopInsideAHashReadsNoFurtherBlock();
    void StoppedRightBehindTheListItTakesNoFileOfIt();
    void StoppedBetweenTwoListedFilesItTakesTheOnesFound();
    void AFirstBuildStoppedEarlyKeepsTheLinesThatTheListHad();
    void AFirstBuildStoppedEarlyListsNoPathTwice();
    void AStreamedFirstBuildStoppedEarlyKeepsTheLinesThatTheListHad();
    void AFirstBuildThatReachesItsEndForgetsTheOldLines();
    void NoSizeIsAskedWhenTheHostStops();
};

void ComparisonStopTest::StoppedBeforeTheFirstFileItFindsNothingAndStillHandsOver()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"a", "a"}).Add({"b", "b"}).Publish().Install();
    QVERIFY(CompareUntil(game, 0).isEmpty());
    QCOMPARE(game.App.UISetting.Download.Current, quint64{0});
    QCOMPARE(game.Host.AsyncCount(), std::size_t{1}); // the streamed comparison
    QVERIFY(game.Host.RunNextAsync());
    QCOMPARE(game.Host.SyncCount(), std::size_t{1});
    QVERIFY(game.Host.RunNextSync());
    QCOMPARE(game.Host.AsyncCount() + game.Host.SyncCount(), std::size_t{0});
}

void ComparisonStopTest::StoppedBetweenTwoFilesItHandsOverWhatItHasFound()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"a", "a"}).Add({"b", "b"}).Add({"c", "c"}).Publish().Install();
    QCOMPARE(CompareUntil(game, 2), QStringList({"a", "b"}));
    QCOMPARE(game.Host.StartingCount.load(), 1);
}

void ComparisonStopTest::AFileThatIsHalfHashedJoinsTheList()
{
    Game game(TestHost::Worker::ByHand);
    QByteArray const bytes = SampleContent::Bytes(3 * 8192);
    game.Add({"good", bytes}).Publish().Install();
    game.Put("good", bytes);
    QCOMPARE(CompareUntil(game, 2), QStringList("good")); // the file, its first block
    QVERIFY(CompareUntil(game, 99).isEmpty());
}

void ComparisonStopTest::AStopInsideAHashReadsNoFurtherBlock()
{
    Game game(TestHost::Worker::ByHand);
    QByteArray const bytes = SampleContent::Bytes(100 * 8192);
    game.Add({"good", bytes}).Publish().Install();
    game.Put("good", bytes);
    game.App.OnManifestReceived();
    int questions = 0;
    game.AnswerContinue([&](int p_Question) {
        questions = p_Question;
        return p_Question <= 3;
    });
    QVERIFY(game.Host.RunNextAsync());
    QVERIFY2(questions < 20, qPrintable(QString::number(questions)));
}

void ComparisonStopTest::StoppedRightBehindTheListItTakesNoFileOfIt()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"a", "a", 0x20}).Add({"b", "b", 0x20}).Add({"c", "c", 0x20}).Publish().Install();
    game.Put(c_List, "a\nb\nc\n");
    // Three entries passed over, two lines read; the look at the files then stops at once.
    QVERIFY(CompareUntil(game, 5, false).isEmpty());
    QCOMPARE(game.Read(c_List), QByteArray("a\nb\nc\n"));
}

void ComparisonStopTest::StoppedBetweenTwoListedFilesItTakesTheOnesFound()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"a", "a", 0x20}).Add({"b", "b", 0x20}).Add({"c", "c", 0x20}).Publish().Install();
    game.Put(c_List, "a\nb\nc\n");
    QCOMPARE(CompareUntil(game, 8, false), QStringList({"a", "b"}));
}

// Files behind the stop have not been looked at; no later build would look at them either.
void ComparisonStopTest::AFirstBuildStoppedEarlyKeepsTheLinesThatTheListHad()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"a", "a", 0x20}).Add({"b", "b", 0x20}).Add({"c", "c", 0x20}).Publish().Install();
    game.Put(c_List, "b\nc\n");
    QCOMPARE(CompareUntil(game, 1), QStringList("a"));
    QCOMPARE(game.Read(c_List), QByteArray("a\nb\nc\n"));
}

void ComparisonStopTest::AFirstBuildStoppedEarlyListsNoPathTwice()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"a", "a", 0x20}).Add({"b", "b", 0x20}).Publish().Install();
    game.Put(c_List, "b\na\n");
    QCOMPARE(CompareUntil(game, 1), QStringList("a"));
    QCOMPARE(game.Read(c_List), QByteArray("a\nb\n"));
}

void ComparisonStopTest::AStreamedFirstBuildStoppedEarlyKeepsTheLinesThatTheListHad()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"s", "s", 0, {}, true}).Add({"t", "t", 0, {}, true}).Publish().Install();
    game.Put("ToDownload.db", "t\n");
    game.App.IsFirstManifestBuild = true;
    game.App.OnManifestReceived();
    QVERIFY(game.Host.RunNextAsync());
    game.AnswerContinue([](int p_Question) { return p_Question <= 1; });
    QVERIFY(game.Host.RunNextAsync());
    QCOMPARE(game.Listed(), QStringList("s"));
    QCOMPARE(game.Read("ToDownload.db"), QByteArray("s\nt\n"));
}

void ComparisonStopTest::AFirstBuildThatReachesItsEndForgetsTheOldLines()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"a", "a", 0x20}).Add({"b", "b", 0x20}).Publish().Install();
    game.Put("b", "b");
    game.Put(c_List, "b\n");
    QCOMPARE(CompareUntil(game, 99), QStringList("a"));
    QCOMPARE(game.Read(c_List), QByteArray("a\n"));
}

void ComparisonStopTest::NoSizeIsAskedWhenTheHostStops()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"a", "a"}).Add({"b", "b"}).Publish().Install();
    QCOMPARE(CompareUntil(game, 1), QStringList("a"));
    QCOMPARE(game.App.UISetting.Download.Mode, 2);
    QCOMPARE(game.Host.SyncCount(), std::size_t{0});
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::ComparisonStopTest)
#include "tst_ComparisonStop.moc"
