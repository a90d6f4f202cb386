#include "Tests/Host/SessionGame.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

namespace Varnholt::TestSupport {

namespace {

constexpr std::size_t c_Few = 30; ///< requests, of more than a hundred files
QByteArray const c_Page = "<html> <body>Some page of a hotel's network</body> </html>\n";

Answer Bytes(QByteArray const& p_Bytes)
{
    return Answer().Body(p_Bytes);
}

} // namespace

/// What a host makes of servers that do not give its files.
class HostServerFailuresTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void AFileThatCannotBeHadIsNamedAndTheRestArrives_data();
    void AFileThatCannotBeHadIsNamedAndTheRestArrives();
    void EachFileThatIsGivenUpIsToldWithItsCause();
    void AFileThatIsRefusedAfterADropIsNamedAndTheRestArrives();
    void ASizeThatCannotBeHadIsNamedAndAskedForAgain();
    void AStalledTransferGoesOnWhereItStopped();
    void AMirrorThatRefusesAmongLivingOnesIsAvoided();
    void AServerThatGoesAwayIsToldAndNothingIsLost();
};

void HostServerFailuresTest::AFileThatCannotBeHadIsNamedAndTheRestArrives_data()
{
    QTest::addColumn<QString>("method"); ///< empty: of the question for its size too
    QTest::addColumn<Answer>("answer");
    QTest::addColumn<QString>("cause");
    Answer const page = Bytes(c_Page);
    auto const row = [](char const* p_Name, char const* p_Method, Answer const& p_Answer,
                        char const* p_Cause) {
        QTest::newRow(p_Name) << QString(p_Method) << p_Answer << QString(p_Cause);
    };
    row("404", "", Answer::Status(404, c_Page), "HTTP status 404 for http://");
    row("404 after its size", "GET ", Answer::Status(404, c_Page), "HTTP status 404 for http://");
    row("403", "", Answer::Status(403, ""), "HTTP status 403 for http://");
    row("a page", "", page, "not what the build announces");
    row("wrong bytes", "GET ", Bytes(QByteArray(60000, 'x')), "not what the build announces");
    row("nothing", "", Bytes(""), "not what the build announces");
}

void HostServerFailuresTest::AFileThatCannotBeHadIsNamedAndTheRestArrives()
{
    QFETCH(QString, method);
    QFETCH(Answer, answer);
    SessionGame game;
    game.AddFiles().Publish();
    QString const file = QStringLiteral("Data/base.MPQ");
    QString const path = game.Content.ServerPath(file);
    game.Server.Script(method + path).Always(answer);
    QVERIFY(game.Open());
    QCOMPARE(game.Install(), QString("files-given-up"));
    QCOMPARE(game.Result().Problem->ExitStatus(), 4);
    QVERIFY2(game.Sentence().contains(file), qPrintable(game.Sentence()));
    QFETCH(QString, cause);
    QVERIFY2(game.Sentence().contains(cause), qPrintable(game.Sentence()));
    QCOMPARE(game.Wrong(), QStringList(file));
    QVERIFY(game.IsMarkedUnfinished());

    game.Server.ClearScript(method + path);
    game.ForgetRequests();
    QCOMPARE(game.Run(RequestType::Update), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
    QStringList asked = game.Requested(); // its size, and itself
    asked.removeDuplicates();
    QCOMPARE(asked, QStringList(file));
    QVERIFY(!game.IsMarkedUnfinished());
}

void HostServerFailuresTest::EachFileThatIsGivenUpIsToldWithItsCause()
{
    SessionGame game;
    game.AddFiles().Publish().PutInstalled();
    for (char const* const file : {"Data/base.MPQ", "readme.txt", "Data/streamed 1.MPQ"})
        QVERIFY(QFile::remove(game.Path(file)));
    game.Put("Data/streamed 1.MPQ/x", "of the user");
    game.Server.Script(game.Content.ServerPath("Data/base.MPQ")).Always(Answer::Status(404));
    game.Server.Script("GET " + game.Content.ServerPath("readme.txt")).Always(Bytes("damaged"));
    QVERIFY(game.Open());
    QCOMPARE(game.Run(RequestType::Update), QString("folder-blocks-file"));
    QStringList found;
    for (Host::FileFinding const& finding : game.Result().Findings) {
        found +=
            QString("%1 %2 %3").arg(finding.CauseText(), finding.Path, finding.Problem.Sentence());
        QVERIFY(!finding.Problem.Remedy().isEmpty());
    }
    found.sort();
    QCOMPARE(found.size(), 3);
    QCOMPARE(found[0], "blocked Data/streamed 1.MPQ a folder stands where the file " + game.Folder +
                           "Data/streamed 1.MPQ belongs");
    QVERIFY2(found[1].startsWith("missing Data/base.MPQ the file Data/base.MPQ could not be "
                                 "fetched (HTTP status 404 for http://"),
             qPrintable(found[1]));
    QCOMPARE(found[2], QString("missing readme.txt the file readme.txt could not be fetched (what "
                               "the server gave is not what the build announces)"));
    QCOMPARE(game.Run(RequestType::Verify), QString("files-wrong"));
    QCOMPARE(game.Result().Findings.size(), std::size_t(3));
    QCOMPARE(game.Result().Findings[0].Problem.Identifier(), QString("files-wrong"));
    QCOMPARE(game.Result().Findings[2].Problem.Identifier(), QString("folder-blocks-file"));
}

void HostServerFailuresTest::AFileThatIsRefusedAfterADropIsNamedAndTheRestArrives()
{
    constexpr int c_Arrived = 20000;

    SessionGame game;
    game.AddFiles().Publish();
    QString const file = QStringLiteral("Data/base.MPQ");
    QString const path = "GET " + game.Content.ServerPath(file);
    // Not before the module has what came: the door is ahead of it.
    game.Server.Script(path)
        .Then(Answer::Truncated(c_Arrived))
        .Then(Answer::Status(404, c_Page).Held())
        .Always(Answer::Status(404, c_Page));
    QVERIFY(game.Open());
    game.Start(RequestType::Install, game.Folder);
    QVERIFY(game.WaitForPart(file, c_Arrived));
    game.Server.OpenGate(game.Content.ServerPath(file));
    QCOMPARE(game.End(), QString("files-given-up"));
    QVERIFY2(game.Sentence().contains(file), qPrintable(game.Sentence()));
    QVERIFY2(game.Sentence().contains("HTTP status 404"), qPrintable(game.Sentence()));
    QCOMPARE(game.Wrong(), QStringList(file));
    QCOMPARE(game.Read(file + ".part").size(), c_Arrived);

    game.Server.ClearScript(path);
    QCOMPARE(game.Run(RequestType::Update), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
    QVERIFY(game.WasResumedAt(file, c_Arrived));
}

void HostServerFailuresTest::ASizeThatCannotBeHadIsNamedAndAskedForAgain()
{
    SessionGame game;
    game.AddFiles().Publish();
    game.Options.RetryForMilliseconds = 3'000;
    QString const path = game.Content.ServerPath("readme.txt");
    game.Server.Script(path).Always(Answer::ClosedBeforeHeaders());
    QVERIFY(game.Open());
    QCOMPARE(game.Install(), QString("server-unreachable"));
    QVERIFY2(game.Sentence().contains(game.Server.Url(path)), qPrintable(game.Sentence()));
    QVERIFY(game.HasWaitedFor("connection closed before the end"));

    game.Server.ClearScript(path);
    game.Server.Script(path).Then(Answer::ClosedBeforeHeaders(), 4);
    QCOMPARE(game.Install(), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
}

void HostServerFailuresTest::AStalledTransferGoesOnWhereItStopped()
{
    SessionGame game;
    game.AddFiles().Publish();
    game.Options.StallMilliseconds = 3'000; // shorter silences are not told
    game.HoldContent("Data/base.MPQ", 25000);
    QVERIFY(game.Open());
    QCOMPARE(game.Install(), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
    QVERIFY(game.WasResumedAt("Data/base.MPQ", 25000));
    QVERIFY(game.HasWaitedFor("no answer in time"));
    QCOMPARE(game.Notices, QStringList());
}

void HostServerFailuresTest::AMirrorThatRefusesAmongLivingOnesIsAvoided()
{
    SessionGame game;
    game.AddFiles();
    for (int i = 0; i < 100; ++i)
        game.Content.Add({QString("Data/more %1").arg(i), QByteArray(100 + i, 'x')});
    ScriptedServer refusing;
    ScriptedServer alive;
    game.Content.Publish(game.Server, {&refusing, &alive});
    refusing.Script("*").Always(Answer::Status(403, c_Page));
    game.Options.RetryPauseMilliseconds = 500; // a busy machine takes long for so many files
    QVERIFY(game.Open());
    QCOMPARE(game.Install(), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
    QVERIFY2(refusing.Requests().size() < c_Few,
             qPrintable(QString::number(refusing.Requests().size())));
}

void HostServerFailuresTest::AServerThatGoesAwayIsToldAndNothingIsLost()
{
    SessionGame game;
    game.AddFiles().Publish();
    game.Options.RetryForMilliseconds = 1'000;
    QString const first = game.HoldContent("Data/first build.MPQ", 10000);
    QVERIFY(game.Open());
    game.Start(RequestType::Install, game.Folder);
    QVERIFY(game.WaitForPart("Data/first build.MPQ", 10000));
    game.Server.Stop();
    QCOMPARE(game.End(), QString("server-unreachable"));
    QCOMPARE(game.Result().Problem->ExitStatus(), 5);
    QVERIFY2(game.Sentence().contains(game.Server.Host()), qPrintable(game.Sentence()));
    QVERIFY(game.Has("Data/base.MPQ"));

    ScriptedServer another;
    game.Content.Publish(another);
    game.Options.ContentUrl = another.BaseUrl();
    QVERIFY(game.Open());
    QCOMPARE(game.Run(RequestType::Update), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
    bool wasResumed = false;
    for (RecordedRequest const& request : another.Requests(first))
        wasResumed = wasResumed || request.Header("Range").startsWith("bytes=10000-");
    QVERIFY(wasResumed);
    QCOMPARE(another.Count(game.Content.ServerPath("Data/base.MPQ")), 0);
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::HostServerFailuresTest)
#include "tst_HostServerFailures.moc"
