#include "Tests/Gateway/DeafServer.hpp"
#include "Tests/Gateway/GatewayBench.hpp"
#include "Tests/Support/SampleContent.hpp"
#include "Tests/Support/TestMain.hpp"

namespace Varnholt::TestSupport {

namespace {

QByteArray const c_Path = "game/files/a";
QByteArray const c_Get = "GET /game/files/a";
QString const c_ServerPath = "/game/files/a";

qint64 StartOf(RecordedRequest const& p_Request)
{
    QByteArray const range = p_Request.Header("Range");
    return range.isEmpty() ? 0
                           : range.mid(int(sizeof("bytes=")) - 1).split('-').first().toLongLong();
}

} // namespace

/// Servers that give content badly, beside others that do not.
class GatewayFailoverTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void AFetchGoesOnAtTheByteWhereAMirrorDied_data();
    void AFetchGoesOnAtTheByteWhereAMirrorDied();
    void ASickMirrorIsReplaced_data();
    void ASickMirrorIsReplaced();
    void AMirrorThatHearsNothingIsReplaced();
    void ALargeFileOutlivesAMirror();
    void WhatOneMirrorLacksAnotherGives_data();
    void WhatOneMirrorLacksAnotherGives();
    void TheContentServerHelpsOutWhenNoMirrorIsLeft_data();
    void TheContentServerHelpsOutWhenNoMirrorIsLeft();
    void EntriesOfTheContentServerComeFromNobodyElse();
    void AMirrorThatHasComeBackIsUsedAgain();
    void TheBytesOfARejectedFileComeFromAnother();
    void WhoeverGaveARejectedFileIsBehind();

private:
    std::unique_ptr<GatewayBench> Bench;
    QByteArray const Bytes = LargeBytes(c_MiB);
};

void GatewayFailoverTest::init()
{
    Bench = std::make_unique<GatewayBench>();
    Bench->Serve(c_Path, Bytes);
}

void GatewayFailoverTest::cleanup()
{
    Bench.reset();
}

void GatewayFailoverTest::AFetchGoesOnAtTheByteWhereAMirrorDied_data()
{
    QTest::addColumn<Answer>("answer");
    QTest::newRow("closed") << Answer::Truncated(300000);
    QTest::newRow("reset") << Answer::Reset(300000);
    QTest::newRow("silent") << Answer::SilentAfter(300000);
}

void GatewayFailoverTest::AFetchGoesOnAtTheByteWhereAMirrorDied()
{
    QFETCH(Answer, answer);
    // Whoever is asked first, the second is asked for the rest.
    Bench->ScriptAll(c_Get, answer);
    Bench->Options.StallTime = StallFor(answer);
    Bench->Open();
    DoorReply const reply = Bench->Content(c_Path);
    QVERIFY(reply.IsWhole);
    QVERIFY(reply.Body == Bytes);
    // On a busy machine one mirror may be relieved of what it has begun: there are more starts
    // then.
    std::vector<qint64> starts;
    for (RecordedRequest const& request : Bench->Requests(c_Path, "GET"))
        starts.push_back(StartOf(request));
    QCOMPARE(std::count(starts.begin(), starts.end(), qint64{0}), std::ptrdiff_t{1});
    QVERIFY(std::count(starts.begin(), starts.end(), qint64{300000}) > 0);
    QVERIFY(!Bench->Door->Snapshot().GaveUp);
}

void GatewayFailoverTest::ASickMirrorIsReplaced_data()
{
    QTest::addColumn<Answer>("answer");
    QTest::addColumn<bool>("mustBeBehind"); // whoever only lacks a file need not be
    QTest::newRow("closed") << Answer::ClosedBeforeHeaders() << true;
    QTest::newRow("cut") << Answer::Truncated(1000) << true;
    QTest::newRow("reset") << Answer::Reset(1000) << true;
    QTest::newRow("silent") << Answer::SilentBeforeHeaders() << true;
    QTest::newRow("silent in the middle") << Answer::SilentAfter(1000) << true;
    for (int const status : {429, 500, 502, 503, 504})
        QTest::addRow("%d", status) << Answer::Status(status) << true;
    for (int const status : {204, 301, 401, 416})
        QTest::addRow("%d", status) << Answer::Status(status) << false;
    QTest::newRow("a page") << Answer::Status(200, "<html>Log in</html>") << false;
    QTest::newRow("claims less") << Answer::ClaimingLength(1000) << true;
    QTest::newRow("claims more") << Answer::ClaimingLength(c_MiB + 1000) << true;
    QTest::newRow("another range") << Answer::WrongRangeStart(7) << true;
    QTest::newRow("another total") << Answer::ClaimingRange("bytes 0-1048575/2000000") << false;
    QTest::newRow("no range at all") << Answer::ClaimingRange("nonsense") << true;
    QTest::newRow("redirect to nowhere")
        << Answer::Redirect(ScriptedServer::RefusingUrl("/a").toLatin1()) << true;
    QTest::newRow("redirect in a circle") << Answer::Redirect("/game/files/1") << true;
}

void GatewayFailoverTest::ASickMirrorIsReplaced()
{
    QFETCH(Answer, answer);
    QFETCH(bool, mustBeBehind);
    // Slow enough that the sick one is asked too.
    Bench->Mirrors[1]->Script("GET *").Always(Answer::Drip(64 * 1024, 10));
    Bench->Mirrors[0]->Script("GET *").Always(answer);
    Bench->Options.StallTime = StallFor(answer);
    std::vector<PlannedFile> plan;
    for (char const* const path : {"game/files/1", "game/files/2", "game/files/3"}) {
        Bench->Serve(path, Bytes);
        plan.push_back(Planned(path));
    }
    Bench->Open();
    // As a module does it: a size that is known cannot be changed by a page in a file's place.
    Bench->Door->AskSizes(plan);
    QVERIFY(Becomes([&] { return Bench->Door->Snapshot().SizesKnown == 3; }));
    Bench->Door->Plan(plan);
    for (PlannedFile const& file : plan) {
        DoorReply const reply = Bench->Content(QByteArray::fromStdString(file.Path));
        QVERIFY(reply.IsWhole);
        QVERIFY(reply.Body == Bytes);
    }
    QVERIFY(Bench->Mirrors[0]->ScriptedAnswers("GET *") > 0);
    QCOMPARE(Bench->Server->BodyBytes("/game/files/1"), qint64{0});
    auto const isBehind = [&](ScriptedServer const& p_Server) {
        for (auto const& server : Bench->Door->Snapshot().Servers)
            if (server.Name == p_Server.Host().toStdString())
                return server.IsBehind;
        return false;
    };
    QVERIFY(!isBehind(*Bench->Mirrors[1]));
    if (mustBeBehind) // its last transfer may still be under way
        QVERIFY(Becomes([&] { return isBehind(*Bench->Mirrors[0]); }));
}

void GatewayFailoverTest::AMirrorThatHearsNothingIsReplaced()
{
    DeafServer const deaf;
    Bench->Server->Serve("/cdns.info", deaf.Host() + ' ' + Bench->Mirrors[0]->Host().toLatin1());
    Bench->Options.ConnectTimeout = std::chrono::milliseconds{500};
    Bench->Open();
    Bench->Door->Plan({Planned(c_Path)});
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < 10; ++i)
        QVERIFY(Bench->Content(c_Path).Body == Bytes);
    QVERIFY2(timer.elapsed() < 20000, QByteArray::number(timer.elapsed()));
    QCOMPARE(Bench->Server->Count(c_ServerPath), 0);
}

void GatewayFailoverTest::ALargeFileOutlivesAMirror()
{
    GatewayBench bench(3);
    QByteArray const bytes = LargeBytes(60 * c_MiB);
    bench.Serve(c_Path, bytes);
    bench.Open();
    bench.Door->Plan({Planned(c_Path)});
    DoorReader reader({bench.ContentUrl(c_Path)});
    QVERIFY(Becomes([&] { return bench.Mirrors[2]->BodyBytes(c_ServerPath) > 0; }));
    bench.Mirrors[2]->Stop();
    QVERIFY(reader.Reply().IsWhole);
    QVERIFY(reader.Reply().Body == bytes);
    QCOMPARE(bench.Server->Count(c_ServerPath), 0);
}

void GatewayFailoverTest::WhatOneMirrorLacksAnotherGives_data()
{
    QTest::addColumn<int>("status");
    for (int const status : {403, 404, 410})
        QTest::newRow(QByteArray::number(status)) << status;
}

void GatewayFailoverTest::WhatOneMirrorLacksAnotherGives()
{
    QFETCH(int, status);
    Bench->Mirrors[0]->Script("*").Always(Answer::Status(status));
    Bench->Open();
    for (int i = 0; i < 10; ++i) {
        QByteArray const path = "game/files/" + QByteArray::number(i);
        Bench->Serve(path, path);
        QCOMPARE(Bench->Content(path).Body, path);
    }
    QCOMPARE(Bench->Server->Count("/game/files/0"), 0);
}

void GatewayFailoverTest::TheContentServerHelpsOutWhenNoMirrorIsLeft_data()
{
    QTest::addColumn<Answer>("answer");
    QTest::newRow("closed") << Answer::ClosedBeforeHeaders();
    QTest::newRow("cut") << Answer::Truncated(0);
    QTest::newRow("silent") << Answer::SilentBeforeHeaders();
    QTest::newRow("404") << Answer::Status(404);
    QTest::newRow("500") << Answer::Status(500);
}

void GatewayFailoverTest::TheContentServerHelpsOutWhenNoMirrorIsLeft()
{
    QFETCH(Answer, answer);
    Bench->ScriptMirrorsForEver("*", answer);
    Bench->Options.StallTime = StallFor(answer);
    Bench->Open();
    Bench->Door->Plan({Planned(c_Path)});
    DoorReply const reply = Bench->Content(c_Path);
    QVERIFY(reply.IsWhole);
    QVERIFY(reply.Body == Bytes);
    auto const servers = Bench->Door->Snapshot().Servers;
    QVERIFY(servers.front().IsDefault);
    QCOMPARE(servers.front().Received, std::uint64_t(Bytes.size()));
}

void GatewayFailoverTest::EntriesOfTheContentServerComeFromNobodyElse()
{
    for (auto const& mirror : Bench->Mirrors)
        mirror->Serve(c_ServerPath, "of a mirror");
    Bench->Server->Script('/' + c_Path).Then(Answer::Status(500), 4); // it is waited for
    Bench->Open();
    Bench->Door->Plan({{c_Path.toStdString(), 0, true}});
    QVERIFY(AskDoor({Bench->DocumentUrl(c_Path)}).Body == Bytes);
    QVERIFY(Bench->Content(c_Path).Body == Bytes);
    for (auto const& mirror : Bench->Mirrors)
        QCOMPARE(mirror->Requests().size(), std::size_t{0});
}

void GatewayFailoverTest::AMirrorThatHasComeBackIsUsedAgain()
{
    Bench->Open();
    Bench->Mirrors[0]->Script("*").Always(Answer::ClosedBeforeHeaders());
    int file = 0;
    auto const fetchOne = [&] {
        QByteArray const path = "game/files/" + QByteArray::number(++file);
        Bench->Serve(path, path);
        return Bench->Content(path).Body == path;
    };
    while (Bench->Mirrors[0]->ScriptedAnswers("*") == 0)
        QVERIFY(fetchOne());
    Bench->Mirrors[0]->ClearScript("*");
    Bench->Mirrors[1]->Stop();
    QVERIFY(Becomes([&] {
        return fetchOne() &&
               Bench->Mirrors[0]->BodyBytes("/game/files/" + QString::number(file)) > 0;
    }));
}

void GatewayFailoverTest::TheBytesOfARejectedFileComeFromAnother()
{
    QByteArray const first(100000, 'a');
    QByteArray const second(100000, 'b');
    Bench->Mirrors[0]->Serve(c_ServerPath, first);
    Bench->Mirrors[1]->Serve(c_ServerPath, second);
    Bench->Open();
    Bench->Door->Plan({Planned(c_Path)});
    QByteArray const given = Bench->Content(c_Path).Body;
    QVERIFY(given == first || given == second);
    Bench->Door->Reject(c_Path.toStdString());
    QVERIFY(Bench->Content(c_Path).Body == (given == first ? second : first));
}

void GatewayFailoverTest::WhoeverGaveARejectedFileIsBehind()
{
    Bench->Mirrors[0]->Serve(c_ServerPath, QByteArray(100000, 'a'));
    Bench->Mirrors[1]->Serve(c_ServerPath, QByteArray(100000, 'b'));
    Bench->Open();
    bool const isFirst = Bench->Content(c_Path).Body.startsWith('a');
    Bench->Door->Reject(c_Path.toStdString());
    std::string const giver = Bench->Mirrors[isFirst ? 0 : 1]->Host().toStdString();
    for (auto const& server : Bench->Door->Snapshot().Servers)
        QCOMPARE(server.IsBehind, server.Name == giver);
    for (int i = 0; i < 10; ++i) {
        QByteArray const path = "game/files/" + QByteArray::number(i);
        Bench->Serve(path, path);
        QCOMPARE(Bench->Content(path).Body, path);
        QCOMPARE(Bench->Mirrors[isFirst ? 0 : 1]->BodyBytes('/' + path), qint64{0});
    }
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::GatewayFailoverTest)
#include "tst_GatewayFailover.moc"
