#include "Launcher/Application/Application.hpp"
#include "Launcher/Application/ContentServer.hpp"
#include "Tests/Support/ScriptedServer.hpp"
#include "Tests/Support/TestApplication.hpp"
#include "Tests/Support/TestHost.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QSignalSpy>
#include <QtTest>

#include <cstring>
#include <set>
#include <type_traits>

namespace Varnholt::Launcher {

namespace {

/// An application that overrides nothing it need not.
class PlainApplication : public Application {
public:
    PlainApplication()
        : Application("Plain Game", "plain_app")
    {
    }
    void Init() override {}
    void Uninit() override {}
    QString GetRessource(ApplicationRessource::Type) override { return {}; }
    std::vector<ApplicationManifestLocale> GetAvailableLocales() const override { return {}; }
    QString GetAppLocale() override { return {}; }
    void SetAppLocale(QString) override {}

    using QObject::disconnectNotify;
};

/// The place of a virtual function in its class's table, as a pointer to the member tells it.
template <typename Function>
std::ptrdiff_t SlotOf(Function p_Function)
{
    std::ptrdiff_t words[2] = {};
    static_assert(sizeof p_Function == sizeof words);
    std::memcpy(words, &p_Function, sizeof words);
#if defined(Q_PROCESSOR_ARM)
    bool const isVirtual = words[1] % 2 != 0;
    std::ptrdiff_t const offset = words[0];
#else
    bool const isVirtual = words[0] % 2 != 0;
    std::ptrdiff_t const offset = words[0] - 1;
#endif
    return isVirtual ? offset / static_cast<std::ptrdiff_t>(sizeof(void*)) : -1;
}

} // namespace

class ApplicationTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void TheConstructorTakesNamesAndStartsNothing();
    void VirtualOperationsKeepTheirSlots();
    void BaseOperationsDoNothing();
    void MutexesAreRecursiveWhereClosuresAreNotQueued();
    void ClosuresRunInTheOrderOfTheirQueueing();
    void AClosureQueuedInsideARunningOneRunsLater();
    void TheQueuesAreSafeFromManyThreads();
    void RelaySlotsEmitTheSignalOfTheSameSuffix();
    void TheCallbackTableIsInOnePiece();
    void LauncherLanguagesSkipTheWithdrawnRows();
    void LauncherLanguagesAreIndexedByTheirId();
    void TheContentServerComesFromTheEnvironmentAtEveryCall();
    void DestroyingAnApplicationWithRequestsInFlightIsSafe();
};

void ApplicationTest::TheConstructorTakesNamesAndStartsNothing()
{
    PlainApplication app;
    QCOMPARE(app.GetName(), QString("Plain Game"));
    QCOMPARE(app.Name, QString("Plain Game"));
    QCOMPARE(app.AppId, QString("plain_app"));
    QVERIFY(app.Reserved.isEmpty());
    QVERIFY(app.NetworkManager != nullptr);
    QCOMPARE(app.NetworkManager->parent(), &app);
    QVERIFY(app.DownloadRequests.empty() && app.ContentRequests.empty());
    QVERIFY(app.ContentSizeRequests.empty());
    QVERIFY(app.AsyncQueue.empty() && app.SyncQueue.empty() && app.WriteQueue.empty());
    QCOMPARE(app.WriteQueueSize, 0);
    QVERIFY(app.Timer.isNull());
    QVERIFY(!app.UISettingChanged);
}

// Hosts and modules are built apart: a host calls by the place in the table.
void ApplicationTest::VirtualOperationsKeepTheirSlots()
{
    using TestSupport::TestApplication;
    std::ptrdiff_t const slots[] = {SlotOf(&Application::Init),
                                    SlotOf(&Application::Uninit),
                                    SlotOf(&Application::GetRessource),
                                    SlotOf(&Application::IsGameRunning),
                                    SlotOf(&Application::Install),
                                    SlotOf(&Application::Start),
                                    SlotOf(&Application::Repair),
                                    SlotOf(&Application::AbortRepair),
                                    SlotOf(&Application::Uninstall),
                                    SlotOf(&Application::SuspendDownload),
                                    SlotOf(&Application::ResumeDownload),
                                    SlotOf(&Application::GetAvailableLocales),
                                    SlotOf(&Application::GetAppLocale),
                                    SlotOf(&Application::SetAppLocale),
                                    SlotOf(&Application::IsCASCApp),
                                    SlotOf(&Application::EnableCASC),
                                    SlotOf(&Application::GetCustomIconAnimation),
                                    SlotOf(&Application::GetCustomIconAnimationFramerate),
                                    SlotOf(&TestApplication::OnInstall),
                                    SlotOf(&TestApplication::AfterOnManifestReceived)};
    QCOMPARE(std::size(slots), std::size_t{20});
    std::ptrdiff_t const lastOfQObject = SlotOf(&PlainApplication::disconnectNotify);
    QVERIFY(lastOfQObject > 0);
    for (std::size_t i = 0; i < std::size(slots); ++i)
        QCOMPARE(slots[i], lastOfQObject + 1 + static_cast<std::ptrdiff_t>(i));
}

void ApplicationTest::BaseOperationsDoNothing()
{
    PlainApplication app;
    QVERIFY(!app.IsGameRunning());
    app.Install("/nowhere/", true);
    QVERIFY(!app.Start("login", "password"));
    app.Repair();
    app.AbortRepair();
    app.Uninstall(true);
    app.SuspendDownload();
    app.ResumeDownload();
    QVERIFY(!app.IsCASCApp());
    app.EnableCASC();
    QVERIFY(app.GetCustomIconAnimation().empty());
    QCOMPARE(app.GetCustomIconAnimationFramerate(), 0);
    QVERIFY(app.AsyncQueue.empty() && app.SyncQueue.empty());
}

void ApplicationTest::MutexesAreRecursiveWhereClosuresAreNotQueued()
{
    static_assert(std::is_same_v<decltype(Application::DownloadRequestsMutex), QRecursiveMutex>);
    static_assert(std::is_same_v<decltype(Application::ContentRequestsMutex), QRecursiveMutex>);
    static_assert(std::is_same_v<decltype(Application::ContentSizeRequestsMutex), QRecursiveMutex>);
    static_assert(std::is_same_v<decltype(Application::WriteQueueMutex), QRecursiveMutex>);
    PlainApplication app;
    QMutex* const queues[] = {&app.SyncQueueMutex, &app.AsyncQueueMutex};
    for (QMutex* const queue : queues) {
        QVERIFY(!queue->isRecursive());
        queue->lock();
        QVERIFY(!queue->tryLock());
        queue->unlock();
    }
    QVERIFY(app.ContentRequestsMutex.tryLock() && app.ContentRequestsMutex.tryLock());
    app.ContentRequestsMutex.unlock();
    app.ContentRequestsMutex.unlock();
}

void ApplicationTest::ClosuresRunInTheOrderOfTheirQueueing()
{
    TestSupport::TestApplication app;
    TestSupport::TestHost host(app, TestSupport::TestHost::Worker::ByHand);
    QStringList order;
    for (char const* const name : {"1", "2", "3"}) {
        app.EnqueueSync([&order, name] { order += QString("sync ") + name; });
        app.EnqueueAsync([&order, name] { order += QString("async ") + name; });
    }
    QCOMPARE(host.SyncCount(), std::size_t{3});
    QCOMPARE(host.AsyncCount(), std::size_t{3});
    while (host.RunNextSync())
        continue;
    while (host.RunNextAsync())
        continue;
    QCOMPARE(order, QStringList({"sync 1", "sync 2", "sync 3", "async 1", "async 2", "async 3"}));
}

void ApplicationTest::AClosureQueuedInsideARunningOneRunsLater()
{
    TestSupport::TestApplication app;
    TestSupport::TestHost host(app, TestSupport::TestHost::Worker::ByHand);
    QStringList order;
    app.EnqueueSync([&] {
        order += "outer begins";
        app.EnqueueSync([&] { order += "inner"; });
        order += "outer ends";
    });
    app.EnqueueSync([&] { order += "second"; });
    while (host.RunNextSync())
        continue;
    QCOMPARE(order, QStringList({"outer begins", "outer ends", "second", "inner"}));
}

void ApplicationTest::TheQueuesAreSafeFromManyThreads()
{
    constexpr int c_Threads = 4;
    constexpr int c_Closures = 1000;
    TestSupport::TestApplication app;
    TestSupport::TestHost host(app);
    std::atomic<int> sync{0};
    std::atomic<int> async{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < c_Threads; ++i)
        threads.emplace_back([&] {
            for (int j = 0; j < c_Closures; ++j) {
                app.EnqueueSync([&] { ++sync; });
                app.EnqueueAsync([&] { ++async; });
            }
        });
    QVERIFY(host.RunUntil([&] { return sync == c_Threads * c_Closures; }));
    QVERIFY(host.RunUntil([&] { return async == c_Threads * c_Closures; }));
    for (std::thread& thread : threads)
        thread.join();
}

void ApplicationTest::RelaySlotsEmitTheSignalOfTheSameSuffix()
{
    PlainApplication app;
    HTTP_DownloadFileRequest request;
    QSignalSpy update(&app, SIGNAL(OnHTTPDownloadProgressUpdate(HTTP_DownloadFileRequest*)));
    QSignalSpy complete(&app, SIGNAL(OnHTTPDownloadProgressComplete(HTTP_DownloadFileRequest*)));
    QSignalSpy restarted(&app, SIGNAL(OnHTTPDownloadRestarted(HTTP_DownloadFileRequest*)));
    app.AppInt_OnHTTPDownloadProgressUpdate(&request);
    QCOMPARE(update.count(), 1);
    QCOMPARE(complete.count() + restarted.count(), 0);
    app.AppInt_OnHTTPDownloadProgressComplete(&request);
    QCOMPARE(complete.count(), 1);
    app.AppInt_OnHTTPDownloadRestarted(&request);
    QCOMPARE(restarted.count(), 1);
    QCOMPARE(update.count() + complete.count(), 2);
    QCOMPARE(complete[0][0].value<HTTP_DownloadFileRequest*>(), &request);
}

void ApplicationTest::TheCallbackTableIsInOnePiece()
{
    // Hosts fill it in as one table of pointers, in this order.
    PlainApplication app;
    auto const at = [](auto& p_Member) { return reinterpret_cast<char*>(&p_Member); };
    char* const slots[] = {at(app.ErrorReporter),          at(app.ReadSetting),
                           at(app.WriteSetting),           at(app.ListSettingKeys),
                           at(app.RemoveSetting),          at(app.CurrentLauncherLocale),
                           at(app.IsDownloadBlocked),      at(app.NotifyDownloadStarting),
                           at(app.NotifyDownloadFinished), at(app.ShouldContinue),
                           at(app.UseDevChannel)};
    for (std::size_t i = 1; i < std::size(slots); ++i)
        QCOMPARE(slots[i] - slots[i - 1], static_cast<std::ptrdiff_t>(sizeof(void (*)())));
}

void ApplicationTest::LauncherLanguagesSkipTheWithdrawnRows()
{
    QStringList codes;
    QStringList natives;
    for (LauncherLocale const& locale : LauncherLocale::Available()) {
        codes += locale.Code;
        natives += locale.NativeName;
    }
    QCOMPARE(codes, QStringList({"enUS", "frFR", "esES", "itIT"}));
    QCOMPARE(natives, QStringList({"English", QString::fromUtf8("Français"),
                                   QString::fromUtf8("Español"), "Italiano"}));
}

void ApplicationTest::LauncherLanguagesAreIndexedByTheirId()
{
    auto const& table = LauncherLocale::Table();
    QCOMPARE(table.size(), std::size_t{6});
    // Rows 2 and 4 are blank on purpose: their languages were withdrawn, their ids stay taken.
    for (int const blank : {2, 4}) {
        LauncherLocale const& row = table[static_cast<std::size_t>(blank)];
        QVERIFY(row.IsBlank());
        QCOMPARE(row.Id, 0);
        QVERIFY(row.Name.isEmpty() && row.NativeName.isEmpty() && row.TranslationFile.isEmpty());
    }
    for (int const id : {0, 1, 3, 5}) {
        LauncherLocale const& row = table[static_cast<std::size_t>(id)];
        QCOMPARE(row.Id, id);
        QCOMPARE(row.TranslationFile, "Locales/locale_" + row.Code + ".qm");
    }
    QCOMPARE(table[1].Name, QString("French"));
    QCOMPARE(table[3].Name, QString("Spanish"));
    QCOMPARE(table[5].Name, QString("Italian"));
}

void ApplicationTest::TheContentServerComesFromTheEnvironmentAtEveryCall()
{
    qputenv("VARNHOLT_CONTENT_BASE_URL", "http://one/");
    QCOMPARE(DefaultContentBaseUrl(), QString("http://one/"));
    qputenv("VARNHOLT_CONTENT_BASE_URL", "http://two/folder");
    QCOMPARE(DefaultContentBaseUrl(), QString("http://two/folder/"));
    qputenv("VARNHOLT_CONTENT_BASE_URL", "");
    QString const builtIn = DefaultContentBaseUrl();
    qunsetenv("VARNHOLT_CONTENT_BASE_URL");
    QCOMPARE(DefaultContentBaseUrl(), builtIn);
    QVERIFY(builtIn.startsWith("http") && builtIn.endsWith("/"));
}

void ApplicationTest::DestroyingAnApplicationWithRequestsInFlightIsSafe()
{
    TestSupport::ScriptedServer server;
    server.Script("*").Always(TestSupport::Answer::SilentBeforeHeaders());
    int calls = 0;
    {
        TestSupport::TestApplication app;
        TestSupport::TestHost host(app);
        app.GetRemoteFileContent(server.Url("/a"), [&](QString, QByteArray*) { ++calls; });
        app.GetRemoteFileSize(server.Url("/b"), [&](QString, unsigned long long) { ++calls; });
        QVERIFY(host.RunUntil([&] { return server.Requests().size() == 2; }));
        host.RunPending();
    }
    QCoreApplication::processEvents();
    QCOMPARE(calls, 0);
}

} // namespace Varnholt::Launcher

VARNHOLT_TEST(Varnholt::Launcher::ApplicationTest)
#include "tst_Application.moc"
