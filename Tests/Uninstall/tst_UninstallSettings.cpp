#include "Tests/Runs/Game.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

namespace Varnholt::TestSupport {

/// What an uninstallation does to the settings and the progress record, and in which order.
class UninstallSettingsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void EverySettingOfTheApplicationIsForgotten();
    void KeysAreFoundAnywhereAndWithoutLetterCase_data();
    void KeysAreFoundAnywhereAndWithoutLetterCase();
    void KeysAreRemovedAsTheHostSpellsThem();
    void TheGameIsShownAsNotInstalled();
    void FilesGoBeforeSettingsAndTheListBehindThem();
    void TheHookSeesTheGameForgotten();
    void NothingIsComparedOrFetched();
    void AGameThatIsNotInstalledStaysSo();
    void AHostThatInstallsFromTheErrorReportIsForgottenAgain();
};

void UninstallSettingsTest::EverySettingOfTheApplicationIsForgotten()
{
    Game game(TestHost::Worker::ByHand);
    game.Publish().Install();
    game.Host.SetSetting("test_app.ManifestBuilt", true);
    game.Host.SetSetting("test_app.InstallLocale", "frFR");
    game.Host.SetSetting("test_app.of.the.host", 1);
    game.Host.SetSetting("language", "fr");
    game.App.Uninstall(false);
    QCOMPARE(game.Host.SettingKeys(), QStringList({"language", "test_app.ManifestBuilt"}));
    QCOMPARE(game.Host.Setting("test_app.ManifestBuilt"), QVariant(false));
    QCOMPARE(game.App.GetInstallationPath(), QString(""));
}

void UninstallSettingsTest::KeysAreFoundAnywhereAndWithoutLetterCase_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<bool>("forgotten");
    QTest::newRow("at the beginning") << "test_app.x" << true;
    QTest::newRow("nothing behind") << "test_app." << true;
    QTest::newRow("capital letters") << "TEST_APP.X" << true;
    QTest::newRow("mixed letters") << "Test_App.x" << true;
    QTest::newRow("in the middle") << "windows/test_app.width" << true;
    QTest::newRow("behind another name") << "mytest_app.x" << true;
    QTest::newRow("without the dot") << "test_app" << false;
    QTest::newRow("longer name") << "test_apple.x" << false;
    QTest::newRow("other separator") << "test_app/x" << false;
    QTest::newRow("other application") << "other_app.x" << false;
    QTest::newRow("no pattern") << "testXapp.x" << false;
}

void UninstallSettingsTest::KeysAreFoundAnywhereAndWithoutLetterCase()
{
    QFETCH(QString, key);
    QFETCH(bool, forgotten);
    Game game(TestHost::Worker::ByHand);
    game.Publish().Install();
    game.Host.SetSetting(key, 1);
    game.App.Uninstall(false);
    QCOMPARE(game.Host.HasSetting(key), !forgotten);
    QCOMPARE(game.Host.SettingChanges().count("-" + key), forgotten ? 1 : 0);
}

void UninstallSettingsTest::KeysAreRemovedAsTheHostSpellsThem()
{
    Game game(TestHost::Worker::ByHand);
    game.Publish().Install();
    game.Host.SetSetting("TEST_APP.Width", 1);
    game.App.Uninstall(false);
    // The last one is of the manifest that is looked at again.
    QCOMPARE(game.Host.SettingChanges(),
             QStringList({"-TEST_APP.Width", "-test_app.InstallFolder", "-test_app.Installed",
                          "test_app.ManifestBuilt"}));
}

void UninstallSettingsTest::TheGameIsShownAsNotInstalled()
{
    Game game(TestHost::Worker::ByHand);
    game.Publish().Install();
    game.App.UISetting.State = Launcher::ApplicationUISetting::StateInstalled;
    game.App.UISettingChanged = false;
    game.App.Uninstall(false);
    QCOMPARE(game.App.UISetting.State, 1);
    QVERIFY(game.App.UISettingChanged);
}

void UninstallSettingsTest::FilesGoBeforeSettingsAndTheListBehindThem()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"a", "a"}).Add({"b", "b"}).Publish().Install();
    game.Put("a/cannot be removed as a file", "");
    game.Put("b", "b");
    game.App.FilesToDownload = game.App.Manifest.Files;
    bool installedAtReport = false;
    QStringList listedAtReport;
    game.Host.OnError = [&](QString const&) {
        installedAtReport = game.App.IsInstalled();
        listedAtReport = game.Listed();
    };
    static QStringList s_Seen;
    static Game* s_Game;
    s_Seen.clear();
    s_Game = &game;
    game.App.RemoveSetting = [](QString p_Key) {
        s_Seen += p_Key + (s_Game->Has("b") ? " with files" : " without files") +
                  QString(" list of %1").arg(s_Game->Listed().size());
    };
    game.App.Uninstall(true);
    QVERIFY(installedAtReport);
    QCOMPARE(listedAtReport, QStringList({"a", "b"}));
    QCOMPARE(s_Seen, QStringList({"test_app.InstallFolder without files list of 2",
                                  "test_app.Installed without files list of 2"}));
    QVERIFY(game.Listed().isEmpty());
}

void UninstallSettingsTest::TheHookSeesTheGameForgotten()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"a", "a"}).Publish().Install();
    game.Put("a", "a");
    game.App.FilesToDownload = game.App.Manifest.Files;
    Launcher::HTTP_DownloadFileRequest request;
    game.App.CurrentDownload = &request;
    bool forgotten = false;
    game.App.OnManifestHook = [&] {
        forgotten = !game.Has("a") && !game.App.IsInstalled() && game.App.InstallationPath == "" &&
                    game.Listed().isEmpty() && game.App.CurrentDownload == nullptr;
    };
    game.App.Uninstall(true);
    QCOMPARE(game.App.ManifestHooks, 1);
    QVERIFY(forgotten);
    QVERIFY(!request.Aborted);
    QVERIFY(!game.App.Transfers.Retire(&request));
}

void UninstallSettingsTest::NothingIsComparedOrFetched()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"a", "a", 0x20}).Add({"s", "s", 0, {}, true}).Publish().Install();
    game.App.IsFirstManifestBuild = true;
    game.App.FilesToDownload = game.App.Manifest.Files;
    game.App.Uninstall(true);
    QCOMPARE(game.Host.AsyncCount() + game.Host.SyncCount(), std::size_t{0});
    QCOMPARE(game.Host.StartingCount + game.Host.FinishedCount, 0);
    QCOMPARE(game.FilesOnDisk(), QStringList());
    QCOMPARE(game.Requested(), QStringList());
}

void UninstallSettingsTest::AGameThatIsNotInstalledStaysSo()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"a", "a"}).Publish();
    game.App.Uninstall(true);
    game.App.Uninstall(false);
    QCOMPARE(game.App.UISetting.State, 1);
    QCOMPARE(game.App.ManifestHooks, 2);
    QVERIFY(!game.App.IsInstalled());
}

void UninstallSettingsTest::AHostThatInstallsFromTheErrorReportIsForgottenAgain()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"a", "a"}).Add({"b", "b"}).Publish().Install();
    game.Put("a/cannot be removed as a file", "");
    game.Put("b", "b");
    QString const elsewhere = game.Temporary.path() + "/elsewhere/";
    game.Host.OnError = [&](QString const&) { game.App.Install(elsewhere, false); };
    game.App.Uninstall(true);
    QVERIFY(!game.App.IsInstalled());
    while (game.Host.RunNextAsync()) // the comparison of the installation that is gone
        continue;
    QVERIFY(game.Listed().isEmpty());
    QVERIFY(!QFile::exists(elsewhere + "ToDownloadBase.db"));
    QVERIFY(!game.Has("b"));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::UninstallSettingsTest)
#include "tst_UninstallSettings.moc"
