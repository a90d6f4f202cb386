#include "Tests/Runs/Game.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QDir>
#include <QtTest>

namespace Varnholt::TestSupport {

namespace {

/// Makes a folder the current one as long as it lives.
class CurrentFolder {
public:
    explicit CurrentFolder(QString const& p_Path)
        : Before(QDir::currentPath())
    {
        QDir::setCurrent(p_Path);
    }
    ~CurrentFolder() { QDir::setCurrent(Before); }
    CurrentFolder(CurrentFolder const&) = delete;
    CurrentFolder& operator=(CurrentFolder const&) = delete;

private:
    QString Before;
};

} // namespace

class ComparisonStartTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void AnInstalledGameShowsThatItIsCompared();
    void AGameThatIsNotInstalledIsNotCompared();
    void TheListIsClearedAtTheStart();
    void PermissionsThenTheHookThenTheComparison();
    void PermissionsAndTheHookComeForAGameThatIsNotInstalledToo();
    void AFolderWithoutASlashGetsOne();
    void TheCurrentFolderIsRedirectedToASubfolder_data();
    void TheCurrentFolderIsRedirectedToASubfolder();
    void TheCurrentFolderIsLeftAloneWhenNotInstalled();
    void AnEmptyFolderTouchesNoFile();
    void TheStartReturnsBeforeTheComparison();
};

void ComparisonStartTest::AnInstalledGameShowsThatItIsCompared()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"a", "a"}).Add({"b", "b"}).Publish().Install();
    game.App.Manifest.BuildStr = "5.4.8 (18414)";
    auto& progress = game.App.UISetting.Download;
    progress.StatusFlags = 7;
    progress.Current = progress.Percent = 50;
    game.App.UISettingChanged = false;
    game.App.OnManifestReceived();
    QCOMPARE(game.App.UISetting.State, 2);
    QCOMPARE(progress.StatusFlags, 0u);
    QCOMPARE(progress.StatusFlag, true);
    QCOMPARE(progress.StatusText, QString("5.4.8 (18414)"));
    QCOMPARE(progress.Current, quint64{0});
    QCOMPARE(progress.Total, quint64{2});
    QCOMPARE(progress.Percent, 0u);
    QCOMPARE(progress.Mode, 5);
    QCOMPARE(progress.ModeFlag, true);
    QVERIFY(game.App.UISettingChanged);
}

void ComparisonStartTest::AGameThatIsNotInstalledIsNotCompared()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"a", "a"}).Publish();
    game.App.UISetting.Download.Mode = Launcher::ApplicationUISetting::ModeSuspended;
    game.App.UISettingChanged = false;
    game.App.OnManifestReceived();
    QCOMPARE(game.App.UISetting.State, 1);
    QVERIFY(game.App.UISettingChanged);
    QCOMPARE(game.App.UISetting.Download.Mode, 4);
    // The manifest that is seen first after an installation is a first build.
    QCOMPARE(game.Host.SettingChanges(), QStringList("test_app.ManifestBuilt"));
    QCOMPARE(game.Host.Setting("test_app.ManifestBuilt"), QVariant(false));
    QCOMPARE(game.Host.AsyncCount(), std::size_t{0});
    QCOMPARE(game.Host.SyncCount(), std::size_t{0});
    QVERIFY(game.Listed().isEmpty());
}

void ComparisonStartTest::TheListIsClearedAtTheStart()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"a", "a"}).Publish();
    game.App.FilesToDownload = game.App.Manifest.Files;
    game.App.OnManifestReceived();
    QVERIFY(game.Listed().isEmpty());
    game.Install();
    game.App.FilesToDownload = game.App.Manifest.Files;
    game.App.OnManifestReceived();
    QVERIFY(game.Listed().isEmpty());
}

void ComparisonStartTest::PermissionsThenTheHookThenTheComparison()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"read-only", "r", 0x1}).Publish().Install();
    game.Put("read-only", "r");
    int modeInHook = 0;
    std::size_t queuedInHook = 99;
    game.App.OnManifestHook = [&] {
        modeInHook = game.Mode("read-only");
        queuedInHook = game.Host.AsyncCount();
    };
    game.App.OnManifestReceived();
    QCOMPARE(game.App.ManifestHooks, 1);
    QCOMPARE(modeInHook, 0444);
    QCOMPARE(queuedInHook, std::size_t{0});
    QCOMPARE(game.Host.AsyncCount(), std::size_t{1});
}

void ComparisonStartTest::PermissionsAndTheHookComeForAGameThatIsNotInstalledToo()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"run", "r", 0x2}).Publish();
    game.Host.SetSetting("test_app.InstallFolder", game.Folder);
    game.Put("run", "r");
    game.App.OnManifestReceived();
    QCOMPARE(game.Mode("run"), 0777);
    QCOMPARE(game.App.ManifestHooks, 1);
}

void ComparisonStartTest::AFolderWithoutASlashGetsOne()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"a", "a"}).Publish().Install();
    game.Put("a", "a");
    game.Host.SetSetting("test_app.InstallFolder", game.Folder.chopped(1));
    game.App.OnManifestReceived();
    QCOMPARE(game.App.InstallationPath, game.Folder);
    QVERIFY(game.Host.RunNextAsync());
    QVERIFY(game.Listed().isEmpty());
    QVERIFY(!game.Host.SettingChanges().contains("test_app.InstallFolder"));
}

void ComparisonStartTest::TheCurrentFolderIsRedirectedToASubfolder_data()
{
    QTest::addColumn<bool>("withSlash");
    QTest::newRow("recorded with a slash") << true;
    QTest::newRow("recorded without a slash") << false;
}

// A launcher's own folder must not be filled with a game: the game moves one level down.
void ComparisonStartTest::TheCurrentFolderIsRedirectedToASubfolder()
{
    QFETCH(bool, withSlash);
    Game game(TestHost::Worker::ByHand);
    game.Add({"a", "a", 0x20}).Publish().Install();
    game.Put("a", "a");
    CurrentFolder const current(game.Folder);
    game.Host.SetSetting("test_app.InstallFolder",
                         withSlash ? game.Folder : game.Folder.chopped(1));
    game.App.IsFirstManifestBuild = false;
    game.App.OnManifestReceived();
    QString const redirected = game.Folder + "Test Game/";
    QCOMPARE(game.App.InstallationPath, redirected);
    QCOMPARE(game.Host.Setting("test_app.InstallFolder").toString(), redirected);
    QVERIFY(game.App.IsFirstManifestBuild);
    // No file is moved, so everything is missing down there.
    QVERIFY(game.Host.RunNextAsync());
    QCOMPARE(game.Listed(), QStringList("a"));
    QCOMPARE(game.Read("a"), QByteArray("a"));
}

void ComparisonStartTest::TheCurrentFolderIsLeftAloneWhenNotInstalled()
{
    Game game(TestHost::Worker::ByHand);
    game.Publish();
    game.Host.SetSetting("test_app.InstallFolder", game.Folder);
    CurrentFolder const current(game.Folder);
    game.App.OnManifestReceived();
    QCOMPARE(game.App.InstallationPath, game.Folder);
    QCOMPARE(game.Host.Setting("test_app.InstallFolder").toString(), game.Folder);
    QVERIFY(!game.App.IsFirstManifestBuild);
}

void ComparisonStartTest::AnEmptyFolderTouchesNoFile()
{
    Game game;
    game.Add({"a", "of the build", 0x1}).Add({"s", "s", 0, {}, true}).Publish();
    game.Host.SetSetting("test_app.Installed", true);
    game.Put("a", "of somebody else");
    game.Put("ToDownloadBase.db", "a\n");
    game.Put("ToDownload.db", "s\n");
    int const mode = game.Mode("a");
    CurrentFolder const current(game.Folder);
    game.App.IsFirstManifestBuild = true;
    game.App.OnManifestReceived();
    QVERIFY(game.Finish());
    game.App.Repair();
    QVERIFY(game.Finish());
    game.App.AbortRepair();
    QVERIFY(game.Finish());
    game.App.Install(QString(), true);
    QVERIFY(game.Finish());
    QCOMPARE(game.FilesOnDisk(), QStringList({"ToDownload.db", "ToDownloadBase.db", "a"}));
    QCOMPARE(game.Read("a"), QByteArray("of somebody else"));
    QCOMPARE(game.Mode("a"), mode);
    QCOMPARE(game.Read("ToDownloadBase.db"), QByteArray("a\n"));
    QVERIFY(game.Requested().isEmpty());
    QVERIFY(game.Log.CountContaining("nothing is compared") > 0);
}

void ComparisonStartTest::TheStartReturnsBeforeTheComparison()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"a", "a"}).Begin();
    QVERIFY(game.Listed().isEmpty());
    QCOMPARE(game.Host.AsyncCount(), std::size_t{1});
    QVERIFY(game.Host.RunNextAsync());
    QCOMPARE(game.Listed(), QStringList("a"));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::ComparisonStartTest)
#include "tst_ComparisonStart.moc"
