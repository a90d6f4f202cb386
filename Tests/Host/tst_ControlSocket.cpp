#include "Host/Core/Session/ControlSocket.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/ScopedVariable.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QDir>
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
    void NobodyWhoListensIsAFailure();
    void OnlyOneListens();

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

    static constexpr int c_Timeout = 10'000;
    QString const Settings = QStringLiteral("/a/host.ini");
    std::unique_ptr<QTemporaryDir> Folder;
    std::unique_ptr<ScopedVariable> Runtime;
    std::unique_ptr<ControlSocket> Socket;
    std::vector<ControlMessage> Received;
    bool AnswersPauses = true;
};

void ControlSocketTest::init()
{
    Folder = std::make_unique<QTemporaryDir>();
    QVERIFY(SetMode(Folder->path(), 0700));
    Runtime = std::make_unique<ScopedVariable>("XDG_RUNTIME_DIR", Folder->path().toUtf8());
    Socket = std::make_unique<ControlSocket>(Settings);
    Received.clear();
    AnswersPauses = true;
    connect(Socket.get(), &ControlSocket::Received, this, [this](ControlMessage const& p_Message) {
        Received.push_back(p_Message);
        if (AnswersPauses)
            Socket->TellPause(true);
    });
    QVERIFY(Socket->Listen());
}

void ControlSocketTest::cleanup()
{
    Socket.reset();
    Runtime.reset();
    Folder.reset();
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
    QVERIFY(!FromElsewhere([&] { return ControlSocket::Send(Settings, message); }));
    QCOMPARE(Received.size(), std::size_t(1));
    QVERIFY(Received[0].Kind == message.Kind);
    QCOMPARE(Received[0].BytesPerSecond, rate);
}

void ControlSocketTest::OtherLinesAreNoMessages_data()
{
    QTest::addColumn<QByteArray>("line");
    for (char const* const line : {"limit",
                                   "limit ",
                                   "limit -1",
                                   "limit +1",
                                   "limit  1",
                                   "limit 1 ",
                                   "limit 01",
                                   "limit 1k",
                                   "limit 0x1",
                                   "limit 1 2",
                                   "LIMIT 1",
                                   " limit 1",
                                   "limit1",
                                   "limit 18446744073709551616",
                                   "limit 00000000000000000000000000000001",
                                   "resume 1",
                                   "r",
                                   "pause\r",
                                   "PAUSE",
                                   "pausefor",
                                   ""})
        QTest::newRow(line) << QByteArray(line) + '\n';
    QTest::newRow("a zero byte") << QByteArray("limit 1\0\n", 9);
}

void ControlSocketTest::OtherLinesAreNoMessages()
{
    QFETCH(QByteArray, line);
    QString const name = Folder->filePath(
        QDir(Folder->path()).entryList(QDir::System | QDir::NoDotAndDotDot).value(0));
    QByteArray const answer = FromElsewhere([&] {
        QLocalSocket socket;
        socket.connectToServer(name);
        socket.waitForConnected(c_Timeout);
        socket.write(line);
        socket.waitForDisconnected(c_Timeout);
        return socket.readAll();
    });
    // A line that is too long is hung up on, as soon as that much of it has arrived.
    QVERIFY2(answer == "unknown\n" || (line.size() > 32 && answer.isEmpty()), answer.constData());
    QVERIFY(Received.empty());
}

void ControlSocketTest::APauseIsAnsweredWhenItHolds()
{
    AnswersPauses = false;
    for (bool const holds : {true, false}) {
        auto answer = std::async(std::launch::async, [this] {
            return ControlSocket::Send(Settings, {ControlMessage::Type::Pause, 0});
        });
        QTRY_VERIFY(!Received.empty());
        QVERIFY(answer.wait_for(std::chrono::milliseconds(100)) == std::future_status::timeout);
        Socket->TellPause(holds);
        QCOMPARE(FromElsewhere([&] { return answer.get().has_value(); }), !holds);
        Received.clear();
    }
}

void ControlSocketTest::NobodyWhoListensIsAFailure()
{
    Socket.reset();
    auto const failure = ControlSocket::Send(Settings, {ControlMessage::Type::LimitRate, 1});
    QVERIFY(failure.has_value());
    QCOMPARE(failure->Identifier(), QString("nothing-running"));
}

void ControlSocketTest::OnlyOneListens()
{
    QVERIFY(!FromElsewhere([&] { return ControlSocket(Settings).Listen(); }));
    QVERIFY(!FromElsewhere([&] { return ControlSocket::Send(Settings, {}); }));
    QCOMPARE(Received.size(), std::size_t(1));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::ControlSocketTest)
#include "tst_ControlSocket.moc"
