#include "Host/Core/Session/ControlSocket.hpp"
#include "Host/Core/Session/RunFollower.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/ScopedVariable.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QLocalSocket>
#include <QTemporaryDir>
#include <QtTest>

#include <future>
#include <limits>

namespace Varnholt::TestSupport {

using namespace Host;

/// What one program tells another, on the wire.
class ControlSocketTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void AMessageArrivesAsItWasSent_data();
    void AMessageArrivesAsItWasSent();
    void OtherLinesAreNoMessages_data();
    void OtherLinesAreNoMessages();
    void APauseIsAnsweredWhenItHolds();
    void APauseThatHoldsIsAnsweredAtOnce();
    void NobodyWhoListensIsAFailure();
    void WhatAnotherUserHasMadeIsNotSpokenTo();
    void TheFolderAloneNamesTheSocket();
    void AFollowerSeesTheRunToItsEnd();
    void AnEndWithoutAWordIsAFailure();
    void AFollowerThatDoesNotReadCostsTheRunNothing();
    void AMessageIsAllThatIsRead();

private:
    /// Does it on another thread, as another program would. \return what it returns
    template <typename Work>
    auto FromElsewhere(Work p_Work)
    {
        auto result = std::async(std::launch::async, p_Work);
        while (result.wait_for(std::chrono::milliseconds(1)) != std::future_status::ready)
            QCoreApplication::processEvents();
        return result.get();
    }

    bool Send(ControlMessage const& p_Message)
    {
        return FromElsewhere([&] { return RunFollower::Send({Folder->path()}, p_Message); });
    }
    /// Connects, and says it.
    std::unique_ptr<QLocalSocket> Say(QByteArray const& p_Line) const;
    static RunSnapshot Downloading(quint32 p_File);

    static constexpr int c_Timeout = 10'000;
    std::unique_ptr<QTemporaryDir> Folder;
    std::unique_ptr<ControlSocket> Socket;
    std::vector<ControlMessage> Received;
};

void ControlSocketTest::init()
{
    Folder = std::make_unique<QTemporaryDir>();
    Socket = std::make_unique<ControlSocket>();
    Received.clear();
    connect(Socket.get(), &ControlSocket::Received, this,
            [this](ControlMessage const& p_Message) { Received.push_back(p_Message); });
    QVERIFY(Socket->Listen(Folder->path(), "Game"));
}

void ControlSocketTest::cleanup()
{
    Socket.reset();
    Folder.reset();
}

std::unique_ptr<QLocalSocket> ControlSocketTest::Say(QByteArray const& p_Line) const
{
    auto socket = std::make_unique<QLocalSocket>();
    socket->connectToServer(ControlLine::SocketOf(Folder->path()));
    if (!socket->waitForConnected(c_Timeout))
        qFatal("nobody listens");
    socket->write(p_Line);
    return socket;
}

/// Every value is one of its own.
RunSnapshot ControlSocketTest::Downloading(quint32 p_File)
{
    constexpr quint64 c_Large = 5'000'000'000;

    RunSnapshot snapshot;
    snapshot.Phase = RunPhase::DownloadingBase;
    snapshot.FileNumber = p_File;
    snapshot.FileCount = 312;
    snapshot.File = QString::fromUtf8("Data/été.MPQ");
    snapshot.BytesDone = c_Large;
    snapshot.BytesTotal = 2 * c_Large;
    snapshot.Rate = 12'000;
    snapshot.Remaining = 77;
    snapshot.Mirror = "a.example";
    snapshot.BytesReceived = c_Large + 1;
    snapshot.Servers = {{"a.example", c_Large + 2}, {"b.example:81", 0}};
    snapshot.Wait = ServerWait{"b.example:81", "connection refused", 12, 8, 3, 9};
    return snapshot;
}

void ControlSocketTest::AMessageArrivesAsItWasSent_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<quint64>("rate");
    using Type = ControlMessage::Type;
    QTest::newRow("pause") << int(Type::Pause) << quint64(0);
    QTest::newRow("resume") << int(Type::Resume) << quint64(0);
    QTest::newRow("no limit") << int(Type::LimitRate) << quint64(0);
    QTest::newRow("limit") << int(Type::LimitRate) << quint64(512'000);
    QTest::newRow("large") << int(Type::LimitRate) << std::numeric_limits<quint64>::max();
}

void ControlSocketTest::AMessageArrivesAsItWasSent()
{
    QFETCH(int, kind);
    QFETCH(quint64, rate);
    ControlMessage const message{static_cast<ControlMessage::Type>(kind), rate};
    if (message.Kind == ControlMessage::Type::Pause) {
        RunSnapshot held;
        held.IsHeld = true;
        Socket->Show(held);
    }
    QVERIFY(Send(message));
    QCOMPARE(Received.size(), std::size_t(1));
    QVERIFY(Received[0].Kind == message.Kind);
    QCOMPARE(Received[0].BytesPerSecond, rate);
}

void ControlSocketTest::OtherLinesAreNoMessages_data()
{
    QTest::addColumn<QByteArray>("line");
    QByteArray const lines =
        "limit|limit |limit -1|limit +1|limit  1|limit 1 |limit 01|limit 1k|"
        "limit 0x1|limit 1 2|LIMIT 1| limit 1|limit1|limit 18446744073709551616|"
        "limit 00000000000000000000000000000001|resume 1|r|pause\r|PAUSE|"
        "pausefor|";
    for (QByteArray const& line : lines.split('|'))
        QTest::newRow(line) << QByteArray(line) + '\n';
    QTest::newRow("a zero byte") << QByteArray("limit 1\0\n", 9);
}

void ControlSocketTest::OtherLinesAreNoMessages()
{
    QFETCH(QByteArray, line);
    QByteArray const answer = FromElsewhere([&] {
        auto const socket = Say(line);
        socket->waitForDisconnected(c_Timeout);
        return socket->readAll();
    });
    // A line that is too long is hung up on, as soon as that much of it has arrived.
    QVERIFY2(answer == "unknown\n" || (line.size() > 32 && answer.isEmpty()), answer.constData());
    QVERIFY(Received.empty());
}

void ControlSocketTest::APauseIsAnsweredWhenItHolds()
{
    for (bool const holds : {true, false}) {
        auto answer = std::async(std::launch::async, [this] {
            return RunFollower::Send({Folder->path()}, {ControlMessage::Type::Pause, 0});
        });
        QTRY_VERIFY(!Received.empty());
        Socket->Show(Downloading(1));
        QVERIFY(answer.wait_for(std::chrono::milliseconds(100)) == std::future_status::timeout);
        RunSnapshot held;
        held.IsHeld = true;
        if (holds)
            Socket->Show(held);
        else
            Socket->TellResumed();
        QCOMPARE(FromElsewhere([&] { return answer.get(); }), holds);
        Socket->Show(Downloading(2));
        Received.clear();
    }
}

void ControlSocketTest::APauseThatHoldsIsAnsweredAtOnce()
{
    RunSnapshot held;
    held.IsHeld = true;
    Socket->Show(held);
    QVERIFY(Send({ControlMessage::Type::Pause, 0}));
    Socket->TellResumed(); // the module has not said so yet
    auto answer = std::async(std::launch::async, [this] {
        return RunFollower::Send({Folder->path()}, {ControlMessage::Type::Pause, 0});
    });
    QTRY_COMPARE(Received.size(), std::size_t(2));
    QVERIFY(answer.wait_for(std::chrono::milliseconds(100)) == std::future_status::timeout);
    Socket->End({});
    QVERIFY(!FromElsewhere([&] { return answer.get(); }));
}

void ControlSocketTest::NobodyWhoListensIsAFailure()
{
    Socket.reset();
    QVERIFY(!RunFollower::Send({Folder->path()}, {ControlMessage::Type::LimitRate, 1}));
    QVERIFY(!RunFollower::Look(Folder->path()));
    QVERIFY(!RunFollower().Follow({Folder->path()}));
}

void ControlSocketTest::WhatAnotherUserHasMadeIsNotSpokenTo()
{
    if (!GiveLinkToAnother(ControlLine::SocketOf(Folder->path())))
        QSKIP("only root can give a file to another user");
    QVERIFY(!Send({ControlMessage::Type::LimitRate, 1}));
    QVERIFY(!FromElsewhere([&] { return RunFollower::Look(Folder->path()); }));
    QVERIFY(!RunFollower().Follow({Folder->path()}));
    QVERIFY(Received.empty());
}

void ControlSocketTest::TheFolderAloneNamesTheSocket()
{
    constexpr int c_MostBytes = 104; // that every system takes

    QString const folder = Folder->path();
    QString const name = ControlLine::SocketOf(folder);
    QCOMPARE(ModeOf(name) & 077, 0);
    QVERIFY(name.size() < c_MostBytes);
    QCOMPARE(ControlLine::SocketOf(folder + "/long" + QString(200, 'g')).size(), name.size());
    QVERIFY(QFile::link(folder, folder + "/link"));
    ScopedVariable const runtime("XDG_RUNTIME_DIR", "/elsewhere");
    ScopedVariable const temporary("TMPDIR", "/elsewhere");
    for (char const* const spelling : {"/", "/./", "/no/..", "/link/", "/link/link"})
        QCOMPARE(ControlLine::SocketOf(folder + spelling), name);
    QVERIFY(ControlLine::SocketOf(folder + "/other") != name);
}

void ControlSocketTest::AFollowerSeesTheRunToItsEnd()
{
    Socket->Show(Downloading(1));
    auto const look = FromElsewhere([&] { return RunFollower::Look(Folder->path()); });
    QVERIFY(look);
    QCOMPARE(look->ProcessId, QCoreApplication::applicationPid());
    QVERIFY(look->Snapshot == Downloading(1));

    RunFollower follower;
    std::vector<RunSnapshot> snapshots;
    std::vector<RunResult> ends;
    QString game;
    connect(&follower, &RunFollower::Progressed, this,
            [&](RunSnapshot const& p_Snapshot) { snapshots.push_back(p_Snapshot); });
    connect(&follower, &RunFollower::Ended, this,
            [&](RunResult const& p_Result, QString const& p_Game) {
                ends.push_back(p_Result);
                game = p_Game;
            });
    QVERIFY(follower.Follow({"/nobody", Folder->path()}));
    QTRY_COMPARE(snapshots.size(), std::size_t(1));
    Socket->Show(Downloading(2));
    Socket->Show({});
    RunResult result;
    result.Build = "build 7";
    result.Folder = "/game/";
    result.Locale = "frFR";
    result.Transfers = 3;
    result.Problem = Failure{FailureKind::DiskFull, "a", "b"};
    Socket->End(result);
    QTRY_COMPARE(ends.size(), std::size_t(1));
    QVERIFY(snapshots == (std::vector<RunSnapshot>{Downloading(1), Downloading(2), {}}));
    QCOMPARE(game, QString("Game"));
    QCOMPARE(ends[0].Build, result.Build);
    QCOMPARE(ends[0].Folder, result.Folder);
    QCOMPARE(ends[0].Locale, result.Locale);
    QCOMPARE(ends[0].Transfers, result.Transfers);
    QCOMPARE(ends[0].Problem->Sentence(), result.Problem->Sentence());
    QTest::qWait(0); // the connection ends too
    QCOMPARE(ends.size(), std::size_t(1));
}

void ControlSocketTest::AnEndWithoutAWordIsAFailure()
{
    RunFollower follower;
    QSignalSpy progressed(&follower, &RunFollower::Progressed);
    std::optional<Failure> failure;
    connect(&follower, &RunFollower::Ended, this,
            [&](RunResult const& p_Result) { failure = p_Result.Problem; });
    QVERIFY(follower.Follow({Folder->path()}));
    QVERIFY(progressed.wait());
    Socket.reset();
    QTRY_VERIFY(failure);
    QCOMPARE(failure->Identifier(), QString("run-lost"));
}

void ControlSocketTest::AFollowerThatDoesNotReadCostsTheRunNothing()
{
    constexpr quint32 c_Many = 20'000;
    constexpr int c_MostBytes = 1024 * 1024; // the system's own buffer too

    auto const lazy = Say("watch\n");
    lazy->setReadBufferSize(1);
    QTRY_VERIFY(lazy->bytesAvailable() > 0);
    quint32 file = 0;
    while (file < c_Many)
        Socket->Show(Downloading(++file));
    lazy->setReadBufferSize(0);
    QByteArray read;
    auto const arrived = [&](QByteArray const& p_Text) {
        QCoreApplication::processEvents();
        read += lazy->readAll();
        return read.contains(p_Text);
    };
    QTRY_VERIFY(arrived("\"fileNumber\":2,"));
    while (lazy->waitForReadyRead(1))
        arrived({});
    QVERIFY2(read.size() < c_MostBytes, QByteArray::number(read.size()));
    Socket->Show(Downloading(++file)); // one that reads again sees the rest
    Socket->End({});
    QTRY_VERIFY(arrived("\"end\":true"));
    QVERIFY(read.contains("\"fileNumber\":20001,"));
    for (QByteArray const& line : read.split('\n'))
        QVERIFY2(line.isEmpty() || (line.startsWith('{') && line.endsWith('}')), line.constData());
}

void ControlSocketTest::AMessageIsAllThatIsRead()
{
    QByteArray const answer = FromElsewhere([&] {
        auto const socket = Say("resume\nlimit 1\n");
        socket->waitForDisconnected(c_Timeout);
        return socket->readAll();
    });
    QCOMPARE(answer, QByteArray("ok\n"));
    QCOMPARE(Received.size(), std::size_t(1));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::ControlSocketTest)
#include "tst_ControlSocket.moc"
