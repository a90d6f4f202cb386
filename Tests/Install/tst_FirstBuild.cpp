#include "Tests/Runs/Game.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/ScopedCurrentFolder.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

namespace Varnholt::TestSupport {

/// What a first build alone looks at is found and recorded whatever becomes of its walk.
class FirstBuildTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void AStartBeforeTheWalkIsAFirstBuildAgain();
    void AStartDuringTheWalkIsAFirstBuildAgain();
    void AWalkThatIsKilledIsDoneAgain_data();
    void AWalkThatIsKilledIsDoneAgain();
    void AWalkThatIsStoppedIsDoneAgain_data();
    void AWalkThatIsStoppedIsDoneAgain();
    void AWalkThatWasStoppedForAMomentIsDoneAgain();
    void WhatALinkKeptOutOfReachIsLookedForAgain_data();
    void WhatALinkKeptOutOfReachIsLookedForAgain();
    void WhatALinkTookAwayInMidTransferStaysListed();
    void AListThatCannotBeWrittenIsNotRecorded_data();
    void AListThatCannotBeWrittenIsNotRecorded();
    void RecordedItIsOver();
    void WhatSkipsTheCheckForgetsIt_data();
    void WhatSkipsTheCheckForgetsIt();
    void AnUninstalledGameKeepsNoNote();
    void AnInstallationThatMovesDownLeavesNoNoteBehind();

private:
    static constexpr char const* c_Note = "FirstBuild.db";

    static void AddFiles(Game& p_Game);
    /// Starts the launcher anew, as far as the walk; with a worker that is run by hand.
    [[nodiscard]] static bool Start(Game& p_Game);
    static void RunWorker(Game& p_Game);
};

void FirstBuildTest::AddFiles(Game& p_Game)
{
    p_Game.Add({"a", "a", 0x20}).Add({"b", "b", 0x20}).Add({"s", "s", 0, {}, true});
    p_Game.Publish();
}

bool FirstBuildTest::Start(Game& p_Game)
{
    int const before = p_Game.App.ManifestHooks;
    p_Game.App.Init();
    return p_Game.Host.RunUntil([&] { return p_Game.App.ManifestHooks > before; });
}

/// Runs everything to its end.
void FirstBuildTest::RunWorker(Game& p_Game)
{
    int last = -1;
    while (p_Game.Host.RunNextAsync() || p_Game.Host.FinishedCount != last) {
        last = p_Game.Host.FinishedCount;
        QVERIFY(p_Game.Host.RunUntil([&] {
            return p_Game.Host.AsyncCount() > 0 ||
                   (p_Game.App.CurrentDownload == nullptr && p_Game.Host.SyncCount() == 0 &&
                    p_Game.App.ContentSizeRequests.empty());
        }));
    }
}

void FirstBuildTest::AStartBeforeTheWalkIsAFirstBuildAgain()
{
    Game game(TestHost::Worker::ByHand);
    AddFiles(game);
    game.Install();
    QVERIFY(Start(game));
    QVERIFY(game.Has(c_Note));
    QVERIFY(Start(game));
    QVERIFY(game.App.IsFirstManifestBuild);
    RunWorker(game);
    QCOMPARE(game.Wrong(), QStringList());
    QVERIFY(!game.Has(c_Note));
}

void FirstBuildTest::AStartDuringTheWalkIsAFirstBuildAgain()
{
    Game game(TestHost::Worker::ByHand);
    AddFiles(game);
    game.Install();
    QVERIFY(Start(game));
    game.AnswerContinue([&](int p_Question) {
        if (p_Question == 2 && !Start(game))
            qFatal("no second start");
        return true;
    });
    QVERIFY(game.Host.RunNextAsync());
    QVERIFY(!game.Has("ToDownloadBase.db"));
    game.AnswerContinue(nullptr);
    RunWorker(game);
    QCOMPARE(game.Log.CountContaining("Fetched file"), 3);
    QCOMPARE(game.Wrong(), QStringList());
}

void FirstBuildTest::AWalkThatIsKilledIsDoneAgain_data()
{
    QTest::addColumn<QString>("Begun");
    for (char const* const begun : {"start", "installation", "repair"})
        QTest::newRow(begun) << begun;
}

void FirstBuildTest::AWalkThatIsKilledIsDoneAgain()
{
    QFETCH(QString, Begun);
    QTemporaryDir const folder;
    {
        Game killed(TestHost::Worker::ByHand);
        killed.Folder = folder.path() + '/';
        AddFiles(killed);
        if (Begun == "installation") {
            killed.App.Install(killed.Folder, false);
        } else if (Begun == "repair") {
            killed.Install();
            killed.Host.SetSetting(killed.App.SettingKey(".ManifestBuilt"), true);
            killed.App.Repair();
        } else {
            killed.Install();
            QVERIFY(Start(killed));
        }
        QCOMPARE(killed.FilesOnDisk(), QStringList(c_Note));
    }

    Game game(TestHost::Worker::ByHand);
    game.Folder = folder.path() + '/';
    AddFiles(game);
    game.Install();
    game.Host.SetSetting(game.App.SettingKey(".ManifestBuilt"), true);
    QVERIFY(Start(game));
    RunWorker(game);
    QCOMPARE(game.Wrong(), QStringList());
    QVERIFY(!game.Has(c_Note));
}

void FirstBuildTest::AWalkThatIsStoppedIsDoneAgain_data()
{
    QTest::addColumn<int>("Answers");
    QTest::addColumn<QStringList>("Owed");
    // Each file of a walk is asked about, and each block of it.
    QTest::newRow("in the base files") << 1 << QStringList({"a", "b", "s"});
    QTest::newRow("in the streamed files") << 4 << QStringList("s");
}

void FirstBuildTest::AWalkThatIsStoppedIsDoneAgain()
{
    QFETCH(int, Answers);
    QFETCH(QStringList, Owed);
    Game game(TestHost::Worker::ByHand);
    AddFiles(game);
    for (char const* const file : {"a", "b", "s"})
        game.Put(file, file); // nothing is fetched, so that all questions are the walks'
    game.Install();
    QVERIFY(Start(game));
    game.AnswerContinue([&](int p_Question) { return p_Question <= Answers; });
    RunWorker(game);
    QVERIFY(game.Has(c_Note));
    for (QString const& file : Owed)
        QVERIFY(QFile::remove(game.Path(file)));
    game.AnswerContinue(nullptr);
    QVERIFY(Start(game));
    RunWorker(game);
    QCOMPARE(game.Wrong(), QStringList());
    QVERIFY(!game.Has(c_Note));
}

void FirstBuildTest::AWalkThatWasStoppedForAMomentIsDoneAgain()
{
    Game game(TestHost::Worker::ByHand);
    AddFiles(game);
    game.Install();
    QVERIFY(Start(game));
    game.AnswerContinue([](int p_Question) { return p_Question != 2; });
    RunWorker(game);
    QVERIFY(game.Has(c_Note));
    QVERIFY(Start(game));
    RunWorker(game);
    QCOMPARE(game.Wrong(), QStringList());
    QVERIFY(!game.Has(c_Note));
}

void FirstBuildTest::WhatALinkKeptOutOfReachIsLookedForAgain_data()
{
    QTest::addColumn<bool>("IsStreamed");
    QTest::newRow("base") << false;
    QTest::newRow("streamed") << true;
}

void FirstBuildTest::WhatALinkKeptOutOfReachIsLookedForAgain()
{
    QFETCH(bool, IsStreamed);
    Game game(TestHost::Worker::ByHand);
    game.Add({"Data/file", "f", 0x20, {}, IsStreamed});
    AddFiles(game);
    QVERIFY(QFile::link("unplugged", game.Path("Data")));
    game.Install();
    QVERIFY(Start(game));
    RunWorker(game);
    QCOMPARE(game.Wrong(), QStringList("Data/file"));
    QVERIFY(QDir().mkdir(game.Path("unplugged")));
    QVERIFY(Start(game));
    RunWorker(game);
    QCOMPARE(game.Wrong(), QStringList());
    QVERIFY(!game.Has(c_Note));
}

void FirstBuildTest::WhatALinkTookAwayInMidTransferStaysListed()
{
    Game game;
    game.Add({"Data/file", SampleContent::Bytes(3000), 0, {}, true});
    QString const path = game.Content.ServerPath("Data/file");
    game.Server.Script(path).Then(Answer::Normal()).Then(Answer::SilentAfter(1000));
    game.Begin();
    QVERIFY(game.RunUntilPart("Data/file", 1000));
    QVERIFY(QDir().rename(game.Path("Data"), game.Path("plugged")));
    QVERIFY(QFile::link("unplugged", game.Path("Data")));
    game.Server.OpenGate(path);
    QVERIFY(game.Finish());
    QCOMPARE(game.Read("ToDownload.db"), QByteArray("Data/file\n"));
    QVERIFY(QDir().rename(game.Path("plugged"), game.Path("unplugged")));
    game.Begin(false);
    QVERIFY(game.Finish());
    QCOMPARE(game.Wrong(), QStringList());
    QCOMPARE(game.Server.Requests(path).back().Header("Range"), QByteArray("bytes=1000-"));
}

void FirstBuildTest::AListThatCannotBeWrittenIsNotRecorded_data()
{
    QTest::addColumn<QString>("List");
    for (char const* const list : {"ToDownloadBase.db", "ToDownload.db"})
        QTest::newRow(list) << list;
}

void FirstBuildTest::AListThatCannotBeWrittenIsNotRecorded()
{
    QFETCH(QString, List);
    Game game(TestHost::Worker::ByHand);
    AddFiles(game);
    game.Put(List + "/in the way", "");
    game.Install();
    QVERIFY(Start(game));
    RunWorker(game);
    QVERIFY(game.Has(c_Note));
}

void FirstBuildTest::RecordedItIsOver()
{
    Game game(TestHost::Worker::ByHand);
    AddFiles(game);
    game.Install();
    QVERIFY(Start(game));
    RunWorker(game);
    QVERIFY(!game.Has(c_Note));
    QVERIFY(QFile::remove(game.Path("a")));
    QVERIFY(Start(game));
    QVERIFY(!game.App.IsFirstManifestBuild);
    RunWorker(game);
    QCOMPARE(game.Wrong(), QStringList("a")); // trusted to the list
}

void FirstBuildTest::WhatSkipsTheCheckForgetsIt_data()
{
    QTest::addColumn<bool>("IsAbort");
    QTest::newRow("installation of a known folder") << false;
    QTest::newRow("abort of a repair") << true;
}

void FirstBuildTest::WhatSkipsTheCheckForgetsIt()
{
    QFETCH(bool, IsAbort);
    Game game(TestHost::Worker::ByHand);
    AddFiles(game);
    game.Install();
    game.App.Repair();
    QVERIFY(game.Has(c_Note));
    if (IsAbort)
        game.App.AbortRepair();
    else
        game.App.Install(game.Folder, true);
    QVERIFY(!game.Has(c_Note));
    RunWorker(game);
    QCOMPARE(game.Requested(), QStringList());
}

void FirstBuildTest::AnUninstalledGameKeepsNoNote()
{
    Game game(TestHost::Worker::ByHand);
    AddFiles(game);
    game.App.Install(game.Folder, false);
    game.App.Uninstall(false);
    QCOMPARE(game.FilesOnDisk(), QStringList());
}

void FirstBuildTest::AnInstallationThatMovesDownLeavesNoNoteBehind()
{
    Game game(TestHost::Worker::ByHand);
    AddFiles(game);
    ScopedCurrentFolder const current(game.Folder);
    game.App.Install(game.Folder, false);
    QCOMPARE(game.FilesOnDisk(), QStringList("Test Game/FirstBuild.db"));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::FirstBuildTest)
#include "tst_FirstBuild.moc"
