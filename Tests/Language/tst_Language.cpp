#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/FileWatch.hpp"
#include "Tests/Support/LoadedPlugin.hpp"
#include "Tests/Support/LogCapture.hpp"
#include "Tests/Support/ScopedCurrentFolder.hpp"
#include "Tests/Support/TestHost.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QTemporaryDir>
#include <QtTest>

namespace Varnholt::Launcher {

using TestSupport::ReadFile;
using TestSupport::WriteFile;

class LanguageTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void NoLanguagesBeforeTheFirstManifest();
    void OffersTheManifestsLanguagesByTag();
    void FollowsTheLauncherUntilALanguageIsChosen();
    void AStoredLanguageIsNotChecked();
    void ChoosingALanguageStoresItAndCreatesTheConfiguration();
    void ChoosingALanguageDropsEveryLineThatMentionsIt();
    void ChoosingAgainReplacesBothLines();
    void ChoosingTheSameAgainWritesNothing();
    void TheCodeIsWrittenAsItIs();
    void WithoutAnInstallationFolderOnlyTheSettingIsWritten();
    void AConfigurationThatCannotBeWrittenKeepsTheSetting();

private:
    std::unique_ptr<TestSupport::LogCapture> Log;
    std::unique_ptr<QTemporaryDir> Folder;
    std::unique_ptr<TestSupport::LoadedPlugin> Plugin;
    std::unique_ptr<TestSupport::TestHost> Host;
    StandartApplication* App = nullptr;
    QString Config;
};

void LanguageTest::init()
{
    Log = std::make_unique<TestSupport::LogCapture>();
    Folder = std::make_unique<QTemporaryDir>();
    Config = Folder->path() + "/WTF/Config.wtf";
    Plugin = std::make_unique<TestSupport::LoadedPlugin>();
    App = Plugin->Standart();
    QVERIFY(App != nullptr);
    Host = std::make_unique<TestSupport::TestHost>(*App);
    Host->SetSetting("pelmora_app.InstallFolder", Folder->path() + "/");
}

void LanguageTest::cleanup()
{
    Host.reset();
    Plugin.reset();
    Folder.reset();
    Log.reset();
}

void LanguageTest::NoLanguagesBeforeTheFirstManifest()
{
    QVERIFY(App->GetAvailableLocales().empty());
    QCOMPARE(App->GetAppLocale(), QString("enUS"));
}

void LanguageTest::OffersTheManifestsLanguagesByTag()
{
    App->Manifest.Locales = {{"frFR", {"frFR", "French"}}, {"enUS", {"enUS", "English"}}};
    auto const locales = App->GetAvailableLocales();
    QCOMPARE(locales.size(), std::size_t{2});
    QCOMPARE(locales[0].Tag, QString("enUS"));
    QCOMPARE(locales[0].Name, QString("English"));
    QCOMPARE(locales[1].Tag, QString("frFR"));
}

void LanguageTest::FollowsTheLauncherUntilALanguageIsChosen()
{
    Host->LocaleIndex = 5;
    QCOMPARE(App->GetAppLocale(), QString("itIT"));
    Host->LocaleIndex = 1;
    QCOMPARE(App->GetAppLocale(), QString("frFR"));
    Host->SetSetting("pelmora_app.InstallLocale", "esES");
    QCOMPARE(App->GetAppLocale(), QString("esES"));
}

void LanguageTest::AStoredLanguageIsNotChecked()
{
    Host->SetSetting("pelmora_app.InstallLocale", "xxXX");
    QCOMPARE(App->GetAppLocale(), QString("xxXX"));
}

void LanguageTest::ChoosingALanguageStoresItAndCreatesTheConfiguration()
{
    App->SetAppLocale("frFR");
    QCOMPARE(Host->Setting("pelmora_app.InstallLocale"), QVariant("frFR"));
    QCOMPARE(Host->SettingChanges(), QStringList("pelmora_app.InstallLocale"));
    QCOMPARE(App->GetAppLocale(), QString("frFR"));
    QCOMPARE(ReadFile(Config), QByteArray("SET locale \"frFR\"\nSET installLocale \"frFR\"\n"));
}

void LanguageTest::ChoosingALanguageDropsEveryLineThatMentionsIt()
{
    QVERIFY(WriteFile(Config, "SET textLocale \"enUS\"\r\nSET gxWindow \"1\"\r\n"
                              "SET path \"/LOCALE\"\r\nSET installLocale \"deDE\"\r\n"));
    App->SetAppLocale("frFR");
    QCOMPARE(ReadFile(Config), QByteArray("SET gxWindow \"1\"\nSET locale \"frFR\"\n"
                                          "SET installLocale \"frFR\"\n"));
}

void LanguageTest::ChoosingAgainReplacesBothLines()
{
    App->SetAppLocale("frFR");
    App->SetAppLocale("enUS");
    QCOMPARE(ReadFile(Config), QByteArray("SET locale \"enUS\"\nSET installLocale \"enUS\"\n"));
}

void LanguageTest::ChoosingTheSameAgainWritesNothing()
{
    App->SetAppLocale("frFR");
    TestSupport::FileWatch const watch(Config);
    App->SetAppLocale("frFR");
    QVERIFY(watch.IsUntouched());
}

void LanguageTest::TheCodeIsWrittenAsItIs()
{
    for (QString const code : {"", "%1 %2", "nonsense"}) {
        App->SetAppLocale(code);
        QCOMPARE(QString::fromUtf8(ReadFile(Config)),
                 "SET locale \"" + code + "\"\nSET installLocale \"" + code + "\"\n");
    }
}

void LanguageTest::WithoutAnInstallationFolderOnlyTheSettingIsWritten()
{
    // Nothing may be written into whatever folder the launcher happens to run in.
    TestSupport::ScopedCurrentFolder const current(Folder->path());
    App->RemoveSetting("pelmora_app.InstallFolder");
    App->SetAppLocale("frFR");
    QCOMPARE(App->GetAppLocale(), QString("frFR"));
    QVERIFY(QDir(Folder->path()).isEmpty());
}

void LanguageTest::AConfigurationThatCannotBeWrittenKeepsTheSetting()
{
    QVERIFY(WriteFile(Folder->path() + "/WTF", "a file where the folder should be"));
    App->SetAppLocale("frFR");
    QCOMPARE(App->GetAppLocale(), QString("frFR"));
    QCOMPARE(Host->Errors(), QStringList());
    QCOMPARE(Log->Texts(), QStringList());
}

} // namespace Varnholt::Launcher

VARNHOLT_TEST(Varnholt::Launcher::LanguageTest)
#include "tst_Language.moc"
