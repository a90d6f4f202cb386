#include "Tests/Host/HostProcess.hpp"
#include "Tests/Host/JsonReport.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QUrl>
#include <QtTest>

#include <csignal>

namespace Varnholt::TestSupport {

/// The question whether the servers of content are in order.
class HostMirrorsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void EachServerIsAskedTheDefaultOneFirst();
    void PeopleAreToldALinePerServer();
    void NoFileIsFetched();
    void AServerThatIsNotInOrderIsNamed_data();
    void AServerThatIsNotInOrderIsNamed();
    void ADeadMirrorDoesNotKeepTheOthersFromBeingAsked();
    void AServerThatIsListedTwiceIsAskedOnce();
    void TheDefaultServerIsJudgedToo();
    void WithoutAFileOfTheMirrorsNoPieceIsAskedFor();
    void AnUnreachableDefaultServerIsTold();
    void TheQuestionCanBeInterrupted();

private:
    Outcome Run() const { return HostProcess(*Game, {"--json", "mirrors"}).Finish(); }
    QString File() const { return Game->Content.ServerPath("Data/base.MPQ"); }
    void PublishEverywhere() const;

    std::unique_ptr<HostGame> Game;
    std::unique_ptr<ScriptedServer> First;
    std::unique_ptr<ScriptedServer> Second;
};

void HostMirrorsTest::init()
{
    Game = std::make_unique<HostGame>();
    First = std::make_unique<ScriptedServer>();
    Second = std::make_unique<ScriptedServer>();
    Game->AddFiles();
    PublishEverywhere();
}

void HostMirrorsTest::cleanup()
{
    Second.reset();
    First.reset();
    Game.reset();
}

void HostMirrorsTest::PublishEverywhere() const
{
    Game->Content.Publish(Game->Server, {First.get(), Second.get()});
    for (ScriptedServer* const mirror : {First.get(), Second.get()})
        mirror->Serve(Game->Content.ManifestPath(), Game->Content.ManifestBytes());
}

void HostMirrorsTest::EachServerIsAskedTheDefaultOneFirst()
{
    Outcome const outcome = Run();
    QCOMPARE(outcome.Status, 0);
    JsonReport const report(outcome.Out);
    QCOMPARE(report.Texts("mirror", "mirror"),
             (QStringList{Game->Server.Host(), First->Host(), Second->Host()}));
    for (QJsonObject const& line : report.Of("mirror")) {
        for (char const* const key : {"reachable", "ranges", "sameBuild"})
            QVERIFY2(line[QLatin1String(key)].toBool(), key);
        QVERIFY(line["milliseconds"].toInt(-1) >= 0);
        QVERIFY(!line.contains("cause"));
    }
    QVERIFY(report.Phases().contains("asking-mirrors"));
}

void HostMirrorsTest::PeopleAreToldALinePerServer()
{
    Second->Stop();
    Outcome const outcome = HostProcess(*Game, {"-q", "mirrors"}).Finish();
    QStringList const lines = outcome.Out.split('\n');
    QCOMPARE(lines.size(), 4);
    QRegularExpression const inOrder("^127\\.0\\.0\\.1:\\d+  in order, \\d+ ms$");
    QVERIFY2(inOrder.match(lines[0]).hasMatch(), qPrintable(lines[0]));
    QVERIFY2(inOrder.match(lines[1]).hasMatch(), qPrintable(lines[1]));
    QCOMPARE(lines[2], Second->Host() + "  connection refused");
    QCOMPARE(outcome.Err, "varnholt-host: 1 of 3 servers are not in order (" + Second->Host() +
                              "); tell who runs them.\n");
    QCOMPARE(outcome.Status, 5);
}

void HostMirrorsTest::NoFileIsFetched()
{
    First->Script(File()).Always(Answer::IgnoringRange());
    QCOMPARE(Run().Status, 5);
    for (ScriptedServer const* const server : {&Game->Server, Second.get()}) {
        QCOMPARE(server->Requests(File()).size(), std::size_t(1));
        QCOMPARE(server->Requests(File())[0].Header("Range"), QByteArray("bytes=0-0"));
        QVERIFY(server->BodyBytes(File()) <= 1);
    }
    QVERIFY(!QFileInfo::exists(Game->Folder));
}

void HostMirrorsTest::AServerThatIsNotInOrderIsNamed_data()
{
    QTest::addColumn<bool>("manifest");
    QTest::addColumn<Answer>("answer");
    QTest::addColumn<QString>("judgement"); // reachable, ranges, sameBuild
    QTest::addColumn<QString>("cause");
    auto const row = [](char const* p_Name, bool p_Manifest, Answer const& p_Answer,
                        char const* p_Judgement, char const* p_Cause) {
        QTest::newRow(p_Name) << p_Manifest << p_Answer << p_Judgement << p_Cause;
    };
    row("without ranges", false, Answer::IgnoringRange(), "101",
        "it answers a range with status 200");
    row("without the file", false, Answer::Status(404), "101",
        "it answers a range with status 404");
    row("another build", true, Answer::Normal().Body("{}"), "110",
        "its manifest is not the default server's");
    row("without the manifest", true, Answer::Status(404), "100", "HTTP status 404");
    row("out of order", true, Answer::Status(503), "100", "HTTP status 503");
    row("hanging up", true, Answer::ClosedBeforeHeaders(), "000",
        "connection closed before the end");
}

void HostMirrorsTest::AServerThatIsNotInOrderIsNamed()
{
    QFETCH(bool, manifest);
    QFETCH(Answer, answer);
    QFETCH(QString, judgement);
    QFETCH(QString, cause);
    First->Script(manifest ? Game->Content.ManifestPath() : File()).Always(answer);
    Outcome const outcome = Run();
    JsonReport const report(outcome.Out);
    QCOMPARE(report.Of("mirror").size(), std::size_t(3));
    QJsonObject const line = report.Of("mirror")[1];
    QCOMPARE(line["mirror"].toString(), First->Host());
    QString found;
    for (char const* const key : {"reachable", "ranges", "sameBuild"})
        found += line[QLatin1String(key)].toBool() ? '1' : '0';
    QCOMPARE(found, judgement);
    QCOMPARE(line["cause"].toString(), cause);
    QCOMPARE(report.Last()["error"].toString(), QString("mirrors-wrong"));
    QVERIFY(report.Last()["text"].toString().contains("1 of 3"));
    QCOMPARE(outcome.Status, 5);
}

void HostMirrorsTest::ADeadMirrorDoesNotKeepTheOthersFromBeingAsked()
{
    QString const dead = QUrl(ScriptedServer::RefusingUrl("/")).authority();
    Game->Server.Serve("/cdns.info", (dead + ' ' + Second->Host()).toUtf8());
    Outcome const outcome = Run();
    JsonReport const report(outcome.Out);
    QCOMPARE(report.Texts("mirror", "mirror"),
             (QStringList{Game->Server.Host(), dead, Second->Host()}));
    QCOMPARE(report.Texts("mirror", "reachable"), (QStringList{"true", "false", "true"}));
    QCOMPARE(report.Of("mirror")[1]["cause"].toString(), QString("connection refused"));
    QVERIFY(!report.Of("mirror")[1].contains("milliseconds"));
    QCOMPARE(outcome.Status, 5);
}

void HostMirrorsTest::AServerThatIsListedTwiceIsAskedOnce()
{
    QString const host = First->Host();
    QStringList const listed{host, Game->Server.Host(), host, "https://" + host,
                             host + "/another/path"};
    Game->Server.Serve("/cdns.info", listed.join(' ').toUtf8());
    Outcome const outcome = Run();
    QCOMPARE(JsonReport(outcome.Out).Texts("mirror", "mirror"),
             (QStringList{Game->Server.Host(), First->Host()}));
    QCOMPARE(First->Count(Game->Content.ManifestPath()), 1);
    QCOMPARE(outcome.Status, 0);
}

void HostMirrorsTest::TheDefaultServerIsJudgedToo()
{
    Game->Server.Script(File()).Always(Answer::IgnoringRange());
    Outcome const outcome = Run();
    QCOMPARE(JsonReport(outcome.Out).Texts("mirror", "ranges"),
             (QStringList{"false", "true", "true"}));
    QCOMPARE(outcome.Status, 5);
}

void HostMirrorsTest::WithoutAFileOfTheMirrorsNoPieceIsAskedFor()
{
    Game->Content.Files.clear();
    Game->Content.Add({"empty.txt", ""});
    PublishEverywhere();
    Outcome const outcome = Run();
    QCOMPARE(outcome.Status, 0);
    QCOMPARE(JsonReport(outcome.Out).Of("mirror").size(), std::size_t(3));
    QCOMPARE(First->Count(Game->Content.ServerPath("empty.txt")), 0);
}

void HostMirrorsTest::AnUnreachableDefaultServerIsTold()
{
    Game->Server.Stop();
    Outcome const outcome = Run();
    QCOMPARE(JsonReport(outcome.Out).Last()["error"].toString(), QString("server-unreachable"));
    QCOMPARE(outcome.Status, 5);
}

void HostMirrorsTest::TheQuestionCanBeInterrupted()
{
    First->Script("*").Always(Answer::SilentBeforeHeaders());
    HostProcess process(*Game, {"--json", "mirrors"});
    QVERIFY(process.WaitUntil([&] { return !First->Requests().empty(); }));
    process.Signal(SIGINT);
    Outcome const outcome = process.Finish();
    QCOMPARE(JsonReport(outcome.Out).Last()["error"].toString(), QString("interrupted"));
    QCOMPARE(outcome.Status, 130);
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::HostMirrorsTest)
#include "tst_HostMirrors.moc"
