#include "Launcher/Helper/Process.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/LoadedPlugin.hpp"
#include "Tests/Support/LogCapture.hpp"
#include "Tests/Support/ScopedVariable.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QElapsedTimer>
#include <QLibrary>
#include <QTemporaryDir>
#include <QtTest>

#include <atomic>
#include <csignal>
#include <dlfcn.h>
#include <memory>

namespace {

std::atomic<pid_t> g_Spared{0};

int RealKill(pid_t p_Process, int p_Signal)
{
    static auto const s_Kill = reinterpret_cast<int (*)(pid_t, int)>(dlsym(RTLD_NEXT, "kill"));
    return s_Kill(p_Process, p_Signal);
}

} // namespace

/// Stands before the C library's: a process that waits for a broken disk does not die at once.
extern "C" Q_DECL_EXPORT int kill(pid_t p_Process, int) noexcept
{
    g_Spared = p_Process;
    return 0;
}

namespace Varnholt::Launcher {

class HangingListingTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void IsSearchedAsFarAsItCame_data();
    void IsSearchedAsFarAsItCame();
    void MayEndAfterTheModuleIsGone();

private:
    /// Lets the process die that was to be killed, and waits until somebody has noticed.
    void LetItEnd();

    std::unique_ptr<TestSupport::LogCapture> Log;
    std::unique_ptr<QTemporaryDir> Folder;
    std::unique_ptr<TestSupport::ScopedVariable> Path;
};

void HangingListingTest::init()
{
    g_Spared = 0;
    Log = std::make_unique<TestSupport::LogCapture>();
    Folder = std::make_unique<QTemporaryDir>();
    QString const ps = Folder->filePath("ps");
    QVERIFY(TestSupport::WriteFile(ps, "#!/bin/sh\necho 'u 1 /games/wow-64.exe'; exec sleep 600"));
    QVERIFY(TestSupport::SetMode(ps, 0755));
    Path = std::make_unique<TestSupport::ScopedVariable>("PATH", Folder->path().toUtf8() + ":" +
                                                                     qgetenv("PATH"));
}

void HangingListingTest::cleanup()
{
    if (g_Spared != 0)
        RealKill(g_Spared, SIGKILL);
    Path.reset();
    Folder.reset();
    Log.reset();
}

void HangingListingTest::LetItEnd()
{
    if (g_Spared == 0)
        QSKIP("this system lets no program stand before its library");
    QCOMPARE(RealKill(g_Spared, SIGKILL), 0);
    // One that nobody has waited for can still be signalled.
    QTRY_VERIFY(RealKill(g_Spared, 0) != 0);
    g_Spared = 0;
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void HangingListingTest::IsSearchedAsFarAsItCame_data()
{
    QTest::addColumn<QString>("Searched");
    QTest::addColumn<bool>("Expected");
    QTest::newRow("found") << "/games/" << true;
    QTest::newRow("not found") << "/elsewhere/" << false;
}

void HangingListingTest::IsSearchedAsFarAsItCame()
{
    QFETCH(QString, Searched);
    bool found = false;
    QElapsedTimer clock;
    clock.start();
    // A worker that never handles an event, and ends.
    std::unique_ptr<QThread> const worker(QThread::create(
        [&] { found = Helper::Process::IsProcessRunningIn(Searched, {"wow-64.exe"}, nullptr); }));
    worker->start();
    QVERIFY(worker->wait());
    // Two seconds at the most; what is beyond is for a busy machine.
    QVERIFY2(clock.elapsed() < 10000, qPrintable(QString::number(clock.elapsed())));
    QTEST(found, "Expected");
    // Another would hang as well, and hosts ask ten times a second.
    pid_t const first = g_Spared;
    QVERIFY(!Helper::Process::IsProcessRunningIn("/games/", {"wow-64.exe"}, nullptr));
    QCOMPARE(g_Spared, first);
    LetItEnd();
    QCOMPARE(Log->Texts(), QStringList());
}

void HangingListingTest::MayEndAfterTheModuleIsGone()
{
    // A library handle of its own: Qt's plug-in loader keeps a library for good.
    QLibrary library(TestSupport::LoadedPlugin::Path());
    auto const instance = reinterpret_cast<QObject* (*)()>(library.resolve("qt_plugin_instance"));
    QVERIFY2(instance != nullptr, qPrintable(library.errorString()));
    {
        std::unique_ptr<QObject> const object(instance());
        auto* const app = static_cast<StandartApplication*>(qobject_cast<Application*>(&*object));
        QVERIFY(app != nullptr);
        app->InstallationPath = "/games/";
        QVERIFY(app->IsGameRunning());
    }
    QVERIFY(library.unload());
    QVERIFY(!QFile::exists(":/app_pelmora_app/background.jpg"));
    LetItEnd();
}

} // namespace Varnholt::Launcher

VARNHOLT_TEST(Varnholt::Launcher::HangingListingTest)
#include "tst_HangingListing.moc"
