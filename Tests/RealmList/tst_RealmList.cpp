#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/FileWatch.hpp"
#include "Tests/Support/LoadedPlugin.hpp"
#include "Tests/Support/LogCapture.hpp"
#include "Tests/Support/SampleContent.hpp"
#include "Tests/Support/ScopedCurrentFolder.hpp"
#include "Tests/Support/TestHost.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QTemporaryDir>
#include <QtTest>

namespace Varnholt::Launcher {

using TestSupport::Answer;
using TestSupport::ReadFile;
using TestSupport::WriteFile;

class RealmListTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void AGameThatIsNotInstalledFetchesAndWritesNothing();
    void TheConfigurationEndsWithLanguageAndRealmList();
    void TheLanguageIsStoredAgain();
    void TheReceivedTextIsLogged();
    void EveryManifestFetchesOnce();
    void ARoutineStartWritesNothing_data();
    void ARoutineStartWritesNothing();
    void WhatHasChangedIsWritten_data();
    void WhatHasChangedIsWritten();
    void TheServerAlwaysWins();
    void TheTextIsWrittenAsItArrives_data();
    void TheTextIsWrittenAsItArrives();
    void AFailedFetchKeepsTheLine_data();
    void AFailedFetchKeepsTheLine();
    void AFetchThatNeverGetsThroughKeepsTheLine();
    void WithoutAnInstallationFolderNothingIsWritten();

private:
    static constexpr char c_Path[] = "/pelmora_app/realmlist.info";
    static constexpr char c_Language[] = "SET locale \"enUS\"\nSET installLocale \"enUS\"\n";

    void Receive()
    {
        App->AfterOnManifestReceived();
        QVERIFY(Host->RunUntilIdle());
    }

    std::unique_ptr<TestSupport::LogCapture> Log;
    std::unique_ptr<QTemporaryDir> Folder;
    std::unique_ptr<TestSupport::ScriptedServer> Server;
    std::unique_ptr<TestSupport::LoadedPlugin> Plugin;
    std::unique_ptr<TestSupport::TestHost> Host;
    StandartApplication* App = nullptr;
    QString Config;
};

void RealmListTest::init()
{
    Log = std::make_unique<TestSupport::LogCapture>();
    Folder = std::make_unique<QTemporaryDir>();
    Config = Folder->path() + "/WTF/Config.wtf";
    Server = std::make_unique<TestSupport::ScriptedServer>();
    Server->BecomeDefaultContentServer();
    Server->Serve(c_Path, "SET realmlist \"new\"");
    Plugin = std::make_unique<TestSupport::LoadedPlugin>();
    App = Plugin->Standart();
    QVERIFY(App != nullptr);
    Host = std::make_unique<TestSupport::TestHost>(*App);
    Host->SetSetting("pelmora_app.InstallFolder", Folder->path() + "/");
    Host->SetSetting("pelmora_app.Installed", true);
}

void RealmListTest::cleanup()
{
    Host.reset();
    Plugin.reset();
    Server.reset();
    Folder.reset();
    Log.reset();
}

void RealmListTest::AGameThatIsNotInstalledFetchesAndWritesNothing()
{
    Host->SetSetting("pelmora_app.Installed", false);
    Receive();
    QVERIFY(Server->Requests().empty());
    QVERIFY(QDir(Folder->path()).isEmpty());
    QCOMPARE(Host->SettingChanges(), QStringList());
}

void RealmListTest::TheConfigurationEndsWithLanguageAndRealmList()
{
    QVERIFY(WriteFile(Config, "SET first \"1\"\r\nSET realmList \"old\"\r\nSET textLOCALE \"x\"\r\n"
                              "SET realmListbn \"old\"\r\nSET second \"2\"\r\n"));
    Receive();
    QCOMPARE(ReadFile(Config), QByteArray("SET first \"1\"\nSET second \"2\"\n") + c_Language +
                                   "SET realmlist \"new\"\n");
    QCOMPARE(Host->Errors(), QStringList());
}

void RealmListTest::TheLanguageIsStoredAgain()
{
    Host->LocaleIndex = 1;
    Receive();
    QCOMPARE(Host->Setting("pelmora_app.InstallLocale"), QVariant("frFR"));
    QVERIFY(ReadFile(Config).startsWith("SET locale \"frFR\"\nSET installLocale \"frFR\"\n"));
}

void RealmListTest::TheReceivedTextIsLogged()
{
    Receive();
    QCOMPARE(Log->Texts("varnholt.language"),
             QStringList("\"Mists of Pandaria\"  Realmlist :  \"SET realmlist \\\"new\\\"\""));
    QCOMPARE(Log->Messages().front().Type, QtWarningMsg);
}

void RealmListTest::EveryManifestFetchesOnce()
{
    Receive();
    Receive();
    QCOMPARE(Server->Count(c_Path), 2);
    QCOMPARE(Server->Requests().size(), std::size_t{2});
}

void RealmListTest::ARoutineStartWritesNothing_data()
{
    QTest::addColumn<QByteArray>("Before");
    QTest::newRow("no configuration") << QByteArray();
    QTest::newRow("settings of the player") << QByteArray("SET a \"1\"\r\nSET b \"2\"");
    QTest::newRow("other order") << QByteArray("SET realmlist \"new\"\nSET a \"1\"\n") + c_Language;
    QTest::newRow("blank line") << QByteArray("\n");
    QTest::newRow("letters") << QByteArray("SET name \"Zo\xC3\xA9\"\n");
}

void RealmListTest::ARoutineStartWritesNothing()
{
    QFETCH(QByteArray, Before);
    if (!Before.isEmpty())
        QVERIFY(WriteFile(Config, Before));
    Receive();
    TestSupport::FileWatch const watch(Config);
    Receive();
    QVERIFY(watch.IsUntouched());
    // Nor when the realm list cannot be had.
    Server->Script(c_Path).Always(Answer::Status(404));
    Receive();
    QVERIFY(watch.IsUntouched());
}

void RealmListTest::WhatHasChangedIsWritten_data()
{
    QTest::addColumn<QByteArray>("Before");
    QByteArray const language = c_Language;
    QByteArray const realm = "SET realmlist \"new\"\n";
    QTest::newRow("nothing") << QByteArray("");
    QTest::newRow("language") << QByteArray(language).replace("enUS", "frFR") + realm;
    QTest::newRow("one of the two")
        << QByteArray(language).replace("SET locale \"enUS", "SET locale \"frFR") + realm;
    QTest::newRow("realm list") << language + "SET realmlist \"old\"\n";
    QTest::newRow("two realm lists") << realm + language + realm;
    QTest::newRow("a third of its key") << "SET textLocale \"x\"\n" + language + realm;
    QTest::newRow("a third of its key at the end") << language + realm + "SET textLocale \"x\"\n";
    QTest::newRow("another of the two at the end") << language + realm + "SET locale \"frFR\"\n";
    QTest::newRow("a realm list with its key at the end")
        << language + "SET realmlist \"locale.example.net\"\n";
    QTest::newRow("other line ends") << QByteArray(language + realm).replace("\n", "\r\n");
    QTest::newRow("no last line end") << QByteArray(language + realm).chopped(1);
}

void RealmListTest::WhatHasChangedIsWritten()
{
    QFETCH(QByteArray, Before);
    QVERIFY(WriteFile(Config, Before));
    Receive();
    QCOMPARE(ReadFile(Config), QByteArray(c_Language) + "SET realmlist \"new\"\n");
    // The language is there at once, also when the realm list never comes.
    QVERIFY(WriteFile(Config, Before));
    App->SetAppLocale("enUS");
    QVERIFY(!ReadFile(Config).contains("frFR") && !ReadFile(Config).contains("textLocale"));
}

void RealmListTest::TheServerAlwaysWins()
{
    Receive();
    Server->Serve(c_Path, "SET realmlist \"newer\"");
    Receive();
    QCOMPARE(ReadFile(Config), QByteArray(c_Language) + "SET realmlist \"newer\"\n");
}

void RealmListTest::TheTextIsWrittenAsItArrives_data()
{
    QTest::addColumn<QByteArray>("Text");
    QTest::addColumn<QByteArray>("Written");
    QTest::newRow("nonsense") << QByteArray("nonsense") << QByteArray("nonsense\n");
    QTest::newRow("nothing") << QByteArray("") << QByteArray("\n");
    QTest::newRow("line end") << QByteArray("a\n") << QByteArray("a\n\n");
    QTest::newRow("several lines") << QByteArray("a\nb\r\nc") << QByteArray("a\nb\r\nc\n");
    QTest::newRow("NUL byte") << QByteArray("a\0b", 3) << QByteArray("a\n");
    QTest::newRow("UTF-8") << QByteArray("é") << QByteArray("é\n");
}

void RealmListTest::TheTextIsWrittenAsItArrives()
{
    QFETCH(QByteArray, Text);
    QFETCH(QByteArray, Written);
    Server->Serve(c_Path, Text);
    QVERIFY(WriteFile(Config, "SET realmlist \"old\"\n"));
    Receive();
    QCOMPARE(ReadFile(Config), c_Language + Written);
}

void RealmListTest::AFailedFetchKeepsTheLine_data()
{
    QTest::addColumn<Answer>("Failure");
    for (int const status : {400, 403, 404, 416, 418, 429, 500, 503})
        QTest::addRow("%d", status) << Answer::Status(status);
    QTest::newRow("empty page") << Answer::Status(404, "");
    QTest::newRow("redirect") << Answer::Redirect("/login");
    QTest::newRow("cut") << Answer::Truncated(5);
    QTest::newRow("reset") << Answer::Reset(5);
    QTest::newRow("closed") << Answer::ClosedBeforeHeaders();
}

void RealmListTest::AFailedFetchKeepsTheLine()
{
    // An error page in the configuration would leave the player without a server.
    QFETCH(Answer, Failure);
    Server->Script(c_Path).Always(Failure);
    QVERIFY(WriteFile(Config, "SET realmlist \"old\"\n"));
    Receive();
    QVERIFY(Server->Count(c_Path) > 0);
    QCOMPARE(ReadFile(Config), QByteArray("SET realmlist \"old\"\n") + c_Language);
    QCOMPARE(Host->Errors(), QStringList());
    QCOMPARE(Log->Texts("varnholt.language"), QStringList());
}

void RealmListTest::AFetchThatNeverGetsThroughKeepsTheLine()
{
    Server->Stop();
    QVERIFY(WriteFile(Config, "SET realmlist \"old\"\n"));
    Receive();
    QCOMPARE(ReadFile(Config), QByteArray("SET realmlist \"old\"\n") + c_Language);
}

void RealmListTest::WithoutAnInstallationFolderNothingIsWritten()
{
    TestSupport::ScopedCurrentFolder const current(Folder->path());
    Host->SetSetting("pelmora_app.InstallFolder", "");
    Receive();
    QVERIFY(QDir(Folder->path()).isEmpty());
}

} // namespace Varnholt::Launcher

VARNHOLT_TEST(Varnholt::Launcher::RealmListTest)
#include "tst_RealmList.moc"
