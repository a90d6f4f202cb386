#include "Tests/Gateway/GatewayBench.hpp"
#include "Tests/Support/SampleContent.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QTcpSocket>

namespace Varnholt::TestSupport {

namespace {

QByteArray const c_Path = "game/files/a";

QByteArray Numbered(int p_Number)
{
    return "game/files/" + QByteArray::number(p_Number);
}

} // namespace

/// The sizes of files, and servers that do less than others.
class GatewaySizesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void SizesOfAPlanAreAskedOnce();
    void WhoAsksForSizesByRequestsThatItDropsGetsNoContent();
    void WhoHasAskedForASizeIsFetchedNothingWhileItHangsUp();
    void ASizeNeedNotBeKnownToAnyPlan();
    void AreAskedForSideBySide();
    void AreLearntFromAGetWhereHeadIsRefused_data();
    void AreLearntFromAGetWhereHeadIsRefused();
    void ASickMirrorCostsNoSize_data();
    void ASickMirrorCostsNoSize();
    void OfAFileThatNobodyHasThereIsNone();
    void AreForgottenWithTheRun();

    void AServerWithoutRangesIsUsedAsItIs();
    void AServerWithoutRangesGivesTheRestOfAFile();
    void AServerWithoutLengthIsUsedAsItIs();
    void WhatIsPackedWithoutBeingAskedComesAsItWas();
    void WhatComesPackedIsNeverTakenForContent();
};

void GatewaySizesTest::SizesOfAPlanAreAskedOnce()
{
    GatewayBench bench;
    std::vector<PlannedFile> plan;
    for (int i = 0; i < 100; ++i) {
        bench.Serve(Numbered(i), QByteArray(i, 'x'));
        plan.push_back(Planned(Numbered(i)));
    }
    bench.Open();
    QVERIFY(!bench.Door->SizeOf(Numbered(0).toStdString()));
    bench.Door->AskSizes(plan);
    QVERIFY(Becomes([&] { return bench.Door->Snapshot().SizesKnown == 100; }));
    for (int i = 0; i < 100; ++i) {
        QCOMPARE(bench.Door->SizeOf(Numbered(i).toStdString()), std::uint64_t(i));
        DoorReply const reply = AskDoor({bench.ContentUrl(Numbered(i)), {}, "HEAD"});
        QCOMPARE(reply.Header("Content-Length").toInt(), i);
        QVERIFY(bench.Requests(Numbered(i), "HEAD").size() <= 1);
        QCOMPARE(bench.SentBytes(Numbered(i)), qint64{0});
    }
    bench.Door->Plan(plan);
    QVERIFY(Becomes([&] { return bench.Door->Snapshot().Received == 99 * 100 / 2; }));
    for (int i = 0; i < 100; ++i)
        QVERIFY(bench.Requests(Numbered(i), "HEAD").size() <= 1);
}

void GatewaySizesTest::WhoAsksForSizesByRequestsThatItDropsGetsNoContent()
{
    GatewayBench bench;
    bench.Serve(c_Path, LargeBytes(c_MiB));
    bench.Open();
    bench.Door->Plan({Planned(c_Path)}, true);
    DoorReader dropping({bench.ContentUrl(c_Path)});
    QVERIFY(Becomes([&] { return bench.Door->SizeOf(c_Path.toStdString()).has_value(); }));
    QVERIFY(!Happens([&] { return dropping.Received() > 0; }, 300));
    bench.Door->Plan({Planned(c_Path)});
    QVERIFY(dropping.Reply().Body == LargeBytes(c_MiB));
    QCOMPARE(dropping.Reply().Header("Content-Length").toInt(), c_MiB);
}

void GatewaySizesTest::WhoHasAskedForASizeIsFetchedNothingWhileItHangsUp()
{
    constexpr int c_Offset = 300'000;

    GatewayBench bench(0);
    bench.Serve(c_Path, LargeBytes(c_MiB));
    bench.Open();
    PlannedFile const file{c_Path.toStdString(), c_Offset, false};
    bench.Door->Plan({file}, true);
    QUrl const url = QUrl::fromEncoded(bench.ContentUrl(c_Path));
    QTcpSocket asking;
    asking.connectToHost(url.host(), static_cast<quint16>(url.port()));
    asking.write("GET " + url.path().toLatin1() + " HTTP/1.1\r\nHost: door\r\n\r\n");
    QVERIFY(Becomes([&] { return asking.bytesAvailable() > 0; }));
    bench.Door->Plan({file});
    QVERIFY(bench.Content(c_Path, "bytes=300000-").Body == LargeBytes(c_MiB).mid(c_Offset));
    asking.abort();
    QCOMPARE(bench.SentBytes(c_Path), qint64{c_MiB - c_Offset});
    QCOMPARE(bench.Requests(c_Path, "GET").size(), std::size_t{1});
}

void GatewaySizesTest::ASizeNeedNotBeKnownToAnyPlan()
{
    GatewayBench bench;
    bench.Serve(c_Path, "content");
    bench.Open();
    for (int i = 0; i < 3; ++i) {
        DoorReply const reply = AskDoor({bench.ContentUrl(c_Path), {}, "HEAD"});
        QCOMPARE(reply.Status, 200);
        QCOMPARE(reply.Header("Content-Length"), QByteArray("7"));
    }
    QCOMPARE(bench.Requests(c_Path, "HEAD").size(), std::size_t{1});
}

void GatewaySizesTest::AreAskedForSideBySide()
{
    GatewayBench bench(3);
    std::vector<PlannedFile> files;
    for (int i = 0; i < 60; ++i) {
        bench.Serve(Numbered(i), "content");
        bench.ScriptAll("HEAD /" + Numbered(i), Answer::SilentBeforeHeaders());
        files.push_back(Planned(Numbered(i)));
    }
    bench.Open();
    bench.Door->AskSizes(files);
    QVERIFY(Becomes([&] { return bench.AnswersNow("HEAD") == 16; }));
    QCOMPARE(bench.Document("game/version.json").Status, 200);
    QCOMPARE(bench.AnswersNow("HEAD"), 16);
    for (ScriptedServer* const server : bench.Servers()) {
        for (int i = 0; i < 60; ++i)
            server->OpenGate('/' + Numbered(i), 2);
        QVERIFY(server->MostAnswers("HEAD") <= 8);
    }
    QVERIFY(Becomes([&] { return bench.Door->SizeOf(Numbered(59).toStdString()).has_value(); }));
    for (ScriptedServer* const server : bench.Servers())
        QVERIFY(server->MostAnswers("HEAD") <= 8);
}

void GatewaySizesTest::AreLearntFromAGetWhereHeadIsRefused_data()
{
    QTest::addColumn<int>("status");
    for (int const status : {400, 403, 405, 501})
        QTest::newRow(QByteArray::number(status)) << status;
}

void GatewaySizesTest::AreLearntFromAGetWhereHeadIsRefused()
{
    QFETCH(int, status);
    GatewayBench bench;
    QByteArray const bytes = LargeBytes(c_MiB);
    bench.Serve(c_Path, bytes);
    bench.ScriptForEver("HEAD *", Answer::Status(status));
    bench.Open();
    bench.Door->AskSizes({Planned(c_Path)});
    QVERIFY(
        Becomes([&] { return bench.Door->SizeOf(c_Path.toStdString()) == std::uint64_t{c_MiB}; }));
    QCOMPARE(bench.SentBytes(c_Path), qint64{1});
    QCOMPARE(bench.Requests(c_Path, "GET").front().Header("Range"), QByteArray("bytes=0-0"));
    bench.Door->Plan({});
    QVERIFY(bench.Content(c_Path).Body == bytes);
}

void GatewaySizesTest::ASickMirrorCostsNoSize_data()
{
    QTest::addColumn<Answer>("answer");
    QTest::newRow("500") << Answer::Status(500);
    QTest::newRow("404") << Answer::Status(404);
    QTest::newRow("closed") << Answer::ClosedBeforeHeaders();
    QTest::newRow("silent") << Answer::SilentBeforeHeaders();
}

void GatewaySizesTest::ASickMirrorCostsNoSize()
{
    QFETCH(Answer, answer);
    GatewayBench bench;
    std::vector<PlannedFile> files;
    for (int i = 0; i < 20; ++i) {
        bench.Serve(Numbered(i), "content");
        files.push_back(Planned(Numbered(i)));
    }
    bench.Mirrors[0]->Script("*").Always(answer);
    bench.Options.StallTime = StallFor(answer);
    bench.Open();
    bench.Door->AskSizes(files);
    for (int i = 0; i < 20; ++i)
        QVERIFY(Becomes(
            [&] { return bench.Door->SizeOf(Numbered(i).toStdString()) == std::uint64_t{7}; }));
}

void GatewaySizesTest::OfAFileThatNobodyHasThereIsNone()
{
    GatewayBench bench;
    bench.Open();
    bench.Door->AskSizes({Planned(c_Path)});
    QVERIFY(Becomes([&] { return bench.ProblemOf(c_Path).HttpStatus == 404; }));
    QVERIFY(!bench.Door->SizeOf(c_Path.toStdString()));
    QCOMPARE(AskDoor({bench.ContentUrl(c_Path), {}, "HEAD"}).Status, 404);
}

void GatewaySizesTest::AreForgottenWithTheRun()
{
    GatewayBench bench;
    bench.Serve(c_Path, "content");
    bench.Open();
    bench.Door->Plan({Planned(c_Path)});
    QVERIFY(Becomes([&] { return bench.Door->Snapshot().Received == 7; }));
    bench.Serve(c_Path, "another content");
    bench.Door->BeginRun(GatewayBench::Source::Server);
    QVERIFY(!bench.Door->SizeOf(c_Path.toStdString()));
    QCOMPARE(bench.Door->Snapshot().Held, std::uint64_t{0});
    QCOMPARE(bench.Door->Snapshot().SizesKnown, std::uint32_t{0});
    QCOMPARE(bench.Door->Snapshot().Received, std::uint64_t{0});
    bench.FetchHosts();
    QCOMPARE(bench.Content(c_Path).Body, QByteArray("another content"));
}

void GatewaySizesTest::AServerWithoutRangesIsUsedAsItIs()
{
    GatewayBench bench(1);
    QByteArray const bytes = LargeBytes(40 * c_MiB);
    bench.Serve(c_Path, bytes);
    bench.ScriptMirrorsForEver("*", Answer::IgnoringRange());
    bench.Open();
    bench.Door->Plan({Planned(c_Path)});
    DoorReply const reply = bench.Content(c_Path);
    QVERIFY(reply.IsWhole);
    QVERIFY(reply.Body == bytes);
    QCOMPARE(bench.Server->Count('/' + c_Path), 0);
}

void GatewaySizesTest::AServerWithoutRangesGivesTheRestOfAFile()
{
    GatewayBench bench(1);
    QByteArray const bytes = LargeBytes(20 * c_MiB);
    bench.Serve(c_Path, bytes);
    bench.ScriptMirrorsForEver("*", Answer::IgnoringRange());
    bench.Open();
    DoorReply const reply = bench.Content(c_Path, "bytes=17000000-");
    QCOMPARE(reply.Status, 206);
    QVERIFY(reply.Body == bytes.mid(17'000'000));
    QCOMPARE(bench.Server->Count('/' + c_Path), 0);
}

void GatewaySizesTest::AServerWithoutLengthIsUsedAsItIs()
{
    GatewayBench bench(1);
    QByteArray const bytes = LargeBytes(20 * c_MiB);
    bench.Serve(c_Path, bytes);
    Answer answer = Answer::WithoutLength();
    answer.IgnoresRange = true;
    bench.ScriptForEver("*", answer);
    bench.Open();
    DoorReply const reply = bench.Content(c_Path);
    QCOMPARE(reply.Status, 200);
    QVERIFY(reply.IsWhole);
    QVERIFY(reply.Body == bytes);
}

void GatewaySizesTest::WhatIsPackedWithoutBeingAskedComesAsItWas()
{
    GatewayBench bench;
    QByteArray const bytes = QByteArray("a line of text\n").repeated(100000);
    bench.Serve(c_Path, bytes);
    bench.Mirrors[0]->Script("*").Always(Answer::Gzip());
    bench.Open();
    for (int i = 0; i < 4; ++i)
        QVERIFY(bench.Content(c_Path).Body == bytes);
}

void GatewaySizesTest::WhatComesPackedIsNeverTakenForContent()
{
    GatewayBench bench(1);
    QByteArray const bytes = QByteArray("a line of text\n").repeated(100000);
    bench.Serve(c_Path, bytes);
    bench.Options.RetryFor = std::chrono::seconds{2};
    bench.ScriptForEver("GET *", Answer::Gzip());
    bench.ScriptForEver("HEAD *", Answer::Gzip());
    bench.Open();
    DoorReply const reply = bench.Content(c_Path);
    QVERIFY(reply.Body == bytes || !reply.IsWhole || reply.Status >= 400);
    QVERIFY(reply.Header("Content-Encoding").isNull());
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::GatewaySizesTest)
#include "tst_GatewaySizes.moc"
