#include "Tests/Gateway/GatewayBench.hpp"
#include "Tests/Gateway/ProcessFigures.hpp"
#include "Tests/Support/SampleContent.hpp"
#include "Tests/Support/TestMain.hpp"

#include <random>

namespace Varnholt::TestSupport {

namespace {

using namespace std::chrono_literals;

constexpr int c_Files = 30;
constexpr int c_Readers = 8;
constexpr int c_ReadsEach = 25;

QByteArray Numbered(int p_Number)
{
    return "game/files/" + QByteArray::number(p_Number);
}

Answer RandomFault(std::mt19937& p_Random)
{
    auto const bytes = [&] { return qint64(p_Random() % 3'000'000); };
    switch (p_Random() % 14) {
    case 0:
        return Answer::Truncated(bytes());
    case 1:
        return Answer::Reset(bytes());
    case 2:
        return Answer::ClosedBeforeHeaders();
    case 3:
        return Answer::Status(500);
    case 4:
        return Answer::Status(503).With("Retry-After", "0");
    case 5:
        return Answer::IgnoringRange();
    case 6:
        return Answer::WrongRangeStart(1 + qint64(p_Random() % 5));
    case 7:
        return Answer::ClaimingRange("bytes 0-9/10");
    case 8:
        return Answer::Drip(50'000, 1);
    case 9:
        return Answer::Status(416);
    default:
        return Answer::Normal();
    }
}

/// Several readers at once ask for random parts of random files.
class Crowd {
public:
    Crowd(GatewayBench const& p_Bench, std::vector<QByteArray> const& p_Files, unsigned p_Seed)
    {
        for (unsigned i = 0; i < c_Readers; ++i)
            Threads.emplace_back([&, p_Seed, i] { Read(p_Bench, p_Files, p_Seed * 1000 + i); });
    }
    ~Crowd() { Join(); }
    Crowd(Crowd const&) = delete;
    Crowd& operator=(Crowd const&) = delete;

    void Join()
    {
        for (std::thread& thread : Threads)
            thread.join();
        Threads.clear();
    }

    std::atomic<int> Right{0};
    std::atomic<int> Wrong{0};
    std::atomic<int> Missing{0}; ///< refused, or cut

private:
    void Read(GatewayBench const& p_Bench, std::vector<QByteArray> const& p_Files, unsigned p_Seed)
    {
        std::mt19937 random(p_Seed);
        DoorClient client;
        for (int i = 0; i < c_ReadsEach; ++i) {
            int const file = int(random() % c_Files);
            QByteArray const& bytes = p_Files[std::size_t(file)];
            int const start = random() % 3 == 0 ? int(random() % unsigned(bytes.size())) : 0;
            QByteArray const range = start > 0 ? "bytes=" + QByteArray::number(start) + '-' : "";
            DoorReply const reply = client.Ask({p_Bench.ContentUrl(Numbered(file)), range});
            if (reply.Status != (start > 0 ? 206 : 200))
                ++Missing;
            else if (!bytes.mid(start).startsWith(reply.Body))
                ++Wrong;
            else
                ++(reply.IsWhole && reply.Body.size() == bytes.size() - start ? Right : Missing);
        }
    }

    std::vector<std::thread> Threads;
};

} // namespace

/// Many readers, sick servers, and nothing left behind.
class GatewayStressTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void EveryByteIsRight_data();
    void EveryByteIsRight();
    void RunsThatEndInTheMiddleHarmNobody();
    void NothingIsLeftBehind();

private:
    std::unique_ptr<GatewayBench> MakeBench(unsigned p_Seed) const;

    std::vector<QByteArray> Files;
};

void GatewayStressTest::initTestCase()
{
    std::mt19937 random(1);
    for (int i = 0; i < c_Files; ++i)
        Files.push_back(SampleContent::Bytes(
            i % 3 == 0 ? int(1 + random() % 3'000'000) : int(1 + random() % 20'000), random()));
}

std::unique_ptr<GatewayBench> GatewayStressTest::MakeBench(unsigned p_Seed) const
{
    auto bench = std::make_unique<GatewayBench>(3);
    std::mt19937 random(p_Seed);
    for (int i = 0; i < c_Files; ++i)
        bench->Serve(Numbered(i), Files[std::size_t(i)]);
    for (auto const& mirror : bench->Mirrors)
        for (int i = 0; i < 150; ++i) {
            mirror->Script("GET *").Then(RandomFault(random));
            mirror->Script("HEAD *").Then(i % 5 == 0 ? Answer::Status(500) : Answer::Normal());
        }
    bench->Options.RetryPause = 1ms;
    bench->Open();
    return bench;
}

void GatewayStressTest::EveryByteIsRight_data()
{
    QTest::addColumn<unsigned>("seed");
    for (unsigned seed = 1; seed <= 4; ++seed)
        QTest::newRow(QByteArray::number(seed)) << seed;
}

void GatewayStressTest::EveryByteIsRight()
{
    QFETCH(unsigned, seed);
    auto const bench = MakeBench(seed);
    std::vector<PlannedFile> plan;
    if (seed % 2 == 0)
        for (int i = 0; i < c_Files; ++i)
            plan.push_back(Planned(Numbered(i)));
    bench->Door->Plan(plan);
    Crowd crowd(*bench, Files, seed);
    crowd.Join();
    QCOMPARE(crowd.Wrong.load(), 0);
    QCOMPARE(crowd.Missing.load(), 0);
    QCOMPARE(crowd.Right.load(), c_Readers * c_ReadsEach);
    QVERIFY(!bench->Door->Snapshot().GaveUp);
}

void GatewayStressTest::RunsThatEndInTheMiddleHarmNobody()
{
    auto const bench = MakeBench(5);
    Crowd crowd(*bench, Files, 5);
    std::mt19937 random(5);
    while (crowd.Right + crowd.Wrong + crowd.Missing < c_Readers * c_ReadsEach / 2) {
        bench->Door->Plan({Planned(Numbered(int(random() % c_Files)))});
        bench->Door->Pause();
        bench->Door->Continue();
        bench->Door->Reject(Numbered(int(random() % c_Files)).toStdString());
        if (random() % 8 == 0)
            bench->Door->BeginRun(GatewayBench::Source::Server);
        bench->Door->Snapshot();
    }
    crowd.Join();
    QCOMPARE(crowd.Wrong.load(), 0);
    bench->Door->BeginRun(GatewayBench::Source::Server);
    bench->FetchHosts();
    Crowd after(*bench, Files, 6);
    after.Join();
    QCOMPARE(after.Right.load(), c_Readers * c_ReadsEach);
}

void GatewayStressTest::NothingIsLeftBehind()
{
    GatewayBench servers(3);
    for (int i = 0; i < c_Files; ++i)
        servers.Serve(Numbered(i), Files[std::size_t(i)]);
    auto const settle = [&] {
        for (ScriptedServer const* const server : servers.Servers())
            QVERIFY(Becomes([&] { return server->OpenConnections() == 0; }));
    };
    auto const useDoor = [&](unsigned p_Seed) {
        servers.Open();
        Crowd crowd(servers, Files, p_Seed);
        if (p_Seed % 2 == 0) // in the middle of it all
            servers.Door->EndRun();
        crowd.Join();
        servers.Door.reset();
    };
    useDoor(1); // whatever libraries keep for ever
    settle();
    qint64 const threads = ProcessFigures::Threads();
    int const descriptors = ProcessFigures::Descriptors();
    for (unsigned i = 1; i <= 10; ++i)
        useDoor(i);
    settle();
    QVERIFY(Becomes([&] { return ProcessFigures::Threads() == threads; }));
    QVERIFY(Becomes([&] { return ProcessFigures::Descriptors() == descriptors; }));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::GatewayStressTest)
#include "tst_GatewayStress.moc"
