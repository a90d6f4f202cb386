#include "Tests/Runs/Game.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QDir>
#include <QtTest>

namespace Varnholt::TestSupport {

namespace {

QString const c_List = QStringLiteral("ToDownload.db");

SampleFile Streamed(QString const& p_Path, QByteArray const& p_Bytes, qint32 p_Flags = 0,
                    QString const& p_Locale = {})
{
    return {p_Path, p_Bytes, p_Flags, p_Locale, true};
}

/// Runs the comparison of the streamed files alone and returns what it has found.
QStringList Compare(Game& p_Game, bool p_FirstBuild)
{
    p_Game.App.GetInstallationPath();
    p_Game.App.IsFirstManifestBuild = p_FirstBuild;
    p_Game.App.ProcessStreamedContentDownload(false);
    p_Game.Host.RunNextAsync();
    return p_Game.Listed();
}

} // namespace

class ComparisonStreamedTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void TheStartIsShown();
    void AFirstBuildListsMissingAndDamagedFiles();
    void AFirstBuildFollowsLocaleAndPresence();
    void AFirstBuildRecordsEveryListedFileWhateverItsFlags();
    void AFirstBuildShowsItsProgress();
    void ALaterBuildHashesNothing();
    void ALaterBuildTakesEveryLineAsItIs();
    void ALaterBuildTakesOneEntryForEachLine();
    void ALaterBuildWithoutAListFetchesNothing();
    void BaseFilesAreNotStreamed();
    void NothingToFetchClearsTheRunAndLeavesTheModeAsItIs();
    void SomethingToFetchAsksForSizes();
};

void ComparisonStreamedTest::TheStartIsShown()
{
    Game game(TestHost::Worker::ByHand);
    game.Add(Streamed("s", "s")).Publish().Install();
    game.App.FilesToDownload = game.App.Manifest.StreamedFiles;
    game.App.IsDownloadingBase = true;
    auto& progress = game.App.UISetting.Download;
    progress.StatusFlags = 3;
    progress.StatusFlag = true;
    progress.Current = 17;
    progress.Percent = 3;
    progress.ModeFlag = false;
    game.App.UISettingChanged = false;
    game.App.ProcessStreamedContentDownload(true);
    QVERIFY(!game.App.IsDownloadingBase);
    QCOMPARE(progress.StatusFlags, 0u);
    QCOMPARE(progress.StatusFlag, false);
    QCOMPARE(progress.Percent, 100u);
    QCOMPARE(progress.ModeFlag, true);
    QCOMPARE(progress.Current, quint64{0});
    QCOMPARE(progress.Mode, 5);
    QVERIFY(game.App.UISettingChanged);
    QVERIFY(game.Listed().isEmpty());
    QCOMPARE(game.Host.AsyncCount(), std::size_t{1});
}

void ComparisonStreamedTest::AFirstBuildListsMissingAndDamagedFiles()
{
    Game game(TestHost::Worker::ByHand);
    QByteArray const large = SampleContent::Bytes(20000);
    game.Add(Streamed("z", "z")).Add(Streamed("good", large)).Add(Streamed("bad", "b"));
    game.Publish().Install();
    game.Put("good", large);
    game.Put("bad", "B");
    QCOMPARE(Compare(game, true), QStringList({"z", "bad"}));
}

void ComparisonStreamedTest::AFirstBuildFollowsLocaleAndPresence()
{
    Game game(TestHost::Worker::ByHand);
    game.Add(Streamed("fr", "f", 0, "frFR")).Add(Streamed("en", "e", 0, "enUS"));
    game.Add(Streamed("there", "t", 0x80)).Add(Streamed("missing", "m", 0x80));
    game.Publish().Install();
    game.Put("there", "rewritten");
    QCOMPARE(Compare(game, true), QStringList({"en", "missing"}));
}

void ComparisonStreamedTest::AFirstBuildRecordsEveryListedFileWhateverItsFlags()
{
    Game game(TestHost::Worker::ByHand);
    game.Add(Streamed("plain", "p")).Add(Streamed("good", "g")).Add(Streamed("a b", "m", 0x20));
    game.Publish().Install();
    game.Put("good", "g");
    game.Put(c_List, "old\n");
    game.Put("ToDownloadBase.db", "base\n");
    Compare(game, true);
    QCOMPARE(game.Read(c_List), QByteArray("plain\na b\n"));
    QCOMPARE(game.Read("ToDownloadBase.db"), QByteArray("base\n"));
}

void ComparisonStreamedTest::AFirstBuildShowsItsProgress()
{
    Game game(TestHost::Worker::ByHand);
    game.Add(Streamed("a", "a")).Add(Streamed("b", "b")).Add(Streamed("c", "c"));
    game.Publish().Install();
    for (char const* const file : {"a", "b", "c"})
        game.Put(file, file);
    QStringList seen;
    game.AnswerContinue([&](int) {
        auto const& progress = game.App.UISetting.Download;
        QString const now = QString("%1:%2").arg(progress.Current).arg(progress.Percent);
        if (seen.isEmpty() || seen.last() != now)
            seen += now;
        return true;
    });
    QVERIFY(Compare(game, true).isEmpty());
    QCOMPARE(seen, QStringList({"0:100", "1:33", "2:66", "3:100"}));
}

void ComparisonStreamedTest::ALaterBuildHashesNothing()
{
    Game game(TestHost::Worker::ByHand);
    game.Add(Streamed("missing", "m")).Add(Streamed("bad", SampleContent::Bytes(50000)));
    game.Publish().Install();
    game.Put("bad", "damaged");
    game.Put(c_List, "");
    int questions = 0;
    game.AnswerContinue([&](int p_Question) {
        questions = p_Question;
        return true;
    });
    QVERIFY(Compare(game, false).isEmpty());
    QCOMPARE(questions, 0);
}

void ComparisonStreamedTest::ALaterBuildTakesEveryLineAsItIs()
{
    Game game(TestHost::Worker::ByHand);
    game.Add(Streamed("good", "g")).Add(Streamed("fr", "f", 0, "frFR"));
    game.Add(Streamed("there", "t", 0x80)).Add(Streamed("unlisted", "u")).Publish().Install();
    game.Put("good", "g");
    game.Put("there", "rewritten");
    game.Put(c_List, "there\nunknown\nfr\ngood\n");
    QCOMPARE(Compare(game, false), QStringList({"there", "fr", "good"}));
    QCOMPARE(game.Read(c_List), QByteArray("there\nunknown\nfr\ngood\n"));
}

void ComparisonStreamedTest::ALaterBuildTakesOneEntryForEachLine()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"s", "first", 0, "enUS", true}).Add({"s", "second", 0, "frFR", true});
    game.Publish().Install();
    game.Put(c_List, "s\n");
    QCOMPARE(Compare(game, false), QStringList("s"));
    QCOMPARE(game.App.FilesToDownload[0].Locale, QString("enUS"));
}

void ComparisonStreamedTest::ALaterBuildWithoutAListFetchesNothing()
{
    Game game(TestHost::Worker::ByHand);
    game.Add(Streamed("s", "s")).Publish().Install();
    QVERIFY(Compare(game, false).isEmpty());
    QVERIFY(!game.Has(c_List));
    QVERIFY(QDir().mkpath(game.Path(c_List)));
    QVERIFY(Compare(game, false).isEmpty());
}

void ComparisonStreamedTest::BaseFilesAreNotStreamed()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"base", "b"}).Add(Streamed("s", "s")).Publish().Install();
    game.Put(c_List, "base\n");
    QVERIFY(Compare(game, false).isEmpty());
    QCOMPARE(Compare(game, true), QStringList("s"));
}

void ComparisonStreamedTest::NothingToFetchClearsTheRunAndLeavesTheModeAsItIs()
{
    Game game(TestHost::Worker::ByHand);
    game.Add(Streamed("s", "s")).Publish().Install();
    game.Put("s", "s");
    QVERIFY(Compare(game, true).isEmpty());
    QCOMPARE(game.Host.SyncCount(), std::size_t{1});
    Launcher::HTTP_DownloadFileRequest left;
    game.App.CurrentDownload = &left;
    QVERIFY(game.Host.RunNextSync());
    QVERIFY(game.App.CurrentDownload == nullptr);
    QVERIFY(game.Listed().isEmpty());
    // The module only falls silent: its host knows that a run is over when nothing is queued.
    QCOMPARE(game.App.UISetting.Download.Mode, 5);
    QCOMPARE(game.App.UISetting.Download.ModeFlag, true);
    QCOMPARE(game.Host.FinishedCount.load(), 0);
    QCOMPARE(game.Host.SyncCount() + game.Host.AsyncCount(), std::size_t{0});
    QVERIFY(game.Server.Requests().empty());
}

void ComparisonStreamedTest::SomethingToFetchAsksForSizes()
{
    Game game(TestHost::Worker::ByHand);
    game.Add(Streamed("s", "s")).Add(Streamed("t", "t")).Publish().Install();
    Compare(game, true);
    auto const& progress = game.App.UISetting.Download;
    QCOMPARE(progress.Mode, 2);
    QCOMPARE(progress.DetailText, QString("Requesting files size..."));
    QCOMPARE(progress.Percent, 100u);
    QCOMPARE(progress.ModeFlag, true);
    QCOMPARE(progress.Current, quint64{0});
    QCOMPARE(progress.Total, quint64{0});
    QCOMPARE(game.Host.SyncCount(), std::size_t{2});
    QCOMPARE(game.Host.StartingCount.load(), 0); // the size pass does not wait for the host
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::ComparisonStreamedTest)
#include "tst_ComparisonStreamed.moc"
