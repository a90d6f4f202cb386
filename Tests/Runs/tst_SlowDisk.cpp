#include "Tests/Runs/Game.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QSemaphore>
#include <QtTest>

#include <atomic>
#include <thread>

namespace {

std::thread::id const g_TestThread = std::this_thread::get_id();
std::atomic<bool> g_DiskIsStalled{false};
QSemaphore g_Stalled;
QSemaphore g_GoOn;

} // namespace

/// The disk's: on a worker it may take its time.
extern "C" int fsync(int)
{
    if (g_DiskIsStalled && std::this_thread::get_id() != g_TestThread) {
        g_Stalled.release();
        g_GoOn.acquire();
    }
    return 0;
}

namespace Varnholt::TestSupport {

/// A disk that does not answer keeps the application's thread from nothing.
class SlowDiskTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void ASuspensionDoesNotWaitForAListThatIsWritten_data();
    void ASuspensionDoesNotWaitForAListThatIsWritten();
};

void SlowDiskTest::ASuspensionDoesNotWaitForAListThatIsWritten_data()
{
    QTest::addColumn<bool>("IsStreamed");
    QTest::newRow("base") << false;
    QTest::newRow("streamed") << true;
}

void SlowDiskTest::ASuspensionDoesNotWaitForAListThatIsWritten()
{
    QFETCH(bool, IsStreamed);
    constexpr int c_Patience = 10'000;
    Game game;
    game.Add({"a", "a", 0x20, {}, IsStreamed});
    g_DiskIsStalled = true;
    game.Begin();
    QVERIFY(game.Host.RunUntil([] { return g_Stalled.tryAcquire(); }));
    // Whoever waits for the disk waits until this loses patience.
    QSemaphore done;
    std::atomic<bool> lostPatience{false};
    std::thread patience([&] {
        lostPatience = !done.tryAcquire(1, c_Patience);
        g_DiskIsStalled = false;
        g_GoOn.release();
    });
    game.App.SuspendDownload();
    done.release();
    patience.join();
    QVERIFY(!lostPatience);
    QVERIFY(game.Finish());
    QCOMPARE(game.Read("a"), QByteArray("a"));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::SlowDiskTest)
#include "tst_SlowDisk.moc"
