#include "Tests/Support/LoadedPlugin.hpp"
#include "Tests/Support/LogCapture.hpp"
#include "Tests/Support/SampleContent.hpp"
#include "Tests/Support/TestApplication.hpp"
#include "Tests/Support/TestHost.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QTemporaryDir>
#include <QtTest>

namespace Varnholt::TestSupport {

class TestHostTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void AnswersTheCallbackTable();
    void DrainsBothQueuesOnTheirThreads();
    void RunsClosuresByHand();
    void GivesUpOnAConditionThatNeverHolds();
    void CollectsTheLog();
    void RunsThePluginToTheEndOfAnInstallation();
};

void TestHostTest::AnswersTheCallbackTable()
{
    TestApplication app;
    TestHost host(app);
    app.WriteSetting("a", 1);
    QCOMPARE(app.ReadSetting("a", 2).toInt(), 1);
    QCOMPARE(app.ReadSetting("b", 2).toInt(), 2);
    app.RemoveSetting("a");
    QVERIFY(app.ListSettingKeys().isEmpty());
    QCOMPARE(host.SettingChanges(), QStringList({"a", "-a"}));
    app.ErrorReporter("text", false);
    QCOMPARE(host.Errors(), QStringList("text"));
    QCOMPARE(host.ErrorFlags.load(), 0);
    host.LocaleIndex = 1;
    QCOMPARE(app.CurrentLauncherLocale().Code, QString("frFR"));
    host.ContinueAnswersLeft = 2;
    QVERIFY(app.ShouldContinue() && app.ShouldContinue());
    QVERIFY(!app.ShouldContinue() && !app.ShouldContinue());
}

void TestHostTest::DrainsBothQueuesOnTheirThreads()
{
    TestApplication app;
    TestHost host(app);
    std::atomic<QThread*> sync{nullptr};
    std::atomic<QThread*> async{nullptr};
    app.EnqueueSync([&] { sync = QThread::currentThread(); });
    app.EnqueueAsync([&] { async = QThread::currentThread(); });
    QVERIFY(host.RunUntilIdle());
    QCOMPARE(sync.load(), thread());
    QVERIFY(async != nullptr && async != thread());
}

void TestHostTest::RunsClosuresByHand()
{
    TestApplication app;
    TestHost host(app, TestHost::Worker::ByHand);
    QStringList order;
    app.EnqueueAsync([&] { order += "1"; });
    app.EnqueueAsync([&] { order += "2"; });
    QVERIFY(host.RunNextAsync());
    QCOMPARE(order, QStringList("1"));
    QCOMPARE(host.AsyncCount(), std::size_t{1});
    QVERIFY(host.RunNextAsync());
    QVERIFY(!host.RunNextAsync());
}

void TestHostTest::GivesUpOnAConditionThatNeverHolds()
{
    TestApplication app;
    TestHost host(app);
    QVERIFY(!host.RunUntil([] { return false; }, 20));
}

void TestHostTest::CollectsTheLog()
{
    LogCapture log;
    qWarning("a warning");
    QCOMPARE(log.Count("a warning"), 1);
    QCOMPARE(log.Messages().front().Type, QtWarningMsg);
    QCOMPARE(log.Texts("default").size(), 1);
}

void TestHostTest::RunsThePluginToTheEndOfAnInstallation()
{
    LogCapture log;
    ScriptedServer server;
    server.BecomeDefaultContentServer();
    SampleContent content;
    content.Add({"Data/base.bin", SampleContent::Bytes(20000)});
    content.Add({"Data/streamed.bin", SampleContent::Bytes(500), 0, {}, true});
    content.Publish(server);

    QTemporaryDir folder;
    LoadedPlugin plugin;
    QVERIFY2(plugin.App() != nullptr, qPrintable(plugin.GetLoader().errorString()));
    TestHost host(*plugin.App());
    plugin.App()->Init();
    QVERIFY(host.RunUntilIdle());
    QCOMPARE(plugin.App()->UISetting.State, 1);
    plugin.App()->Install(folder.path() + "/", false);
    QVERIFY(host.RunUntil([&] { return host.FinishedCount == 1; }));
    QVERIFY(host.RunUntilIdle());
    for (SampleFile const& file : content.Files) {
        QFile onDisk(folder.path() + "/" + file.Path);
        QVERIFY(onDisk.open(QIODevice::ReadOnly));
        QCOMPARE(onDisk.readAll(), file.Bytes);
    }
    QCOMPARE(host.Errors(), QStringList());
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::TestHostTest)
#include "tst_TestHost.moc"
