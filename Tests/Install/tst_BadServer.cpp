#include "Tests/Install/PluginGame.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

namespace Varnholt::TestSupport {

namespace {

QByteArray const c_Page = "<html><body>Some page of a hotel's network</body></html>";

Answer Page()
{
    Answer answer;
    return answer.Body(c_Page);
}

Answer Bytes(QByteArray const& p_Bytes)
{
    Answer answer;
    return answer.Body(p_Bytes);
}

void AddAFewFiles(SampleContent& p_Content)
{
    p_Content.Add({"a", SampleContent::Bytes(4000), 0x20}).Add({"b", "b"}).Add({"c c", "c"});
    p_Content.Add({"s", SampleContent::Bytes(3000, 2), 0, {}, true});
}

/// Answers that are no version file and no manifest, whatever they are asked for.
void AddBadAnswers()
{
    QTest::addColumn<Answer>("answer");
    QTest::newRow("404") << Answer::Status(404, c_Page);
    QTest::newRow("500") << Answer::Status(500, c_Page);
    QTest::newRow("404 with JSON that is an array") << Answer::Status(404, "[]");
    QTest::newRow("a page instead") << Page();
    QTest::newRow("nothing") << Bytes("");
    QTest::newRow("truncated JSON") << Bytes("{\"build\":\"build_1\",\"content\":{\"base_mac\":[{");
    QTest::newRow("corrupt JSON") << Bytes("{\"build\";\"build_1\"}");
    QTest::newRow("a number") << Bytes("5");
    QTest::newRow("cut in the body") << Answer::Truncated(5);
    QTest::newRow("closed at once") << Answer::ClosedBeforeHeaders();
    QTest::newRow("redirected") << Answer::Redirect("/elsewhere");
}

} // namespace

class BadServerTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void AnUnreachableServerIsReportedAndTheNextStartGoesWell();
    void ABadVersionFileIsReported_data() { AddBadAnswers(); }
    void ABadVersionFileIsReported();
    void ABadManifestIsReportedAndTouchesNothing_data() { AddBadAnswers(); }
    void ABadManifestIsReportedAndTouchesNothing();
    void AManifestOfWrongTypesInstallsNothing_data();
    void AManifestOfWrongTypesInstallsNothing();
    void WithoutHostsTheDefaultServerServes_data();
    void WithoutHostsTheDefaultServerServes();
    void AHostListThatIsAPageStopsTheRunAndLosesNothing();
    void ABadRealmListLeavesTheLineAsItIs_data();
    void ABadRealmListLeavesTheLineAsItIs();
};

void BadServerTest::AnUnreachableServerIsReportedAndTheNextStartGoesWell()
{
    PluginGame game;
    qputenv("VARNHOLT_CONTENT_BASE_URL", ScriptedServer::RefusingUrl("/").toUtf8());
    QVERIFY(game.Init());
    QCOMPARE(game.Host().Errors(),
             QStringList("Failed to get Mists of Pandaria remote configuration."));
    QCOMPARE(game.App().UISetting.State, 0);
    game.Server.BecomeDefaultContentServer();
    AddAFewFiles(game.Content);
    game.Content.Publish(game.Server);
    QVERIFY(game.Init());
    QVERIFY(game.Install());
    QCOMPARE(game.Wrong(), QStringList());
}

void BadServerTest::ABadVersionFileIsReported()
{
    QFETCH(Answer, answer);
    PluginGame game;
    AddAFewFiles(game.Content);
    game.Content.Publish(game.Server);
    game.Server.Script(game.Content.VersionPath()).Always(answer);
    QVERIFY(game.Init());
    QCOMPARE(game.Host().Errors(),
             QStringList("Failed to get Mists of Pandaria remote configuration."));
    QCOMPARE(game.Host().ErrorFlags.load(), 0);
    QCOMPARE(game.App().UISetting.State, 0);
    QCOMPARE(game.Server.Count(game.Content.ManifestPath()), 0);
}

void BadServerTest::ABadManifestIsReportedAndTouchesNothing()
{
    QFETCH(Answer, answer);
    PluginGame game;
    AddAFewFiles(game.Content);
    game.Content.Publish(game.Server);
    QVERIFY(game.Init());
    QVERIFY(game.Install());
    game.Restart();
    game.Server.Script(game.Content.ManifestPath()).Always(answer);
    game.ForgetRequests();
    game.Put("b", "damaged");
    QVERIFY(game.Init());
    QCOMPARE(game.Host().Errors(),
             QStringList("Failed to get Mists of Pandaria remote build infos."));
    QCOMPARE(game.App().UISetting.State, 0);
    QCOMPARE(game.Requested(), QStringList());
    QCOMPARE(game.Server.Count("/cdns.info"), 1); // of the first start
    QCOMPARE(game.Wrong(), QStringList("b"));
    game.Server.ClearScript(game.Content.ManifestPath());
    QVERIFY(game.Init());
    QCOMPARE(game.Wrong(), QStringList());
}

void BadServerTest::AManifestOfWrongTypesInstallsNothing_data()
{
    QTest::addColumn<QByteArray>("manifest");
    QTest::newRow("empty object") << QByteArray("{}");
    QTest::newRow("files are a text") << QByteArray("{\"content\":{\"base_mac\":\"a\"}}");
    QTest::newRow("content is an array") << QByteArray("{\"content\":[1,2]}");
    QTest::newRow("entries are numbers")
        << QByteArray("{\"content\":{\"base_mac\":[1,null,[]]},\"streamed_content\":[true]}");
    QTest::newRow("values are numbers")
        << QByteArray("{\"build_str\":5,\"content\":{\"base_mac\":[{\"path\":5,\"md5\":[]}]}}");
}

void BadServerTest::AManifestOfWrongTypesInstallsNothing()
{
    QFETCH(QByteArray, manifest);
    PluginGame game;
    game.Content.Publish(game.Server);
    game.Server.Serve(game.Content.ManifestPath(), manifest);
    QVERIFY(game.Init());
    QVERIFY(game.Install());
    QCOMPARE(game.Requested(), QStringList());
    QCOMPARE(game.FilesEndingWith(".part"), QStringList());
    QCOMPARE(game.App().UISetting.State, 2);
}

void BadServerTest::WithoutHostsTheDefaultServerServes_data()
{
    QTest::addColumn<Answer>("answer");
    QTest::newRow("empty list") << Bytes("");
    QTest::newRow("404 without a page") << Answer::Status(404, "");
    QTest::newRow("closed at once") << Answer::ClosedBeforeHeaders();
}

void BadServerTest::WithoutHostsTheDefaultServerServes()
{
    QFETCH(Answer, answer);
    PluginGame game;
    AddAFewFiles(game.Content);
    game.Content.Publish(game.Server);
    game.Server.Script("/cdns.info").Always(answer);
    QVERIFY(game.Init());
    QVERIFY(game.Install());
    QCOMPARE(game.Wrong(), QStringList());
}

void BadServerTest::AHostListThatIsAPageStopsTheRunAndLosesNothing()
{
    PluginGame game;
    AddAFewFiles(game.Content);
    game.Content.Publish(game.Server);
    game.Server.Script("/cdns.info").Then(Bytes("<html> <body>page</body> </html>"));
    QVERIFY(game.Init());
    QVERIFY(game.Install());
    QCOMPARE(game.Progress().Mode, 2);
    QCOMPARE(game.FilesEndingWith(".part"), QStringList());
    QCOMPARE(game.Read("ToDownloadBase.db"), QByteArray("a\n"));
    QVERIFY(game.Init());
    QVERIFY(game.Repair());
    QCOMPARE(game.Wrong(), QStringList());
}

void BadServerTest::ABadRealmListLeavesTheLineAsItIs_data()
{
    QTest::addColumn<Answer>("answer");
    QTest::newRow("404") << Answer::Status(404, c_Page);
    QTest::newRow("500") << Answer::Status(500, c_Page);
    QTest::newRow("closed at once") << Answer::ClosedBeforeHeaders();
    QTest::newRow("cut in the body") << Answer::Truncated(5);
    QTest::newRow("redirected") << Answer::Redirect("/elsewhere");
}

void BadServerTest::ABadRealmListLeavesTheLineAsItIs()
{
    QFETCH(Answer, answer);
    PluginGame game;
    game.Content.Add({"a", "a"}).Publish(game.Server);
    game.Server.Script(game.Content.RealmListPath()).Always(answer);
    game.Put("WTF/Config.wtf", "SET realmlist \"of before\"\n");
    QVERIFY(game.Init());
    QVERIFY(game.Install());
    QVERIFY(game.Read("WTF/Config.wtf").contains("SET realmlist \"of before\"\n"));
    QCOMPARE(game.Wrong(), QStringList());
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::BadServerTest)
#include "tst_BadServer.moc"
