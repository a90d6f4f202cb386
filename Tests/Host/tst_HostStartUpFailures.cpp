#include "Tests/Host/HostProcess.hpp"
#include "Tests/Host/SessionGame.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

namespace Varnholt::TestSupport {

namespace {

QByteArray const c_Page = "<html> <body>Some page of a hotel's network</body> </html>\n";

Answer Bytes(QByteArray const& p_Bytes)
{
    return Answer().Body(p_Bytes);
}

} // namespace

/// What a host tells of a server whose few small files are not in order.
class HostStartUpFailuresTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void AnUnreachableServerIsNamed_data();
    void AnUnreachableServerIsNamed();
    void ABadVersionFileIsNamed_data() { AddBadAnswers(); }
    void ABadVersionFileIsNamed() { CheckStartUp(&SampleContent::VersionPath); }
    void ABadManifestIsNamed_data() { AddBadAnswers(); }
    void ABadManifestIsNamed() { CheckStartUp(&SampleContent::ManifestPath); }
    void AVersionFileThatNamesNoBuildIsNamed();
    void AfterAFailedStartTheNextOneGoesWell();
    void ASilentServerIsGivenUp();
    void ASilentStartIsBegunAgain();
    void ABadHostListIsReplacedByTheDefaultServer_data();
    void ABadHostListIsReplacedByTheDefaultServer();
    void ARefusedRealmListLeavesTheGamesOwn();

private:
    static void AddBadAnswers();
    static void CheckStartUp(QString (SampleContent::*p_Path)() const);
};

void HostStartUpFailuresTest::AnUnreachableServerIsNamed_data()
{
    QTest::addColumn<QString>("url");
    QTest::addColumn<QString>("cause");
    QTest::newRow("no server") << ScriptedServer::RefusingUrl("/") << "connection refused";
    QTest::newRow("without a slash")
        << ScriptedServer::RefusingUrl("/").chopped(1) << "connection refused";
    QTest::newRow("no such host") << "http://nowhere.invalid/"
                                  << "host not found";
}

void HostStartUpFailuresTest::AnUnreachableServerIsNamed()
{
    QFETCH(QString, url);
    QFETCH(QString, cause);
    HostGame game;
    for (QStringList const& command :
         {QStringList{"install", game.Folder}, QStringList("locales"), QStringList("update")}) {
        Outcome const outcome = HostProcess(game, {"--settings", game.SettingsFile},
                                            QStringList{"-q", "--content-url", url} + command)
                                    .Finish();
        QCOMPARE(outcome.Out, QString());
        QVERIFY2(IsOneSentence(outcome.Err), qPrintable(outcome.Err));
        if (command.front() == "update") {
            QCOMPARE(outcome.Status, 1); // not installed is found out without a server
            continue;
        }
        QVERIFY2(outcome.Err.contains(url), qPrintable(outcome.Err));
        QVERIFY2(outcome.Err.contains("version.json cannot be fetched (" + cause + ')'),
                 qPrintable(outcome.Err));
        QCOMPARE(outcome.Status, 5);
    }
    QVERIFY(!QFileInfo::exists(game.Folder));
}

void HostStartUpFailuresTest::AddBadAnswers()
{
    QTest::addColumn<Answer>("answer");
    QTest::addColumn<QString>("cause");
    QTest::newRow("404") << Answer::Status(404, c_Page) << "HTTP status 404";
    QTest::newRow("403") << Answer::Status(403, "") << "HTTP status 403";
    QTest::newRow("500") << Answer::Status(500, c_Page) << "HTTP status 500";
    QTest::newRow("a page instead") << Bytes(c_Page) << "page of another kind";
    QTest::newRow("nothing") << Bytes("") << "damaged";
    QTest::newRow("truncated JSON") << Bytes("{\"build\":\"build_1\",\"conte") << "damaged";
    QTest::newRow("corrupt JSON") << Bytes("{\"build\";\"build_1\"}") << "damaged";
    QTest::newRow("an array") << Bytes("[]") << "damaged";
    QTest::newRow("cut in the body") << Answer::Truncated(5) << "connection closed before the end";
    QTest::newRow("closed at once")
        << Answer::ClosedBeforeHeaders() << "connection closed before the end";
    QTest::newRow("redirected to nothing") << Answer::Redirect("/elsewhere") << "HTTP status 404";
}

void HostStartUpFailuresTest::CheckStartUp(QString (SampleContent::*p_Path)() const)
{
    QFETCH(Answer, answer);
    QFETCH(QString, cause);
    HostGame game;
    game.AddFiles().Publish();
    QString const path = (game.Content.*p_Path)();
    game.Server.Script(path).Always(answer);
    Outcome const outcome = HostProcess(game, {"-q", "install", game.Folder}).Finish();
    QCOMPARE(outcome.Out, QString());
    QVERIFY2(IsOneSentence(outcome.Err), qPrintable(outcome.Err));
    QVERIFY2(outcome.Err.contains(game.Server.Url(path)), qPrintable(outcome.Err));
    QVERIFY2(outcome.Err.contains(cause), qPrintable(outcome.Err));
    QCOMPARE(outcome.Status, 5);
    QVERIFY(!QFileInfo::exists(game.Folder));
    QCOMPARE(game.Requested(), QStringList());
}

void HostStartUpFailuresTest::AVersionFileThatNamesNoBuildIsNamed()
{
    HostGame game;
    game.AddFiles().Publish();
    game.Server.Serve(game.Content.VersionPath(), "{}");
    Outcome const outcome = HostProcess(game, {"-q", "install", game.Folder}).Finish();
    QCOMPARE(outcome.Status, 5);
    QVERIFY2(outcome.Err.contains("version.json is not usable (it names no build)"),
             qPrintable(outcome.Err));
}

void HostStartUpFailuresTest::AfterAFailedStartTheNextOneGoesWell()
{
    SessionGame game;
    game.AddFiles().Publish().PutInstalled();
    game.Put("readme.txt", "damaged");
    QVERIFY(game.Open());
    for (QString const& path : {game.Content.VersionPath(), game.Content.ManifestPath()}) {
        game.Server.Script(path).Then(Answer::Status(500), 3);
        QCOMPARE(game.Run(RequestType::Update), QString("server-refusal"));
        QCOMPARE(game.Wrong(), QStringList("readme.txt"));
        QVERIFY(game.Status().IsInstalled);
    }
    QCOMPARE(game.Run(RequestType::Update), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
}

void HostStartUpFailuresTest::ASilentServerIsGivenUp()
{
    for (bool const manifest : {false, true}) {
        SessionGame game;
        game.AddFiles().Publish();
        game.Options.StallMilliseconds = 1'000;
        game.Options.RetryForMilliseconds = 3'000;
        QString const path = manifest ? game.Content.ManifestPath() : game.Content.VersionPath();
        game.Server.Script(path).Always(Answer::SilentBeforeHeaders());
        QVERIFY(game.Open());
        QCOMPARE(game.Install(), QString("server-silent"));
        QVERIFY(game.Server.Count(path) > 1);
        QVERIFY(game.HasWaitedFor("no answer in time"));
        QVERIFY2(game.Sentence().contains(game.Server.BaseUrl()), qPrintable(game.Sentence()));
        QCOMPARE(game.Result().Problem->ExitStatus(), 5);
    }
}

void HostStartUpFailuresTest::ASilentStartIsBegunAgain()
{
    SessionGame game;
    game.AddFiles().Publish();
    game.Options.StallMilliseconds = 1'000;
    game.Server.Script(game.Content.VersionPath())
        .Then(Answer::SilentBeforeHeaders())
        .Then(Answer::Normal());
    QVERIFY(game.Open());
    QCOMPARE(game.Install(), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
}

void HostStartUpFailuresTest::ABadHostListIsReplacedByTheDefaultServer_data()
{
    QTest::addColumn<Answer>("answer");
    QTest::addColumn<QString>("notice");
    QTest::newRow("404") << Answer::Status(404, c_Page) << "/cdns.info (HTTP status 404);";
    QTest::newRow("500") << Answer::Status(500, "") << "/cdns.info (HTTP status 500);";
    QTest::newRow("a page") << Bytes(c_Page) << "The list of mirrors is damaged;";
    QTest::newRow("closed at once")
        << Answer::ClosedBeforeHeaders() << "/cdns.info cannot be fetched";
    QTest::newRow("cut") << Answer::Truncated(4)
                         << "/cdns.info cannot be fetched (connection closed";
    QTest::newRow("redirected to nothing")
        << Answer::Redirect("/elsewhere") << "/cdns.info (HTTP status 404)";
    QTest::newRow("empty") << Bytes("") << "";
    QTest::newRow("blanks") << Bytes("  \n") << "";
}

void HostStartUpFailuresTest::ABadHostListIsReplacedByTheDefaultServer()
{
    QFETCH(Answer, answer);
    QFETCH(QString, notice);
    SessionGame game;
    game.AddFiles().Publish();
    game.Server.Script("/cdns.info").Always(answer);
    QVERIFY(game.Open());
    QCOMPARE(game.Install(), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
    QCOMPARE(game.Notices.size(), notice.isEmpty() ? 0 : 1);
    QVERIFY2(game.Notices.value(0).contains(notice), qPrintable(game.Notices.value(0)));
    QVERIFY(notice.isEmpty() ||
            game.Notices[0].endsWith("the files come from the default server."));
}

void HostStartUpFailuresTest::ARefusedRealmListLeavesTheGamesOwn()
{
    QDateTime const before = QDateTime::currentDateTimeUtc();
    SessionGame game;
    game.AddFiles().Publish().PutInstalled();
    game.Put("WTF/Config.wtf", "SET realmlist \"of before\"\n");
    game.Server.Script(game.Content.RealmListPath()).Always(Answer::Status(404, c_Page));
    QVERIFY(game.Open());
    QCOMPARE(game.Run(RequestType::Update), QString("done"));
    QVERIFY(game.Read("WTF/Config.wtf").contains("SET realmlist \"of before\"\n"));
    QCOMPARE(game.Notices.size(), 1);
    QVERIFY2(game.Notices[0].contains("/realmlist.info (HTTP status 404);"),
             qPrintable(game.Notices[0]));
    Host::Notice const& notice = game.NoticeValues[0];
    QCOMPARE(notice.Kind, Host::NoticeKind::RealmListKept);
    QVERIFY(before <= notice.Time && notice.Time <= QDateTime::currentDateTimeUtc());
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::HostStartUpFailuresTest)
#include "tst_HostStartUpFailures.moc"
