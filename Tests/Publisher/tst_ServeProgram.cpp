#include "Tests/Publisher/ProgramRun.hpp"
#include "Tests/Publisher/ServingThread.hpp"
#include "Tests/Publisher/StuckConnection.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QTcpSocket>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>

namespace Varnholt::TestSupport {

class ServeProgramTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void AnswersOnAFreePortAndEndsOnASignal_data();
    void AnswersOnAFreePortAndEndsOnASignal();
    void LogsRequestsUnlessItIsToBeQuiet();
    void ASignalRightAtTheStartEndsIt();
    void AClientThatStopsReadingDoesNotKeepIt();

private:
    QStringList Arguments(QStringList const& p_More = {}) const
    {
        return QStringList({"serve", "--root", Folder.path(), "--port", "0"}) + p_More;
    }
    /// The port of the line that tells where the program serves.
    static quint16 PortOf(QByteArray const& p_Line)
    {
        return static_cast<quint16>(QUrl(QString::fromUtf8(p_Line.split(' ').last())).port(0));
    }

    QTemporaryDir Folder;
};

void ServeProgramTest::initTestCase()
{
    QVERIFY(WriteFile(Folder.filePath("ten"), "0123456789"));
    QVERIFY(WriteFile(Folder.filePath("huge"), QByteArray(50'000'000, 'x')));
}

void ServeProgramTest::AnswersOnAFreePortAndEndsOnASignal_data()
{
    QTest::addColumn<int>("signal");
    QTest::newRow("SIGINT") << SIGINT;
    QTest::newRow("SIGTERM") << SIGTERM;
}

void ServeProgramTest::AnswersOnAFreePortAndEndsOnASignal()
{
    QFETCH(int, signal);
    ProgramRun run(Arguments());
    QByteArray const line = run.ReadLine();
    quint16 const port = PortOf(line);
    QVERIFY(port != 0);
    QCOMPARE(QString::fromUtf8(line),
             QString("Serving %1 at http://127.0.0.1:%2/").arg(Folder.path()).arg(port));
    QCOMPARE(Ask(port, "GET /ten").Body, QByteArray("0123456789"));
    QCOMPARE(AskRange(port, "GET /ten", "bytes=7-").Body, QByteArray("789"));
    QCOMPARE(Ask(port, "GET /none").Status, 404);
    run.Signal(signal);
    QCOMPARE(run.Finish().Status, 0);
    QCOMPARE(Ask(port, "GET /ten").Status, 0);
}

void ServeProgramTest::LogsRequestsUnlessItIsToBeQuiet()
{
    for (bool const quiet : {false, true}) {
        ProgramRun run(Arguments(quiet ? QStringList("--quiet") : QStringList()));
        quint16 const port = PortOf(run.ReadLine());
        QCOMPARE(AskRange(port, "GET /ten", "bytes=7-").Status, 206);
        run.Signal(SIGTERM);
        ProgramResult const result = run.Finish();
        QCOMPARE(result.Status, 0);
        QCOMPARE(result.Output, QByteArray());
        QCOMPARE(result.Errors, QByteArray(quiet ? "" : "GET /ten bytes=7- 206\n"));
    }
}

void ServeProgramTest::ASignalRightAtTheStartEndsIt()
{
    ProgramRun run(Arguments());
    QVERIFY(!run.ReadLine().isEmpty());
    run.Signal(SIGTERM);
    QCOMPARE(run.Finish().Status, 0);
}

void ServeProgramTest::AClientThatStopsReadingDoesNotKeepIt()
{
    if (!StuckConnection::CanBeSeen())
        QSKIP("the system does not show its connections");
    ProgramRun run(Arguments());
    quint16 const port = PortOf(run.ReadLine());
    QTcpSocket socket;
    socket.setReadBufferSize(1000);
    socket.connectToHost("127.0.0.1", port);
    socket.write("GET /huge HTTP/1.1\r\nHost: a\r\n\r\n");
    QVERIFY(socket.waitForReadyRead(30000));
    StuckConnection connection(port);
    QTRY_VERIFY_WITH_TIMEOUT(connection.IsStuck(), 30000);
    run.Signal(SIGINT);
    QCOMPARE(run.Finish().Status, 0);
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::ServeProgramTest)
#include "tst_ServeProgram.moc"
