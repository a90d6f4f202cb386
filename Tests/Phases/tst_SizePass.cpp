#include "Tests/Runs/Game.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

#include <dlfcn.h>

#include <atomic>
#include <chrono>
#include <thread>

namespace {

/// Of the thread that pauses behind each lock that it gives back, so that another one gets in.
thread_local bool t_LetsOthersIn = false;
thread_local int t_LetIn = 0;

} // namespace

#ifndef __SANITIZE_THREAD__ // which has one of its own
/// QMutex::unlock(), as the module calls it.
extern "C" void UnlockMutex(void* p_Mutex) asm("_ZN6QMutex6unlockEv");
extern "C" void UnlockMutex(void* p_Mutex)
{
    using Unlock = void (*)(void*);
    static auto const unlock = reinterpret_cast<Unlock>(dlsym(RTLD_NEXT, "_ZN6QMutex6unlockEv"));
    unlock(p_Mutex);
    if (!t_LetsOthersIn)
        return;
    ++t_LetIn;
    std::this_thread::sleep_for(std::chrono::microseconds(100));
}
#endif

namespace Varnholt::TestSupport {

namespace {

/// Lets the base comparison run, by hand.
void Compare(Game& p_Game)
{
    p_Game.Begin();
    p_Game.Host.RunNextAsync();
}

} // namespace

class SizePassTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void TheStartIsShownAndOneRequestPerFileIsQueued();
    void EverySizeIsAskedAtOnceAndLogged();
    void TheSizesAddUpWhateverTheirOrder();
    void ASizeThatNeverComesStopsTheRunAtThisPoint();
    void AnotherThreadsChoiceOfServerIsNotTaken();
    void AnErrorPageIsAnAnswerToo();
    void AServerThatNamesNoSizeCountsAsZero();
    void AHostThatStopsQueuesNoFurtherRequest();
    void FilesOfTheDefaultServerAreAskedThere();
    void WithoutMirrorsTheDefaultServerIsAsked_data();
    void WithoutMirrorsTheDefaultServerIsAsked();
    void QueriesOfAReplacedRunAreDropped();
    void AnswersOfAReplacedRunDoNotCount();
};

void SizePassTest::TheStartIsShownAndOneRequestPerFileIsQueued()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"a", "a"}).Add({"b", "b"}).Add({"c", "c"});
    auto& progress = game.App.UISetting.Download;
    progress.Total = 77;
    game.App.SizeRepliesReceived = 5;
    game.App.CurrentDownloadIndex = 5;
    game.Host.OnDownloadStarting = [&] { game.App.UISettingChanged = false; };
    Compare(game);
    QCOMPARE(progress.Percent, 100u);
    QCOMPARE(progress.ModeFlag, true);
    QCOMPARE(progress.Current, quint64{0});
    QCOMPARE(progress.Total, quint64{0});
    QCOMPARE(progress.Mode, 2);
    QCOMPARE(progress.DetailText, QString("Requesting files size..."));
    QVERIFY(game.App.UISettingChanged);
    QCOMPARE(game.App.SizeRepliesReceived, 0u);
    QCOMPARE(game.App.CurrentDownloadIndex, 0u);
    QCOMPARE(game.Host.SyncCount(), std::size_t{3});
    QVERIFY(game.App.ContentSizeRequests.empty());
}

void SizePassTest::EverySizeIsAskedAtOnceAndLogged()
{
    Game game;
    for (char const* const file : {"a", "b", "c d"}) {
        game.Add({file, file});
        game.Server.Script(game.Content.ServerPath(file)).Then(Answer::SilentBeforeHeaders());
    }
    game.Begin();
    QVERIFY(game.Host.RunUntil([&] { return game.Requested().size() == 3; }));
    QCOMPARE(game.App.SizeRepliesReceived, 0u);
    QString const url = game.Server.Url(game.Content.ServerPath("c d"));
    QVERIFY(game.Log.CountContaining(url) > 0);
    QCOMPARE(game.Log.CountContaining(" Fetch file "), 3);
    QCOMPARE(game.Log.Texts().filter(" Fetch file ").filter("Test Game").filter(url).size(), 1);
    QCOMPARE(game.Log.CountContaining(" Fetched file "), 0);
    for (char const* const file : {"a", "b", "c d"})
        game.Server.OpenGate(game.Content.ServerPath(file));
    QVERIFY(game.Finish());
    QCOMPARE(game.Log.Texts().filter(" Fetched file ").filter("Test Game").filter(url).size(), 1);
    QCOMPARE(game.Read("c d"), QByteArray("c d"));
}

void SizePassTest::TheSizesAddUpWhateverTheirOrder()
{
    Game game;
    game.Add({"a", QByteArray(1000, 'a')}).Add({"b", QByteArray(200, 'b')}).Add({"c", "ccc"});
    QString const first = game.Content.ServerPath("a");
    game.Server.Script(first).Then(Answer::SilentBeforeHeaders());
    game.Begin();
    QVERIFY(game.RunUntilSizes(2));
    QCOMPARE(game.App.UISetting.Download.Total, quint64{203});
    QCOMPARE(game.App.UISetting.Download.Mode, 2);
    QVERIFY(game.App.CurrentDownload == nullptr);
    game.Server.OpenGate(first);
    QVERIFY(game.Finish());
    QCOMPARE(game.App.UISetting.Download.Total, quint64{1203});
    QCOMPARE(game.Requested().mid(3), QStringList({"a", "b", "c"}));
}

void SizePassTest::ASizeThatNeverComesStopsTheRunAtThisPoint()
{
    Game game;
    game.Add({"a", "a"}).Add({"b", "b", 0x20});
    game.Server.Script(game.Content.ServerPath("b")).Always(Answer::ClosedBeforeHeaders());
    game.Begin();
    QVERIFY(game.RunUntilSizes(1));
    QVERIFY(game.Finish());
    QCOMPARE(game.App.SizeRepliesReceived, 1u);
    QCOMPARE(game.App.UISetting.Download.Mode, 2);
    QCOMPARE(game.Requests("a"), 1);
    QCOMPARE(game.Host.FinishedCount.load(), 0);
    QCOMPARE(game.Host.Errors(), QStringList());
    QCOMPARE(game.Listed(), QStringList({"a", "b"}));
    QCOMPARE(game.FilesOnDisk(), QStringList({"FirstBuild.db", "ToDownloadBase.db"}));
    QCOMPARE(game.Read("ToDownloadBase.db"), QByteArray("b\n"));
}

/// A resume that polls on the worker chooses a server too.
void SizePassTest::AnotherThreadsChoiceOfServerIsNotTaken()
{
    constexpr int c_Questions = 50;
    Game game(TestHost::Worker::ByHand);
    game.Add({"by mirror", "m"}).Add({"by default server", "d", 0x40}).Publish().Install();
    game.App.CdnHosts = QStringList("mirror.invalid");
    auto const files = game.App.Manifest.Files;
    std::atomic<bool> over{false};
    std::thread poll([&] {
        while (!over)
            game.App.ChooseServer(files[0]);
    });
    t_LetsOthersIn = true;
    for (int i = 0; i < c_Questions; ++i)
        game.App.RequestSize(game.App.CurrentRun, files[1], [] {});
    t_LetsOthersIn = false;
    over = true;
    poll.join();
    if (t_LetIn == 0)
        QSKIP("this system does not call the test's own unlock");
    QCOMPARE(game.Log.CountContaining("Fetch file"), c_Questions);
    QCOMPARE(game.Log.CountContaining("mirror.invalid"), 0);
    game.App.DropSizeQueries();
}

void SizePassTest::AnErrorPageIsAnAnswerToo()
{
    Game game;
    game.Add({"a", "content"});
    game.Server.Script(game.Content.ServerPath("a")).Then(Answer::Status(404, "12345"));
    game.Begin();
    QVERIFY(game.Finish());
    QCOMPARE(game.App.UISetting.Download.Total, quint64{5});
    QCOMPARE(game.Read("a"), QByteArray("content"));
}

void SizePassTest::AServerThatNamesNoSizeCountsAsZero()
{
    Game game;
    game.Add({"a", "content"}).Add({"b", ""});
    game.Server.Script(game.Content.ServerPath("a")).Always(Answer::WithoutLength());
    game.Begin();
    QVERIFY(game.Finish());
    QCOMPARE(game.Read("a"), QByteArray("content"));
    QCOMPARE(game.Read("b"), QByteArray(""));
    QCOMPARE(game.App.UISetting.Download.Total, quint64{0});
}

void SizePassTest::AHostThatStopsQueuesNoFurtherRequest()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"a", "a"}).Add({"b", "b"}).Add({"c", "c"}).Publish();
    game.App.FilesToDownload = game.App.Manifest.Files;
    game.AnswerContinue([](int p_Question) { return p_Question <= 2; });
    game.App.OnManifestReceived_StartDownload();
    QCOMPARE(game.Host.SyncCount(), std::size_t{2});
    QVERIFY(game.RunUntilSizes(2));
    QVERIFY(game.Finish());
    QCOMPARE(game.App.UISetting.Download.Mode, 2);
    QCOMPARE(game.Requested().size(), 2);
}

void SizePassTest::FilesOfTheDefaultServerAreAskedThere()
{
    Game game;
    ScriptedServer mirror(QStringLiteral("127.0.0.2"));
    game.Add({"a", "a"}).Add({"special", "s", 0x40}).Add({"b", "b"}).Publish().Install();
    game.Content.Publish(game.Server, {&mirror});
    game.App.CdnHosts = QStringList(mirror.Host());
    game.App.OnManifestReceived();
    QVERIFY(game.Finish());
    QCOMPARE(game.Requested(), QStringList({"special", "special"}));
    QStringList asked = game.Requested(mirror);
    QCOMPARE(asked.mid(2), QStringList({"a", "b"}));
    asked.sort();
    QCOMPARE(asked, QStringList({"a", "a", "b", "b"}));
}

void SizePassTest::WithoutMirrorsTheDefaultServerIsAsked_data()
{
    QTest::addColumn<QStringList>("hosts");
    QTest::newRow("no host") << QStringList();
    QTest::newRow("one empty host") << QStringList("");
}

void SizePassTest::WithoutMirrorsTheDefaultServerIsAsked()
{
    QFETCH(QStringList, hosts);
    Game game;
    game.Add({"a", "a"}).Add({"s", "s", 0, {}, true}).Publish().Install();
    game.App.CdnHosts = hosts;
    game.App.IsFirstManifestBuild = true;
    game.App.OnManifestReceived();
    QVERIFY(game.Finish());
    QCOMPARE(game.Requested(), QStringList({"a", "a", "s", "s"}));
    QCOMPARE(game.Read("a"), QByteArray("a"));
    QCOMPARE(game.Read("s"), QByteArray("s"));
}

void SizePassTest::QueriesOfAReplacedRunAreDropped()
{
    Game game;
    game.Add({"a", "a"});
    QString const path = game.Content.ServerPath("a");
    game.Server.Script(path).Then(Answer::SilentBeforeHeaders());
    game.Begin();
    QVERIFY(game.RunUntilRequested("a", 1));
    game.App.BeginRun();
    QVERIFY(game.App.ContentSizeRequests.empty());
    QVERIFY(game.Finish());
    QVERIFY(game.Host.RunUntil([&] { return game.Server.OpenConnections() == 0; }));
    QCOMPARE(game.App.SizeRepliesReceived, 0u);
    QCOMPARE(game.Requests("a"), 1);
}

// A resume can be done with the base files before all their sizes have come.
void SizePassTest::AnswersOfAReplacedRunDoNotCount()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"a", "content"});
    QString const path = game.Content.ServerPath("a");
    game.Server.Script(path).Then(Answer::SilentBeforeHeaders());
    Compare(game);
    QVERIFY(game.RunUntilRequested("a", 1));
    game.App.ProcessStreamedContentDownload(false);
    QCOMPARE(game.App.ContentSizeRequests.size(), std::size_t{1});
    game.App.FilesToDownload = game.App.Manifest.Files;
    game.Server.OpenGate(path);
    QVERIFY(game.Host.RunUntil([&] { return game.App.ContentSizeRequests.empty(); }));
    QCOMPARE(game.App.SizeRepliesReceived, 0u);
    QCOMPARE(game.App.UISetting.Download.Total, quint64{0});
    QCOMPARE(game.Host.SyncCount(), std::size_t{0});
    game.App.FilesToDownload.clear();
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::SizePassTest)
#include "tst_SizePass.moc"
