#include "Tests/Runs/Game.hpp"
#include "Tests/Support/FolderEvents.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QDir>
#include <QtTest>

namespace Varnholt::TestSupport {

namespace {

QStringList const c_Lists{QStringLiteral("ToDownload.db"), QStringLiteral("ToDownloadBase.db"),
                          QStringLiteral("ToDownloadCASC.db")};

void PutLists(Game const& p_Game)
{
    for (QString const& list : c_Lists)
        p_Game.Put(list, "a\n");
}

} // namespace

class InstallOperationsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void InstallWritesItsSettingsInOrder();
    void InstallLeavesAManifestThatIsBuiltAsItIs();
    void InstallRecordsThePathAsItWasPassed();
    void TheFlagDecidesWhetherTheFolderIsChecked();
    void InstallWithTheFlagRemovesTheListsBeforeTheComparison();
    void InstallWithoutTheFlagTouchesNoList();
    void InstallCallsItsHookBetweenTheListsAndTheComparison();
    void AListThatCannotBeRemovedIsIgnored();
    void RepairOfAGameThatIsNotInstalledDoesNothing();
    void RepairLooksAtEveryFile();
    void AbortRepairRemovesTheListsInItsOwnOrder();
    void AbortRepairWithoutListsStartsTheOrdinaryComparison();
    void AbortRepairMarksTheManifestAsBuilt_data();
    void AbortRepairMarksTheManifestAsBuilt();
    void AbortRepairSuspendsBeforeAnythingElse();
    void TheInstallationIsKnownFromTheSettings();
};

void InstallOperationsTest::InstallWritesItsSettingsInOrder()
{
    Game game(TestHost::Worker::ByHand);
    game.Publish();
    game.App.Install(game.Folder, false);
    QCOMPARE(
        game.Host.SettingChanges(),
        QStringList({"test_app.Installed", "test_app.InstallFolder", "test_app.ManifestBuilt"}));
    QCOMPARE(game.Host.Setting("test_app.Installed"), QVariant(true));
    QCOMPARE(game.Host.Setting("test_app.ManifestBuilt"), QVariant(true));
    QCOMPARE(game.App.InstallationPath, game.Folder);
}

void InstallOperationsTest::InstallLeavesAManifestThatIsBuiltAsItIs()
{
    Game game(TestHost::Worker::ByHand);
    game.Publish();
    game.Host.SetSetting("test_app.ManifestBuilt", true);
    game.App.Install(game.Folder, false);
    QVERIFY(!game.Host.SettingChanges().contains("test_app.ManifestBuilt"));
    QCOMPARE(game.Host.Setting("test_app.ManifestBuilt"), QVariant(true));
    game.Host.SetSetting("test_app.ManifestBuilt", false);
    game.App.Install(game.Folder, false);
    QCOMPARE(game.Host.Setting("test_app.ManifestBuilt"), QVariant(true));
}

void InstallOperationsTest::InstallRecordsThePathAsItWasPassed()
{
    Game game(TestHost::Worker::ByHand);
    game.Publish();
    QString const path = game.Folder + "../Game";
    game.App.Install(path, false);
    QCOMPARE(game.Host.Setting("test_app.InstallFolder").toString(), path);
}

void InstallOperationsTest::TheFlagDecidesWhetherTheFolderIsChecked()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"a", "a", 0x20}).Publish();
    game.App.Install(game.Folder, true);
    QVERIFY(!game.App.IsFirstManifestBuild);
    QVERIFY(game.Host.RunNextAsync());
    QVERIFY(game.Listed().isEmpty());
    game.App.Install(game.Folder, false);
    QVERIFY(game.App.IsFirstManifestBuild);
    game.Host.RunNextAsync(); // of the run before
    QVERIFY(game.Host.RunNextAsync());
    QCOMPARE(game.Listed(), QStringList("a"));
}

void InstallOperationsTest::InstallWithTheFlagRemovesTheListsBeforeTheComparison()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"a", "a", 0x20}).Publish();
    PutLists(game);
    game.Put("other.db", "stays");
    FolderEvents removals(game.Folder);
    game.App.Install(game.Folder, true);
    QCOMPARE(game.FilesOnDisk(), QStringList("other.db"));
    QCOMPARE(game.Host.AsyncCount(), std::size_t{1});
    if (!FolderEvents::c_Works)
        QSKIP("the order of removals is not seen on this system");
    QCOMPARE(removals.Removed(),
             QStringList({"ToDownloadBase.db", "ToDownload.db", "ToDownloadCASC.db"}));
}

void InstallOperationsTest::InstallWithoutTheFlagTouchesNoList()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"a", "a", 0x20}).Publish();
    PutLists(game);
    game.App.Install(game.Folder, false);
    QCOMPARE(game.FilesOnDisk(), QStringList("FirstBuild.db") + c_Lists);
    for (QString const& list : c_Lists)
        QCOMPARE(game.Read(list), QByteArray("a\n"));
}

void InstallOperationsTest::InstallCallsItsHookBetweenTheListsAndTheComparison()
{
    Game game(TestHost::Worker::ByHand);
    game.Publish();
    PutLists(game);
    QStringList filesInHook{"not called"};
    QString pathInHook;
    int manifestHooks = -1;
    game.App.OnInstallHook = [&] {
        filesInHook = game.FilesOnDisk();
        pathInHook = game.App.InstallationPath;
        manifestHooks = game.App.ManifestHooks;
    };
    game.App.Install(game.Folder, true);
    QCOMPARE(game.App.InstallHooks, 1);
    QCOMPARE(filesInHook, QStringList());
    QCOMPARE(pathInHook, game.Folder);
    QCOMPARE(manifestHooks, 0);
    QCOMPARE(game.App.ManifestHooks, 1);
}

void InstallOperationsTest::AListThatCannotBeRemovedIsIgnored()
{
    Game game(TestHost::Worker::ByHand);
    game.Publish();
    QVERIFY(QDir().mkpath(game.Path("ToDownloadBase.db/folder in its place")));
    game.Put("ToDownload.db", "s\n");
    game.App.Install(game.Folder, true);
    QVERIFY(!game.Has("ToDownload.db"));
    QCOMPARE(game.Host.Errors(), QStringList());
    QCOMPARE(game.App.ManifestHooks, 1);
}

void InstallOperationsTest::RepairOfAGameThatIsNotInstalledDoesNothing()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"a", "a"}).Publish();
    game.App.UISettingChanged = false;
    int const messages = game.Log.Texts().size();
    game.App.Repair();
    QVERIFY(!game.App.IsFirstManifestBuild);
    QVERIFY(!game.App.UISettingChanged);
    QCOMPARE(game.App.ManifestHooks, 0);
    QCOMPARE(game.Host.SettingChanges(), QStringList());
    QCOMPARE(game.Host.AsyncCount() + game.Host.SyncCount(), std::size_t{0});
    QCOMPARE(game.Host.Errors(), QStringList());
    QCOMPARE(game.Log.Texts().size(), messages);
}

void InstallOperationsTest::RepairLooksAtEveryFile()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"a", "a", 0x20}).Add({"b", "b", 0x20}).Publish().Install();
    game.Put("b", "damaged");
    game.App.Repair();
    QVERIFY(game.App.IsFirstManifestBuild);
    QVERIFY(game.Host.RunNextAsync());
    QCOMPARE(game.Listed(), QStringList({"a", "b"}));
    QCOMPARE(game.Host.SettingChanges(), QStringList());
}

void InstallOperationsTest::AbortRepairRemovesTheListsInItsOwnOrder()
{
    Game game(TestHost::Worker::ByHand);
    game.Publish().Install();
    PutLists(game);
    FolderEvents removals(game.Folder);
    game.App.AbortRepair();
    QCOMPARE(game.FilesOnDisk(), QStringList());
    if (!FolderEvents::c_Works)
        QSKIP("the order of removals is not seen on this system");
    QCOMPARE(removals.Removed(),
             QStringList({"ToDownloadCASC.db", "ToDownloadBase.db", "ToDownload.db"}));
}

void InstallOperationsTest::AbortRepairWithoutListsStartsTheOrdinaryComparison()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"a", "a", 0x20}).Add({"plain", "p"}).Publish().Install();
    game.App.IsFirstManifestBuild = true;
    game.App.UISetting.Download.ModeFlag = true;
    game.App.AbortRepair();
    QVERIFY(!game.App.IsFirstManifestBuild);
    QCOMPARE(game.App.UISetting.State, 2);
    QCOMPARE(game.App.UISetting.Download.Mode, 5);
    QVERIFY(game.Host.RunNextAsync());
    QCOMPARE(game.Listed(), QStringList("plain"));
    QCOMPARE(game.Host.FinishedCount.load(), 0); // nothing was in flight
}

void InstallOperationsTest::AbortRepairMarksTheManifestAsBuilt_data()
{
    QTest::addColumn<QVariant>("before");
    QTest::addColumn<int>("writes");
    QTest::newRow("absent") << QVariant() << 1;
    QTest::newRow("false") << QVariant(false) << 1;
    QTest::newRow("true") << QVariant(true) << 0;
}

void InstallOperationsTest::AbortRepairMarksTheManifestAsBuilt()
{
    QFETCH(QVariant, before);
    QFETCH(int, writes);
    Game game(TestHost::Worker::ByHand);
    game.Publish().Install();
    if (before.isValid())
        game.Host.SetSetting("test_app.ManifestBuilt", before);
    game.App.AbortRepair();
    QCOMPARE(game.Host.Setting("test_app.ManifestBuilt"), QVariant(true));
    QCOMPARE(game.Host.SettingChanges().count("test_app.ManifestBuilt"), writes);
}

void InstallOperationsTest::AbortRepairSuspendsBeforeAnythingElse()
{
    Game game;
    game.Add({"a", SampleContent::Bytes(3000), 0x20}).Add({"b", "b", 0x20});
    game.Server.Script(game.Content.ServerPath("a"))
        .Then(Answer::Normal())
        .Then(Answer::SilentAfter(1000));
    game.Begin();
    QVERIFY(game.RunUntilPart("a", 1000));
    QStringList filesWhenSuspended;
    bool firstBuildWhenSuspended = false;
    game.Host.OnDownloadFinished = [&] {
        filesWhenSuspended = game.FilesOnDisk();
        firstBuildWhenSuspended = game.App.IsFirstManifestBuild;
    };
    game.App.AbortRepair();
    QCOMPARE(game.Host.FinishedCount.load(), 1);
    QCOMPARE(filesWhenSuspended, QStringList({"FirstBuild.db", "ToDownloadBase.db", "a.part"}));
    QVERIFY(firstBuildWhenSuspended);
    QVERIFY(!game.Has("ToDownloadBase.db"));
    QCOMPARE(game.Read("a.part"), SampleContent::Bytes(3000).left(1000));
}

void InstallOperationsTest::TheInstallationIsKnownFromTheSettings()
{
    Game game(TestHost::Worker::ByHand);
    game.Publish();
    game.App.InstallationPath = "of before";
    QVERIFY(!game.App.IsInstalled());
    QCOMPARE(game.App.GetInstallationPath(), QString(""));
    QCOMPARE(game.App.InstallationPath, QString(""));
    game.App.Install(game.Folder, false);
    QVERIFY(game.App.IsInstalled());
    QCOMPARE(game.App.GetInstallationPath(), game.Folder);
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::InstallOperationsTest)
#include "tst_InstallOperations.moc"
