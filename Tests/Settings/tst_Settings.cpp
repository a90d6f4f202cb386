#include "Tests/Support/LogCapture.hpp"
#include "Tests/Support/TestApplication.hpp"
#include "Tests/Support/TestHost.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QTemporaryDir>
#include <QtTest>

namespace Varnholt::Launcher {

class SettingsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void AnUnwrittenInstallationPathIsEmptyAndCached();
    void TheInstallationPathIsReadFromTheHostAtEveryCall();
    void IsInstalledFollowsTheHost();
    void KeysBeginWithTheApplicationsIdentifier();
    void InstalledIsWrittenByInstallAndForgottenByUninstall();
    void InstallWritesTheFolderAndMarksTheManifestBuiltOnce();
};

void SettingsTest::AnUnwrittenInstallationPathIsEmptyAndCached()
{
    TestSupport::TestApplication app;
    TestSupport::TestHost const host(app);
    app.InstallationPath = "/old/";
    QCOMPARE(app.GetInstallationPath(), QString());
    QCOMPARE(app.InstallationPath, QString());
}

void SettingsTest::TheInstallationPathIsReadFromTheHostAtEveryCall()
{
    TestSupport::TestApplication app;
    TestSupport::TestHost host(app);
    for (QString const path : {"/one/", "/two/"}) {
        host.SetSetting("test_app.InstallFolder", path);
        QVERIFY(app.InstallationPath != path);
        QCOMPARE(app.GetInstallationPath(), path);
        QCOMPARE(app.InstallationPath, path);
    }
    QCOMPARE(host.SettingChanges(), QStringList());
}

void SettingsTest::IsInstalledFollowsTheHost()
{
    TestSupport::TestApplication app;
    TestSupport::TestHost host(app);
    QVERIFY(!app.IsInstalled());
    host.SetSetting("test_app.Installed", true);
    QVERIFY(app.IsInstalled());
    host.SetSetting("test_app.Installed", false);
    QVERIFY(!app.IsInstalled());
    // As a file of texts gives it back.
    host.SetSetting("test_app.Installed", "true");
    QVERIFY(app.IsInstalled());
}

void SettingsTest::KeysBeginWithTheApplicationsIdentifier()
{
    TestSupport::TestApplication app("Other", "other_app");
    TestSupport::TestHost host(app);
    host.SetSetting("test_app.Installed", true);
    QVERIFY(!app.IsInstalled());
    host.SetSetting("other_app.Installed", true);
    QVERIFY(app.IsInstalled());
}

void SettingsTest::InstalledIsWrittenByInstallAndForgottenByUninstall()
{
    TestSupport::LogCapture const log;
    QTemporaryDir const folder;
    TestSupport::TestApplication app;
    TestSupport::TestHost host(app);
    QVERIFY(!app.IsInstalled());
    app.Install(folder.path() + "/", false);
    QVERIFY(app.IsInstalled());
    QVERIFY(host.RunUntilIdle());
    app.Uninstall(false);
    QVERIFY(!app.IsInstalled());
    QVERIFY(host.RunUntilIdle());
}

void SettingsTest::InstallWritesTheFolderAndMarksTheManifestBuiltOnce()
{
    TestSupport::LogCapture const log;
    QTemporaryDir const folder;
    TestSupport::TestApplication app;
    TestSupport::TestHost host(app);
    app.Install(folder.path() + "/", false);
    QCOMPARE(host.Setting("test_app.InstallFolder").toString(), folder.path() + "/");
    QCOMPARE(host.Setting("test_app.ManifestBuilt"), QVariant(true));
    QCOMPARE(app.InstallationPath, folder.path() + "/");
    app.Install(folder.path() + "/", false);
    QCOMPARE(host.SettingChanges().count("test_app.ManifestBuilt"), 1);
    QVERIFY(host.RunUntilIdle());
}

} // namespace Varnholt::Launcher

VARNHOLT_TEST(Varnholt::Launcher::SettingsTest)
#include "tst_Settings.moc"
