#include "Tests/Gateway/GatewayBench.hpp"
#include "Tests/Support/Response.hpp"
#include "Tests/Support/SampleContent.hpp"
#include "Tests/Support/TestMain.hpp"

#include <atomic>
#include <memory>

namespace Varnholt::TestSupport {

namespace {

using Kind = FetchProblem::Type;
using namespace std::chrono_literals;

QByteArray const c_Version = "game/version.json";
QByteArray const c_Manifest = "game/builds/build_1/info.json";
QByteArray const c_Realms = "game/realmlist.info";

} // namespace

/// Version file, manifest, host list and realm list.
class GatewayDocumentsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void ComeWholeFromTheContentServer_data();
    void ComeWholeFromTheContentServer();
    void AreRemembered();
    void ArePackedForTheWayOnly();
    void WhatIsRefusedFailsAtOnce_data();
    void WhatIsRefusedFailsAtOnce();
    void AServerThatIsNotThereFailsAtOnce_data();
    void AServerThatIsNotThereFailsAtOnce();
    void ASickAnswerIsAskedForThreeTimes_data();
    void ASickAnswerIsAskedForThreeTimes();
    void ASickAnswerOrTwoAreGotOver_data();
    void ASickAnswerOrTwoAreGotOver();
    void ASilentServerIsAskedAgain_data();
    void ASilentServerIsAskedAgain();
    void ASilentServerIsGivenUpInTheEnd_data();
    void ASilentServerIsGivenUpInTheEnd();
    void ListsCostASilentServerOneWait_data();
    void ListsCostASilentServerOneWait();
    void AWaitTellsWhichAttemptItIs();
    void AProblemIsForgottenWhenTheAnswerComes();

private:
    std::unique_ptr<GatewayBench> Bench;
    QByteArray const Manifest = SampleContent::Bytes(3 * c_MiB);
};

void GatewayDocumentsTest::init()
{
    Bench = std::make_unique<GatewayBench>();
    Bench->Server->Serve('/' + c_Manifest, Manifest);
    Bench->Server->Serve('/' + c_Realms, "SET realmlist");
    Bench->Server->Serve("/game/version_dev.json", "{}");
}

void GatewayDocumentsTest::cleanup()
{
    Bench.reset();
}

void GatewayDocumentsTest::ComeWholeFromTheContentServer_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("version") << c_Version << QByteArray("{\"build\":\"build_1\"}");
    QTest::newRow("development") << QByteArray("game/version_dev.json") << QByteArray("{}");
    QTest::newRow("manifest") << c_Manifest << Manifest;
    QTest::newRow("realms") << c_Realms << QByteArray("SET realmlist");
}

void GatewayDocumentsTest::ComeWholeFromTheContentServer()
{
    QFETCH(QByteArray, path);
    QFETCH(QByteArray, bytes);
    for (auto const& mirror : Bench->Mirrors)
        mirror->Serve('/' + path, "of a mirror");
    Bench->Open();
    DoorReply const reply = Bench->Document(path);
    QCOMPARE(reply.Status, 200);
    QVERIFY(reply.IsWhole);
    QVERIFY(reply.Body == bytes);
    QCOMPARE(Bench->Server->Count('/' + path), 1);
    for (auto const& mirror : Bench->Mirrors)
        QCOMPARE(mirror->Requests().size(), std::size_t{0});
    QVERIFY(!Bench->Door->ProblemOf(path.toStdString()));
}

void GatewayDocumentsTest::AreRemembered()
{
    Bench->Open();
    for (QByteArray const& path : {c_Version, c_Manifest})
        QCOMPARE(Bench->Document(path).Status, 200);
    QVERIFY(Bench->Document("game/builds/build_2/info.json").Status >= 400);
    auto const documents = Bench->Door->Fetched();
    QCOMPARE(documents.size(), std::size_t{3});
    QVERIFY(documents.at(c_Manifest.toStdString()) == Manifest.toStdString());
    QCOMPARE(documents.at(c_Version.toStdString()), std::string("{\"build\":\"build_1\"}"));
    // As the server gave it: the names of mirrors are what a later run wants.
    QCOMPARE(documents.at("cdns.info"),
             (Bench->Mirrors[0]->Host() + ' ' + Bench->Mirrors[1]->Host()).toStdString());
    Bench->Door->BeginRun(GatewayBench::Source::Server);
    QCOMPARE(Bench->Door->Fetched().size(), std::size_t{0});
}

void GatewayDocumentsTest::ArePackedForTheWayOnly()
{
    Bench->Server->Script('/' + c_Manifest).Always(Answer::Gzip());
    Bench->Open();
    DoorReply const reply = Bench->Document(c_Manifest);
    QCOMPARE(reply.Status, 200);
    QVERIFY(reply.Body == Manifest);
    QVERIFY(Bench->Door->Fetched().at(c_Manifest.toStdString()) == Manifest.toStdString());
}

void GatewayDocumentsTest::WhatIsRefusedFailsAtOnce_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<int>("status");
    for (QByteArray const& path : {c_Version, c_Manifest, c_Realms, QByteArray("cdns.info")})
        for (int const status : {400, 401, 403, 404, 410})
            QTest::addRow("%s %d", path.constData(), status) << path << status;
}

void GatewayDocumentsTest::WhatIsRefusedFailsAtOnce()
{
    QFETCH(QByteArray, path);
    QFETCH(int, status);
    Bench->Open();
    int const before = Bench->Server->Count('/' + path);
    Bench->Server->Script('/' + path).Always(Answer::Status(status));
    DoorReply const reply = Bench->Document(path);
    if (path != "cdns.info")
        QVERIFY2(reply.Status >= 400, QByteArray::number(reply.Status));
    QCOMPARE(Bench->Server->Count('/' + path), before + 1);
    FetchProblem const problem = Bench->ProblemOf(path);
    QCOMPARE(problem.Kind, Kind::Refused);
    QCOMPARE(problem.HttpStatus, status);
    QCOMPARE(problem.Url, Bench->Server->Url('/' + path).toStdString());
    QCOMPARE(problem.Why, FetchProblem::Cause::Status);
    QCOMPARE(problem.Detail, std::to_string(status));
    QCOMPARE(Bench->Door->LatestProblem().value_or(FetchProblem{}).Url, problem.Url);
}

void GatewayDocumentsTest::AServerThatIsNotThereFailsAtOnce_data()
{
    QTest::addColumn<QString>("server");
    QTest::addColumn<FetchProblem::Cause>("cause");
    QTest::newRow("refused") << ScriptedServer::RefusingUrl("/")
                             << FetchProblem::Cause::ConnectionRefused;
    QTest::newRow("no such host") << "http://content.invalid/" << FetchProblem::Cause::HostNotFound;
}

void GatewayDocumentsTest::AServerThatIsNotThereFailsAtOnce()
{
    QFETCH(QString, server);
    QFETCH(FetchProblem::Cause, cause);
    Bench->Options.ContentServer = server.toStdString();
    Bench->Open();
    QElapsedTimer timer;
    timer.start();
    QVERIFY(Bench->Document(c_Version).Status >= 500);
    QVERIFY2(timer.elapsed() < 5000, QByteArray::number(timer.elapsed()));
    FetchProblem const problem = Bench->ProblemOf(c_Version);
    QCOMPARE(problem.Kind, Kind::Unreachable);
    QCOMPARE(problem.HttpStatus, 0);
    QCOMPARE(problem.Url, server.toStdString() + c_Version.toStdString());
    QCOMPARE(problem.Why, cause);
}

void GatewayDocumentsTest::ASickAnswerIsAskedForThreeTimes_data()
{
    QTest::addColumn<Answer>("answer");
    QTest::addColumn<Kind>("kind");
    QTest::newRow("closed") << Answer::ClosedBeforeHeaders() << Kind::Dropped;
    QTest::newRow("cut") << Answer::Truncated(5) << Kind::Dropped;
    QTest::newRow("reset") << Answer::Reset(5) << Kind::Dropped;
    QTest::newRow("500") << Answer::Status(500) << Kind::Refused;
    QTest::newRow("503") << Answer::Status(503) << Kind::Refused;
}

void GatewayDocumentsTest::ASickAnswerIsAskedForThreeTimes()
{
    QFETCH(Answer, answer);
    QFETCH(Kind, kind);
    Bench->Open();
    for (QByteArray const& path : {c_Version, c_Manifest, c_Realms}) {
        Bench->Server->Script('/' + path).Always(answer);
        QVERIFY(Bench->Document(path).Status >= 500);
        // One that was closed before a byte may have been a kept connection: one more is no
        // attempt.
        int const asked = Bench->Server->Count('/' + path);
        QVERIFY2(asked == 3 || (asked == 4 && answer.IsClosedBeforeHeaders),
                 QByteArray::number(asked));
        QCOMPARE(Bench->ProblemOf(path).Kind, kind);
    }
    Bench->Server->Script("/cdns.info").Always(answer);
    Bench->FetchHosts();
    QCOMPARE(Bench->ProblemOf("cdns.info").Kind, kind);
}

void GatewayDocumentsTest::ASickAnswerOrTwoAreGotOver_data()
{
    ASickAnswerIsAskedForThreeTimes_data();
}

void GatewayDocumentsTest::ASickAnswerOrTwoAreGotOver()
{
    QFETCH(Answer, answer);
    Bench->Open();
    for (QByteArray const& path : {c_Manifest, c_Realms}) {
        Bench->Server->Script('/' + path).Then(answer, 2);
        DoorReply const reply = Bench->Document(path);
        QCOMPARE(reply.Status, 200);
        QVERIFY(reply.Body == (path == c_Manifest ? Manifest : QByteArray("SET realmlist")));
        QVERIFY(!Bench->Door->ProblemOf(path.toStdString()));
    }
}

void GatewayDocumentsTest::ASilentServerIsAskedAgain_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<Answer>("answer");
    QTest::newRow("version") << c_Version << Answer::SilentBeforeHeaders();
    QTest::newRow("manifest") << c_Manifest << Answer::SilentBeforeHeaders();
    QTest::newRow("part of a manifest") << c_Manifest << Answer::SilentAfter(c_MiB);
}

void GatewayDocumentsTest::ASilentServerIsAskedAgain()
{
    QFETCH(QByteArray, path);
    QFETCH(Answer, answer);
    auto const silences = std::make_shared<std::atomic<int>>(0);
    Bench->Options.OnFailure = [silences, path](FetchProblem const& p_Problem) {
        bool const isOfPath = QByteArray::fromStdString(p_Problem.Url).endsWith(path);
        *silences += isOfPath && p_Problem.Kind == Kind::Silent ? 1 : 0;
    };
    Bench->Options.StallTime = StallFor(answer);
    Bench->Open();
    Bench->Server->Script('/' + path).Then(answer);
    QCOMPARE(Bench->Document(path).Status, 200);
    QVERIFY(*silences > 0);
    QCOMPARE(Bench->Server->Count('/' + path), *silences + 1);
}

void GatewayDocumentsTest::ASilentServerIsGivenUpInTheEnd_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::newRow("version") << c_Version;
    QTest::newRow("manifest") << c_Manifest;
}

void GatewayDocumentsTest::ASilentServerIsGivenUpInTheEnd()
{
    QFETCH(QByteArray, path);
    Bench->Options.RetryFor = 2500ms;
    Bench->Options.StallTime = 1s;
    Bench->Open();
    Bench->Server->Script('/' + path).Always(Answer::SilentBeforeHeaders());
    QElapsedTimer timer;
    timer.start();
    QVERIFY(Bench->Document(path).Status >= 500);
    QVERIFY2(timer.elapsed() >= 2500, QByteArray::number(timer.elapsed()));
    QVERIFY(Bench->Server->Count('/' + path) >= 2);
    QCOMPARE(Bench->ProblemOf(path).Kind, Kind::Silent);
}

void GatewayDocumentsTest::ListsCostASilentServerOneWait_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::newRow("hosts") << QByteArray("cdns.info");
    QTest::newRow("realms") << c_Realms;
}

void GatewayDocumentsTest::ListsCostASilentServerOneWait()
{
    QFETCH(QByteArray, path);
    Bench->Options.StallTime = 1s;
    Bench->Open();
    int const before = Bench->Server->Count('/' + path);
    Bench->Server->Script('/' + path).Always(Answer::SilentBeforeHeaders());
    QElapsedTimer timer;
    timer.start();
    Bench->Document(path);
    QVERIFY2(timer.elapsed() < 10000, QByteArray::number(timer.elapsed()));
    QCOMPARE(Bench->Server->Count('/' + path), before + 1);
    QCOMPARE(Bench->ProblemOf(path).Kind, Kind::Silent);
}

void GatewayDocumentsTest::AWaitTellsWhichAttemptItIs()
{
    QString const path = '/' + c_Version;
    Bench->Open();
    Bench->Server->Script(path).Then(Answer::Status(503)).Then(Answer().Held());
    DoorReader reader({Bench->DocumentUrl(c_Version)});
    QVERIFY(Becomes([&] { return Bench->Door->Snapshot().Waits.has_value(); }));
    auto const waits = Bench->Door->Snapshot().Waits;
    QCOMPARE(waits->Attempt, 2);
    QCOMPARE(waits->Attempts, 3);
    QCOMPARE(waits->NextAttempt, 0ms);
    Bench->Server->OpenGate(path);
    QVERIFY(Becomes([&] { return reader.IsDone(); }));
}

void GatewayDocumentsTest::AProblemIsForgottenWhenTheAnswerComes()
{
    Bench->Open();
    Bench->Server->Script('/' + c_Version).Then(Answer::Status(404));
    QVERIFY(Bench->Document(c_Version).Status >= 400);
    QVERIFY(Bench->Door->ProblemOf(c_Version.toStdString()));
    QCOMPARE(Bench->Document(c_Version).Status, 200);
    QVERIFY(!Bench->Door->ProblemOf(c_Version.toStdString()));
    Bench->Door->BeginRun(GatewayBench::Source::Server);
    QVERIFY(!Bench->Door->LatestProblem());
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::GatewayDocumentsTest)
#include "tst_GatewayDocuments.moc"
