#include "Tests/Support/TestMain.hpp"

#include <QByteArray>
#include <QObject>
#include <QProcess>
#include <QString>
#include <QtTest>

/// Whether ThreadSanitizer reports what it must, and nothing else, in a program that uses Qt.
class ThreadSanitizerTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void ReportsWhatNothingOrders_data();
    void ReportsWhatNothingOrders();
    void TrustsWhatQtOrders_data();
    void TrustsWhatQtOrders();

private:
    QByteArray Run(QString const& p_Case);

    int Status = -1;
};

/// \return what the program wrote; its exit status is in `Status`
QByteArray ThreadSanitizerTest::Run(QString const& p_Case)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(QStringLiteral(VARNHOLT_RACING_THREADS), {p_Case});
    bool const ended = process.waitForFinished() && process.exitStatus() == QProcess::NormalExit;
    Status = ended ? process.exitCode() : -1;
    return process.readAll();
}

void ThreadSanitizerTest::ReportsWhatNothingOrders_data()
{
    QTest::addColumn<QString>("name");
    for (char const* const name :
         {"no-order", "other-mutex", "both-only-read", "other-sender", "behind-the-signal"})
        QTest::newRow(name) << QString::fromLatin1(name);
}

void ThreadSanitizerTest::ReportsWhatNothingOrders()
{
    QFETCH(QString, name);
    constexpr int c_Reported = 66;

    QByteArray const output = Run(name);

    QVERIFY2(output.contains("WARNING: ThreadSanitizer: data race"), output);
    QVERIFY2(output.contains("g_Field"), output);
    QVERIFY2(output.contains("ran\n"), output);
    QCOMPARE(Status, c_Reported);
}

void ThreadSanitizerTest::TrustsWhatQtOrders_data()
{
    QTest::addColumn<QString>("name");
    for (char const* const name :
         {"queued-signal", "queued-argument", "sender-gone", "queued-call", "blocking-call",
          "deleted-later", "direct-call-once-connected", "told-to-end", "end-of-pool",
          "end-of-thread", "mutex", "recursive-mutex", "writer-after-reader",
          "reader-after-writers", "semaphore"})
        QTest::newRow(name) << QString::fromLatin1(name);
}

void ThreadSanitizerTest::TrustsWhatQtOrders()
{
    QFETCH(QString, name);

    QByteArray const output = Run(name);

    QCOMPARE(output, QByteArray("ran\n"));
    QCOMPARE(Status, 0);
}

VARNHOLT_TEST(ThreadSanitizerTest)

#include "tst_ThreadSanitizer.moc"
