#include "Tests/Gateway/GatewayBench.hpp"
#include "Tests/Gateway/ProcessFigures.hpp"
#include "Tests/Support/SampleContent.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QSemaphore>

namespace Varnholt::TestSupport {

namespace {

QByteArray const c_Path = "game/files/a";
constexpr int c_Window = 64 * c_MiB; // at most
constexpr int c_LeastWindow = 16 * c_MiB;

QByteArray Numbered(int p_Number)
{
    return "game/files/" + QByteArray::number(p_Number);
}

} // namespace

/// How content that servers give as they should comes through the door.
class GatewayChunksTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void ALargeFileComesInOrderFromSeveralMirrors();
    void AnySizeComesWhole_data();
    void AnySizeComesWhole();
    void SmallFilesArriveAheadOfTheirReader();
    void SeveralReadersGetTheirFilesAtOnce();
    void ReadersNeedNotKeepToThePlan();
    void AnotherPlanReplacesTheFirst();
    void WhatIsThereIsNotFetched();
    void NoMoreConnectionsThanAreAllowed_data();
    void NoMoreConnectionsThanAreAllowed();
    void ConnectionsAreKept();
    void MemoryIsBoundedWhenNobodyReads();
    void AFasterMirrorGivesMore();
};

void GatewayChunksTest::ALargeFileComesInOrderFromSeveralMirrors()
{
    GatewayBench bench(3);
    QByteArray const bytes = LargeBytes(c_Window + 16 * c_MiB + 5);
    bench.Serve(c_Path, bytes);
    bench.Open();
    bench.Door->Plan({Planned(c_Path)});
    DoorReply const reply = bench.Content(c_Path);
    QCOMPARE(reply.Status, 200);
    QVERIFY(reply.IsWhole);
    QVERIFY(reply.Body == bytes);
    QCOMPARE(bench.SentBytes(c_Path), qint64(bytes.size()));
    for (auto const& mirror : bench.Mirrors) {
        QVERIFY(mirror->BodyBytes('/' + c_Path) > 0);
        QVERIFY2(mirror->MostAnswers() <= 2, QByteArray::number(mirror->MostAnswers()));
    }
    QCOMPARE(bench.Server->Count('/' + c_Path), 0);
    QCOMPARE(bench.Door->Snapshot().Received, std::uint64_t(bytes.size()));
}

void GatewayChunksTest::AnySizeComesWhole_data()
{
    QTest::addColumn<int>("size");
    for (int const size : {1, 4095, 8 * c_MiB - 1, 8 * c_MiB, 8 * c_MiB + 1, 16 * c_MiB})
        QTest::newRow(QByteArray::number(size)) << size;
}

void GatewayChunksTest::AnySizeComesWhole()
{
    QFETCH(int, size);
    GatewayBench bench;
    QByteArray const bytes = LargeBytes(size);
    bench.Serve(c_Path, bytes);
    bench.Open();
    QVERIFY(bench.Content(c_Path).Body == bytes);
    QCOMPARE(bench.SentBytes(c_Path), qint64(size));
    QVERIFY(bench.Content(c_Path, "bytes=" + QByteArray::number(size - 1) + '-').Body ==
            bytes.right(1));
}

void GatewayChunksTest::SmallFilesArriveAheadOfTheirReader()
{
    GatewayBench bench;
    std::vector<PlannedFile> plan;
    for (int i = 0; i < 100; ++i) {
        bench.Serve(Numbered(i), SampleContent::Bytes(5000, quint32(i + 1)));
        plan.push_back(Planned(Numbered(i)));
    }
    bench.Open();
    bench.Door->Plan(plan);
    QVERIFY(Becomes([&] { return bench.Door->Snapshot().Received == 100 * 5000; }));
    for (int i = 0; i < 100; ++i) {
        QCOMPARE(bench.Content(Numbered(i)).Body, SampleContent::Bytes(5000, quint32(i + 1)));
        QCOMPARE(bench.Requests(Numbered(i), "GET").size(), std::size_t{1});
    }
    QVERIFY(Becomes([&] { return bench.Door->Snapshot().Held == 0; }));
}

void GatewayChunksTest::SeveralReadersGetTheirFilesAtOnce()
{
    GatewayBench bench;
    QByteArray const bytes = LargeBytes(20 * c_MiB);
    std::vector<std::unique_ptr<DoorReader>> readers;
    bench.Open();
    for (int i = 0; i < 6; ++i) {
        bench.Serve(Numbered(i), bytes.mid(i));
        readers.push_back(std::make_unique<DoorReader>(DoorRequest{bench.ContentUrl(Numbered(i))}));
    }
    for (int i = 0; i < 6; ++i)
        QVERIFY(readers[std::size_t(i)]->Reply().Body == bytes.mid(i));
}

void GatewayChunksTest::ReadersNeedNotKeepToThePlan()
{
    GatewayBench bench;
    QByteArray const bytes = LargeBytes(30 * c_MiB);
    std::vector<PlannedFile> plan;
    for (int i = 0; i < 6; ++i) {
        bench.Serve(Numbered(i), bytes.mid(i));
        plan.push_back(Planned(Numbered(i)));
    }
    bench.Serve("game/files/unplanned", "unplanned");
    bench.Open();
    bench.Door->Plan(plan);
    // The window is full of the first files; whoever waits for another one gets it all the same.
    QVERIFY(Becomes([&] { return bench.Door->Snapshot().Held > c_LeastWindow; }));
    QCOMPARE(bench.Content("game/files/unplanned").Body, QByteArray("unplanned"));
    for (int const i : {5, 2, 0, 2})
        QVERIFY(bench.Content(Numbered(i)).Body == bytes.mid(i));
    QVERIFY(bench.Content(Numbered(3), "bytes=20000000-").Body == bytes.mid(20000003));
}

void GatewayChunksTest::AnotherPlanReplacesTheFirst()
{
    GatewayBench bench;
    bench.Serve("game/files/old", LargeBytes(c_Window + 20 * c_MiB));
    bench.Serve("game/files/new", LargeBytes(20 * c_MiB));
    bench.Open();
    bench.Door->Plan({Planned("game/files/old")});
    QVERIFY(Becomes([&] { return bench.Door->Snapshot().Held > 4 * c_MiB; }));
    bench.Door->Plan({Planned("game/files/new")});
    QVERIFY(Becomes([&] { return bench.SentBytes("game/files/new") == 20 * c_MiB; }));
    QVERIFY(bench.Content("game/files/new").Body == LargeBytes(20 * c_MiB));
    QCOMPARE(bench.SentBytes("game/files/new"), qint64{20 * c_MiB});
}

void GatewayChunksTest::WhatIsThereIsNotFetched()
{
    GatewayBench bench;
    constexpr int c_There = 12'345'678;
    QByteArray const bytes = LargeBytes(20 * c_MiB);
    bench.Serve(c_Path, bytes);
    bench.Open();
    bench.Door->Plan({{c_Path.toStdString(), c_There, false}});
    QVERIFY(Becomes(
        [&] { return bench.Door->Snapshot().Received == std::size_t(bytes.size()) - c_There; }));
    QVERIFY(bench.Content(c_Path, "bytes=12345678-").Body == bytes.mid(c_There));
    QCOMPARE(bench.SentBytes(c_Path), qint64{bytes.size() - c_There});
    QCOMPARE(bench.Door->Snapshot().Received, std::uint64_t(bytes.size() - c_There));
}

void GatewayChunksTest::NoMoreConnectionsThanAreAllowed_data()
{
    QTest::addColumn<int>("mirrors");
    QTest::addColumn<int>("connections");
    QTest::addColumn<int>("expected");
    QTest::newRow("one of four") << 4 << 1 << 1;
    QTest::newRow("three of two") << 2 << 3 << 3;
    QTest::newRow("four of three") << 3 << 4 << 4;
    QTest::newRow("two a server") << 2 << 64 << 4;
}

void GatewayChunksTest::NoMoreConnectionsThanAreAllowed()
{
    QFETCH(int, mirrors);
    QFETCH(int, connections);
    QFETCH(int, expected);
    GatewayBench bench(mirrors);
    bench.Options.Connections = connections;
    std::vector<PlannedFile> plan;
    for (int i = 0; i < 50; ++i) {
        bench.Serve(Numbered(i), "content");
        plan.push_back(Planned(Numbered(i)));
        for (auto const& mirror : bench.Mirrors)
            mirror->Script("GET /" + Numbered(i)).Then(Answer::SilentBeforeHeaders());
    }
    bench.Open();
    bench.Door->Plan(plan);
    QVERIFY(Becomes([&] { return bench.AnswersNow() == expected; }));
    // The door has had every occasion for one more when it has answered this and all sizes.
    QVERIFY(Becomes([&] {
        return std::all_of(plan.begin(), plan.end(), [&](PlannedFile const& p_File) {
            return bench.Door->SizeOf(p_File.Path).has_value();
        });
    }));
    QCOMPARE(bench.Document("game/version.json").Status, 200);
    QCOMPARE(bench.AnswersNow(), expected);
    for (auto const& mirror : bench.Mirrors)
        QVERIFY(mirror->MostAnswers() <= 2);
}

void GatewayChunksTest::ConnectionsAreKept()
{
    GatewayBench bench(1);
    std::vector<PlannedFile> plan;
    for (int i = 0; i < 200; ++i) {
        bench.Serve(Numbered(i), "content");
        plan.push_back(Planned(Numbered(i)));
    }
    bench.Open();
    bench.Door->Plan(plan);
    QSet<int> connections;
    for (int i = 0; i < 200; ++i)
        QCOMPARE(bench.Content(Numbered(i)).Body, QByteArray("content"));
    for (RecordedRequest const& request : bench.Mirrors[0]->Requests())
        connections += request.Connection;
    QVERIFY2(connections.size() <= 12, QByteArray::number(connections.size()));
}

void GatewayChunksTest::MemoryIsBoundedWhenNobodyReads()
{
    GatewayBench bench(3);
    QByteArray const bytes = LargeBytes(200 * c_MiB);
    bench.Serve(c_Path, bytes);
    bench.Open();
    ProcessFigures::MemoryPeak const peak;
    std::atomic<std::uint64_t> most{0};
    auto const look = [&] {
        return most = std::max<std::uint64_t>(most, bench.Door->Snapshot().Held);
    };
    bench.Door->Plan({Planned(c_Path)});
    QVERIFY(Becomes([&] { return look() >= c_LeastWindow; }));
    QVERIFY(!Happens([&] { return look() > c_Window; }, 500));

    QSemaphore turns;
    qint64 position = 0;
    bool isRight = true;
    DoorReader reader({bench.ContentUrl(c_Path)}, [&](QByteArray const& p_Bytes) {
        turns.tryAcquire(p_Bytes.size(), DoorClient::c_Patience);
        isRight = isRight && bytes.indexOf(p_Bytes, int(position)) == position;
        position += p_Bytes.size();
    });
    for (int i = 0; i < 200; ++i) {
        turns.release(c_MiB);
        QVERIFY(Becomes([&] { return reader.Received() >= qint64(i) * c_MiB - 512 * 1024; }));
        look();
    }
    turns.release(c_MiB);
    QVERIFY(reader.Reply().IsWhole);
    QVERIFY(isRight);
    QCOMPARE(position, qint64(bytes.size()));
    QVERIFY2(most <= c_Window, QByteArray::number(qint64(most)));
    QVERIFY2(peak.Bytes() < c_Window + 32 * c_MiB, QByteArray::number(peak.Bytes()));
}

void GatewayChunksTest::AFasterMirrorGivesMore()
{
    GatewayBench bench;
    QByteArray const bytes = LargeBytes(80 * c_MiB);
    bench.Serve(c_Path, bytes);
    bench.Mirrors[0]->Script("GET *").Always(Answer::Drip(32 * 1024, 8)); // 4 MiB/s at most
    bench.Open();
    bench.Door->Plan({Planned(c_Path)});
    QVERIFY(bench.Content(c_Path).Body == bytes);
    qint64 const slow = bench.Mirrors[0]->BodyBytes('/' + c_Path);
    qint64 const fast = bench.Mirrors[1]->BodyBytes('/' + c_Path);
    QVERIFY2(fast > 2 * slow, QByteArray::number(fast) + ' ' + QByteArray::number(slow));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::GatewayChunksTest)
#include "tst_GatewayChunks.moc"
