#include "Host/Window/Pages/GamePage.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/ScopedVariable.hpp"
#include "Tests/Support/TestMain.hpp"
#include "Tests/Window/LoopWatch.hpp"
#include "Tests/Window/WindowGame.hpp"

#include <atomic>

namespace Varnholt::TestSupport {

using Host::RunPhase;

/// Whatever the module is busy with, the window answers.
class WindowResponseTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void DuringAnInstallationFromASilentServer();
    void WhileAFileIsCompleted();
    void DuringASlowListingOfProcesses();
    void WhenItIsClosed();
    void OneThatIsKeptInTheTrayGoesOn();

private:
#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
    static constexpr qint64 c_Most = 250; ///< milliseconds; everything takes several times as long
#else
    static constexpr qint64 c_Most = 50; ///< milliseconds
#endif
    static constexpr int c_Busy = 400; ///< milliseconds in which the module does nothing else
};

#define VERIFY_ANSWERED(p_Watch)                                                                   \
    QVERIFY2((p_Watch).Longest() < c_Most, qPrintable(QString::number((p_Watch).Longest())))

void WindowResponseTest::DuringAnInstallationFromASilentServer()
{
    WindowGame game;
    game.AddFiles().Publish();
    QString const gate = game.HoldContent("Data/base.MPQ", 1'000);
    LoopWatch const watch;
    game.Open();
    game.Install();
    QVERIFY(
        game.WaitUntil([&] { return game.State().Snapshot.Phase == RunPhase::DownloadingBase; }));
    int const before = watch.Ticks();
    QVERIFY(game.WaitUntil([&] { return watch.Ticks() > before + 100; }));
    game.Server.OpenGate(gate);
    QVERIFY(game.WaitForPrimary("Play"));
    VERIFY_ANSWERED(watch);
}

/// As long as the digest of a large file takes, or its way to the disk.
void WindowResponseTest::WhileAFileIsCompleted()
{
    WindowGame game;
    game.AddFiles().Publish();
    std::atomic<int> times{0};
    game.Options.Flush = [&](QString const&) {
        QThread::msleep(c_Busy);
        ++times;
    };
    game.Open();
    LoopWatch const watch;
    game.Install();
    QVERIFY(game.WaitForPrimary("Play"));
    QVERIFY(times > 0);
    VERIFY_ANSWERED(watch);
}

void WindowResponseTest::DuringASlowListingOfProcesses()
{
    WindowGame game;
    game.AddFiles().Publish();
    QString const ps = game.Base + "ps";
    QVERIFY(WriteFile(ps, "#!/bin/sh\nsleep 0.4\necho listed >>\"$0.listed\"\n"));
    QVERIFY(SetMode(ps, 0755));
    ScopedVariable const path("PATH", game.Base.toUtf8() + ":" + qgetenv("PATH"));
    game.Open();
    LoopWatch const watch;
    game.Install();
    QVERIFY(game.WaitForPrimary("Play"));
    QVERIFY(QFile::exists(ps + ".listed"));
    VERIFY_ANSWERED(watch);
}

void WindowResponseTest::WhenItIsClosed()
{
    WindowGame game;
    game.AddFiles().Publish();
    game.HoldContent("Data/base.MPQ", 1'000);
    game.Open();
    game.Install();
    QString const part = game.Path("Data/base.MPQ.part");
    QVERIFY(game.WaitUntil([&] { return QFileInfo(part).size() == 1'000; }));
    LoopWatch const watch;
    game.Window().close();
    QVERIFY(!game.Window().isVisible());
    QVERIFY(game.WaitUntil([&] { return game.IsFinished(); }));
    VERIFY_ANSWERED(watch);
    QCOMPARE(QFileInfo(part).size(), 1'000);
    QVERIFY(game.IsMarkedUnfinished());
}

void WindowResponseTest::OneThatIsKeptInTheTrayGoesOn()
{
    WindowGame game;
    game.AddFiles().Publish();
    QString const gate = game.HoldContent("Data/base.MPQ", 1'000);
    game.Open();
    game.Window().SetEndsWhenClosed(false);
    game.Install();
    QVERIFY(
        game.WaitUntil([&] { return game.State().Snapshot.Phase == RunPhase::DownloadingBase; }));
    game.Window().close();
    QVERIFY(!game.Window().isVisible());
    QVERIFY(game.Controller().IsBusy());
    game.Server.OpenGate(gate);
    QVERIFY(game.WaitForPrimary("Play"));
    QCOMPARE(game.Wrong(), QStringList());
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::WindowResponseTest)
#include "tst_WindowResponse.moc"
