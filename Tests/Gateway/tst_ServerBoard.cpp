#include "Host/Gateway/ServerBoard.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

#include <map>

namespace Varnholt::TestSupport {

using namespace std::chrono_literals;
using Gateway::Server;
using Gateway::ServerBoard;
using Gateway::TimePoint;

/// Who is asked next, at times of the test's choice.
class ServerBoardTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void MirrorsComeBeforeTheDefaultServer();
    void WhoeverGaveAWrongFileComesLastForFiveMinutes();
    void EachWrongFileAddsToThePenalty();
    void AFailureIsAPauseThatGrowsToHalfAMinute();
    void AServerOnTrialGetsOneTransfer();

private:
    /// The name of the one that is asked at a time from the beginning; empty: nobody.
    std::string Next(std::chrono::milliseconds p_Time = 0ms) const;
    Server& Of(std::string const& p_Name) const;

    std::unique_ptr<ServerBoard> Board;
    TimePoint const Begin = Gateway::Clock::now();
};

void ServerBoardTest::init()
{
    Board = std::make_unique<ServerBoard>("http://default/", 1s);
    Board->SetMirrors({"http://a/", "http://b/"});
}

std::string ServerBoardTest::Next(std::chrono::milliseconds p_Time) const
{
    auto const server = Board->ForContent([](Server const&) { return true; }, Begin + p_Time);
    return server ? server->Name : std::string();
}

Server& ServerBoardTest::Of(std::string const& p_Name) const
{
    for (auto const& server : Board->All())
        if (server->Name == p_Name)
            return *server;
    qFatal("there is no server %s", p_Name.c_str());
}

void ServerBoardTest::MirrorsComeBeforeTheDefaultServer()
{
    QCOMPARE(Next(), std::string("a"));
    Of("a").Transfers = ServerBoard::c_TransfersPerServer;
    QCOMPARE(Next(), std::string("b"));
    Of("b").Transfers = ServerBoard::c_TransfersPerServer;
    QCOMPARE(Next(), std::string()); // busy mirrors do not make the default one busy
}

void ServerBoardTest::WhoeverGaveAWrongFileComesLastForFiveMinutes()
{
    ServerBoard::NoteWrongFile(Of("a"), Begin);
    QCOMPARE(Next(), std::string("b"));
    ServerBoard::NoteWrongFile(Of("b"), Begin + 1min);
    QCOMPARE(Next(1min), std::string("default"));
    QCOMPARE(Next(5min - 1ms), std::string("default"));
    QVERIFY(Of("a").IsWrong(Begin + 5min - 1ms));
    QCOMPARE(Next(5min), std::string("a"));
    Of("a").Transfers = ServerBoard::c_TransfersPerServer;
    QCOMPARE(Next(6min), std::string("b"));
}

void ServerBoardTest::EachWrongFileAddsToThePenalty()
{
    for (int i = 0; i < 3; ++i)
        ServerBoard::NoteWrongFile(Of("a"), Begin);
    QVERIFY(Of("a").IsWrong(Begin + 15min - 1ms));
    QVERIFY(!Of("a").IsWrong(Begin + 15min));
    Board->BeginRun();
    Board->SetMirrors({"http://a/", "http://b/"});
    QVERIFY(!Of("a").IsWrong(Begin));
}

void ServerBoardTest::AFailureIsAPauseThatGrowsToHalfAMinute()
{
    TimePoint now = Begin;
    for (auto const pause : {1s, 2s, 4s, 8s, 16s, 30s, 30s}) {
        Board->NoteFailure(Of("a"), 0, now);
        Board->NoteFailure(Of("a"), 0, now + 1ms); // of the same outage
        QVERIFY(!Of("a").IsAskable(now + pause - 1ms));
        QVERIFY(Of("a").IsAskable(now + pause));
        now += pause;
    }
    Board->NoteFailure(Of("a"), 600, now);
    QVERIFY(!Of("a").IsAskable(now + 10min - 1ms));
    QCOMPARE(Board->NextTrial(now).time_since_epoch().count(),
             (now + 10min).time_since_epoch().count());
}

void ServerBoardTest::AServerOnTrialGetsOneTransfer()
{
    Board->SetMirrors({"http://a/"});
    Board->NoteFailure(Of("a"), 0, Begin);
    QCOMPARE(Next(), std::string("default"));
    QCOMPARE(Next(1s), std::string("a"));
    Of("a").Transfers = 1;
    QCOMPARE(Next(1s), std::string("default"));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::ServerBoardTest)
#include "tst_ServerBoard.moc"
