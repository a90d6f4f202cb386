#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/LogCapture.hpp"
#include "Tests/Support/SampleContent.hpp"
#include "Tests/Support/ScriptedServer.hpp"
#include "Tests/Support/TestApplication.hpp"
#include "Tests/Support/TestHost.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

namespace Varnholt::Launcher {

using TestSupport::Answer;
using TestSupport::SampleContent;

class StartupChainTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void InitReturnsAtOnceWithStateZero();
    void EachStepIsAClosureOfTheApplicationThread();
    void FetchesVersionManifestAndMirrorsInThisOrder();
    void TheDevelopmentChannelChangesTheVersionFileOnly();
    void ABuildThatIsNoTextAsksForTwoAdjacentSlashes_data();
    void ABuildThatIsNoTextAsksForTwoAdjacentSlashes();
    void AnUnusableVersionFileIsReportedAndEndsTheChain_data();
    void AnUnusableVersionFileIsReportedAndEndsTheChain();
    void AnUnusableManifestIsReportedAndEndsTheChain_data();
    void AnUnusableManifestIsReportedAndEndsTheChain();
    void AFailedManifestReplacesTheOldOne();
    void MissingMirrorsGiveOneBlankHost_data();
    void MissingMirrorsGiveOneBlankHost();
    void TheMirrorListIsSplitAtEverySingleBlank();
    void BothMirrorsAreDrawn();
    void TheSelectedMirrorIsLogged();
    void TheFirstManifestIsAFirstBuild();
    void ALaterManifestIsNoFirstBuildAndWritesNothing();
    void InitAgainRunsASecondChain();
    void UnsafeEntriesAreDroppedOnceWithAWarning();
    void TheVersionFileEndsAtANulByteAndItsUtf8IsRepaired();
    void TheManifestIsThatOfTheBuildThatTheChainHasLearnt();

private:
    static constexpr char c_VersionPath[] = "/test_app/version.json";
    static constexpr char c_ManifestPath[] = "/test_app/builds/build_1/info.json";

    QStringList RequestedPaths() const;
    void RunInit();

    std::unique_ptr<TestSupport::LogCapture> Log;
    std::unique_ptr<TestSupport::ScriptedServer> Server;
    std::unique_ptr<TestSupport::TestApplication> App;
    std::unique_ptr<TestSupport::TestHost> Host;
};

void StartupChainTest::init()
{
    Log = std::make_unique<TestSupport::LogCapture>();
    Server = std::make_unique<TestSupport::ScriptedServer>();
    Server->BecomeDefaultContentServer();
    App = std::make_unique<TestSupport::TestApplication>();
    Host = std::make_unique<TestSupport::TestHost>(*App);
    SampleContent("test_app").Add({"a", "a"}).Publish(*Server);
}

void StartupChainTest::cleanup()
{
    Host.reset();
    App.reset();
    Server.reset();
    Log.reset();
}

QStringList StartupChainTest::RequestedPaths() const
{
    QStringList paths;
    for (auto const& request : Server->Requests())
        paths += QString::fromLatin1(request.Target);
    return paths;
}

void StartupChainTest::RunInit()
{
    App->Init();
    QVERIFY(Host->RunUntilIdle());
}

void StartupChainTest::InitReturnsAtOnceWithStateZero()
{
    App->UISetting.State = ApplicationUISetting::StateInstalled;
    App->Init();
    QCOMPARE(App->UISetting.State, 0);
    QVERIFY(App->UISettingChanged);
    QCOMPARE(Host->SyncCount(), std::size_t{1});
    QCOMPARE(Server->Requests().size(), std::size_t{0});
}

void StartupChainTest::EachStepIsAClosureOfTheApplicationThread()
{
    App->Init();
    // The host's closures decide when a step begins: nothing goes on without them.
    for (int step = 1; step <= 3; ++step) {
        QCOMPARE(Host->SyncCount(), std::size_t{1});
        QVERIFY(Host->RunNextSync());
        QCOMPARE(App->ContentRequests.size(), std::size_t{1});
        QTRY_VERIFY_WITH_TIMEOUT(App->ContentRequests.empty(), TestSupport::TestHost::c_Timeout);
        QCOMPARE(Server->Requests().size(), static_cast<std::size_t>(step));
    }
    // The last step goes on in its callback.
    QCOMPARE(Host->SyncCount(), std::size_t{0});
    QCOMPARE(App->ManifestHooks, 1);
}

void StartupChainTest::FetchesVersionManifestAndMirrorsInThisOrder()
{
    RunInit();
    QCOMPARE(RequestedPaths(), QStringList({c_VersionPath, c_ManifestPath, "/cdns.info"}));
    QCOMPARE(App->RemoteBuild, QString("build_1"));
    QCOMPARE(App->Manifest.BuildStr, QString("Sample build"));
    QCOMPARE(App->Manifest.Files.size(), std::size_t{1});
    QCOMPARE(App->CdnHosts, QStringList(Server->Host()));
    QCOMPARE(App->ContentBaseUrl, Server->BaseUrl());
    QCOMPARE(App->ManifestHooks, 1);
    QCOMPARE(Host->Errors(), QStringList());
}

void StartupChainTest::TheDevelopmentChannelChangesTheVersionFileOnly()
{
    Host->DevChannel = true;
    Server->Serve("/test_app/version_dev.json", R"({"build": "build_1"})");
    RunInit();
    QCOMPARE(RequestedPaths(),
             QStringList({"/test_app/version_dev.json", c_ManifestPath, "/cdns.info"}));
}

void StartupChainTest::ABuildThatIsNoTextAsksForTwoAdjacentSlashes_data()
{
    QTest::addColumn<QByteArray>("Version");
    QTest::newRow("number") << QByteArray(R"({"build": 5})");
    QTest::newRow("missing") << QByteArray("{}");
    QTest::newRow("null") << QByteArray(R"({"build": null})");
    QTest::newRow("empty") << QByteArray(R"({"build": ""})");
}

void StartupChainTest::ABuildThatIsNoTextAsksForTwoAdjacentSlashes()
{
    QFETCH(QByteArray, Version);
    Server->Serve(c_VersionPath, Version);
    RunInit();
    QCOMPARE(RequestedPaths(), QStringList({c_VersionPath, "/test_app/builds//info.json"}));
    QVERIFY(App->RemoteBuild.isEmpty());
}

void StartupChainTest::AnUnusableVersionFileIsReportedAndEndsTheChain_data()
{
    QTest::addColumn<Answer>("Unusable");
    QTest::newRow("missing") << Answer::Status(404, "<html>not found</html>");
    QTest::newRow("missing, with JSON") << Answer::Status(404, "[]");
    QTest::newRow("no JSON") << Answer().Body("build_1");
    QTest::newRow("truncated JSON") << Answer().Body("{\"build\":\"build_1\",\"content\":{");
    QTest::newRow("array") << Answer().Body("[\"build_1\"]");
    QTest::newRow("empty") << Answer().Body("");
    QTest::newRow("server error") << Answer::Status(500, "");
    QTest::newRow("cut in the body") << Answer::Truncated(5);
    QTest::newRow("closed at once") << Answer::ClosedBeforeHeaders();
    QTest::newRow("redirected") << Answer::Redirect("/elsewhere");
}

void StartupChainTest::AnUnusableVersionFileIsReportedAndEndsTheChain()
{
    QFETCH(Answer, Unusable);
    Server->Script(c_VersionPath).Always(Unusable);
    RunInit();
    QCOMPARE(Host->Errors(), QStringList("Failed to get Test Game remote configuration."));
    QCOMPARE(Host->ErrorFlags.load(), 0);
    QCOMPARE(Server->Count(c_ManifestPath), 0);
    QCOMPARE(App->UISetting.State, 0);
    QCOMPARE(App->ManifestHooks, 0);
}

void StartupChainTest::AnUnusableManifestIsReportedAndEndsTheChain_data()
{
    AnUnusableVersionFileIsReportedAndEndsTheChain_data();
}

void StartupChainTest::AnUnusableManifestIsReportedAndEndsTheChain()
{
    QFETCH(Answer, Unusable);
    Server->Script(c_ManifestPath).Always(Unusable);
    RunInit();
    QCOMPARE(Host->Errors(), QStringList("Failed to get Test Game remote build infos."));
    QCOMPARE(Host->ErrorFlags.load(), 0);
    QCOMPARE(Server->Count("/cdns.info"), 0);
    QCOMPARE(App->UISetting.State, 0);
    QCOMPARE(App->ManifestHooks, 0);
    QVERIFY(Host->SettingKeys().isEmpty());
}

void StartupChainTest::AFailedManifestReplacesTheOldOne()
{
    RunInit();
    QCOMPARE(App->Manifest.Files.size(), std::size_t{1});
    QCOMPARE(App->GetAvailableLocales().size(), std::size_t{2});
    Server->Serve(c_ManifestPath, "[]");
    RunInit();
    QVERIFY(App->Manifest.Files.empty());
    QVERIFY(App->GetAvailableLocales().empty());
}

void StartupChainTest::MissingMirrorsGiveOneBlankHost_data()
{
    QTest::addColumn<Answer>("Missing");
    QTest::newRow("empty file") << Answer().Body("");
    QTest::newRow("no file, and no page") << Answer::Status(404, "");
    QTest::newRow("server gone") << Answer::ClosedBeforeHeaders();
}

void StartupChainTest::MissingMirrorsGiveOneBlankHost()
{
    QFETCH(Answer, Missing);
    Server->Script("/cdns.info").Always(Missing);
    RunInit();
    QCOMPARE(App->CdnHosts, QStringList(""));
    QCOMPARE(App->ContentBaseUrl, QString("http:///"));
    QCOMPARE(Host->Errors(), QStringList());
    QCOMPARE(App->ManifestHooks, 1);
}

void StartupChainTest::TheMirrorListIsSplitAtEverySingleBlank()
{
    // One line without an end: a line end belongs to the last name, two blanks enclose a blank one.
    Server->Serve("/cdns.info", "a  b c\n");
    RunInit();
    QCOMPARE(App->CdnHosts, QStringList({"a", "", "b", "c\n"}));
    Server->Serve("/cdns.info", QByteArray("a b\0 c", 6));
    RunInit();
    QCOMPARE(App->CdnHosts, QStringList({"a", "b"}));
}

void StartupChainTest::BothMirrorsAreDrawn()
{
    constexpr int c_Draws = 100;
    Server->Serve("/cdns.info", "first second");
    std::srand(1);
    std::map<QString, int> drawn;
    for (int i = 0; i < c_Draws; ++i) {
        App->Init();
        int const before = App->ManifestHooks;
        QVERIFY(Host->RunUntil([&] { return App->ManifestHooks == before + 1; }));
        ++drawn[App->ContentBaseUrl];
    }
    QCOMPARE(drawn.size(), std::size_t{2});
    // About even: outside of this a fair draw falls once in ten million times.
    QVERIFY(drawn["http://first/"] > 23 && drawn["http://second/"] > 23);
}

void StartupChainTest::TheSelectedMirrorIsLogged()
{
    RunInit();
    QString const text = QString("Selected CDN  \"Test Game\"   \"%1\"").arg(Server->BaseUrl());
    QCOMPARE(Log->Texts("varnholt.startup"), QStringList(text));
    for (auto const& message : Log->Messages())
        QCOMPARE(message.Type, QtWarningMsg);
}

void StartupChainTest::TheFirstManifestIsAFirstBuild()
{
    App->OnManifestHook = [&] { QVERIFY(App->IsFirstManifestBuild); };
    RunInit();
    QVERIFY(App->IsFirstManifestBuild);
    // True by the chain, then false because the game is not installed.
    QCOMPARE(Host->SettingChanges(),
             QStringList({"test_app.ManifestBuilt", "test_app.ManifestBuilt"}));
    QCOMPARE(Host->Setting("test_app.ManifestBuilt"), QVariant(false));
}

void StartupChainTest::ALaterManifestIsNoFirstBuildAndWritesNothing()
{
    Host->SetSetting("test_app.ManifestBuilt", true);
    Host->SetSetting("test_app.Installed", true);
    QTemporaryDir const folder;
    Host->SetSetting("test_app.InstallFolder", folder.path() + "/");
    QVERIFY(TestSupport::WriteFile(folder.path() + "/a", "a"));
    App->IsFirstManifestBuild = true;
    RunInit();
    QVERIFY(!App->IsFirstManifestBuild);
    QCOMPARE(Host->SettingChanges(), QStringList());
}

void StartupChainTest::InitAgainRunsASecondChain()
{
    App->Init();
    App->Init();
    QVERIFY(Host->RunUntilIdle());
    QCOMPARE(Server->Count(c_VersionPath), 2);
    QCOMPARE(App->ManifestHooks, 2);
}

void StartupChainTest::UnsafeEntriesAreDroppedOnceWithAWarning()
{
    SampleContent("test_app")
        .Add({"../outside", "x"})
        .Add({"a", "a"})
        .Add({"/absolute", "x"})
        .Add({"", "x", 0, {}, true})
        .Add({"b", "b", 0, {}, true})
        .Publish(*Server);
    RunInit();
    QCOMPARE(App->Manifest.Files.size(), std::size_t{1});
    QCOMPARE(App->Manifest.StreamedFiles.size(), std::size_t{1});
    QCOMPARE(Log->CountContaining("Manifest entry dropped"), 3);
    QCOMPARE(Log->CountContaining("\"../outside\""), 1);
}

void StartupChainTest::TheVersionFileEndsAtANulByteAndItsUtf8IsRepaired()
{
    QByteArray const version = "{\"build\": \"build_1\", \"note\": \"caf\xE9\"}";
    Server->Serve(c_VersionPath, version + '\0' + "garbage");
    RunInit();
    QCOMPARE(App->RemoteBuild, QString("build_1"));
    Server->Serve(c_VersionPath, QByteArray("{\"build\": \"build\0_1\"}", 21));
    RunInit();
    QCOMPARE(Host->Errors(), QStringList("Failed to get Test Game remote configuration."));
}

// A second chain may have written its own build meanwhile.
void StartupChainTest::TheManifestIsThatOfTheBuildThatTheChainHasLearnt()
{
    App->Init();
    QVERIFY(Host->RunNextSync());
    QTRY_VERIFY_WITH_TIMEOUT(App->ContentRequests.empty(), TestSupport::TestHost::c_Timeout);
    App->RemoteBuild = "of_another_chain";
    QVERIFY(Host->RunUntilIdle());
    QCOMPARE(RequestedPaths(), QStringList({c_VersionPath, c_ManifestPath, "/cdns.info"}));
}

} // namespace Varnholt::Launcher

VARNHOLT_TEST(Varnholt::Launcher::StartupChainTest)
#include "tst_StartupChain.moc"
