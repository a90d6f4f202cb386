#include "Tests/Support/LogCapture.hpp"
#include "Tests/Support/SampleContent.hpp"
#include "Tests/Support/ScriptedServer.hpp"
#include "Tests/Support/TestApplication.hpp"
#include "Tests/Support/TestHost.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

namespace Varnholt::Launcher {

using TestSupport::Answer;

class RemoteSizeTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void TellsTheContentLengthOnTheApplicationThread();
    void AsksWithAPlainGet();
    void ABodyWithoutLengthHasSizeZero();
    void AnUnreadableLengthIsZero();
    void SizesAbove32BitsArrive();
    void TheBodyIsNotRead();
    void NoBodyGathersWhileTheApplicationIsBusy();
    void AnErrorPagesLengthIsASize();
    void AnUnreachableServerGivesNoCallbackAndStaysListed();
    void AServerThatClosesBeforeItsHeadersGivesNoCallback();
    void ManyQueriesAnswerOnceEach();
    void TheMapIsUnlockedWhileCallbacksRun();
    void TheReplyIsDeleted();

private:
    /// Asks and waits until the query has ended. \return "url size" of each callback
    QStringList Ask(QString const& p_Url);

    std::unique_ptr<TestSupport::LogCapture> Log;
    std::unique_ptr<TestSupport::ScriptedServer> Server;
    std::unique_ptr<TestSupport::TestApplication> App;
    std::unique_ptr<TestSupport::TestHost> Host;
};

void RemoteSizeTest::init()
{
    Log = std::make_unique<TestSupport::LogCapture>();
    Server = std::make_unique<TestSupport::ScriptedServer>();
    App = std::make_unique<TestSupport::TestApplication>();
    Host = std::make_unique<TestSupport::TestHost>(*App);
}

void RemoteSizeTest::cleanup()
{
    Host.reset();
    App.reset();
    Server.reset();
    Log.reset();
}

QStringList RemoteSizeTest::Ask(QString const& p_Url)
{
    auto const calls = std::make_shared<QStringList>();
    App->GetRemoteFileSize(p_Url, [calls](QString const& p_From, unsigned long long p_Size) {
        *calls += p_From + QString(" %1").arg(p_Size);
    });
    if (!Host->RunUntilIdle())
        *calls += "timed out";
    return *calls;
}

void RemoteSizeTest::TellsTheContentLengthOnTheApplicationThread()
{
    Server->Serve("/a", QByteArray(1234, 'x'));
    QThread* called = nullptr;
    App->GetRemoteFileSize(Server->Url("/a"), [&](QString const&, unsigned long long p_Size) {
        called = QThread::currentThread();
        QCOMPARE(p_Size, 1234ull);
    });
    QCOMPARE(App->ContentSizeRequests.size(), std::size_t{1});
    QVERIFY(Host->RunUntilIdle());
    QCOMPARE(called, thread());
    QVERIFY(App->ContentSizeRequests.empty());
}

void RemoteSizeTest::AsksWithAPlainGet()
{
    Server->Serve("/a", "a");
    Ask(Server->Url("/a"));
    QCOMPARE(Server->Requests().size(), std::size_t{1});
    QCOMPARE(Server->Requests()[0].Method, QByteArray("GET"));
    QVERIFY(!Server->Requests()[0].Has("Range"));
}

void RemoteSizeTest::ABodyWithoutLengthHasSizeZero()
{
    Server->Serve("/a", "content");
    Server->Script("/a").Then(Answer::WithoutLength());
    QCOMPARE(Ask(Server->Url("/a")), QStringList(Server->Url("/a") + " 0"));
}

void RemoteSizeTest::AnUnreadableLengthIsZero()
{
    Server->Serve("/a", "content");
    Server->Script("/a").Then(Answer::WithoutLength().With("Content-Length", "many"));
    QCOMPARE(Ask(Server->Url("/a")), QStringList(Server->Url("/a") + " 0"));
}

void RemoteSizeTest::SizesAbove32BitsArrive()
{
    Server->Serve("/a", "content");
    Server->Script("/a").Then(Answer::ClaimingLength(5000000000));
    QCOMPARE(Ask(Server->Url("/a")), QStringList(Server->Url("/a") + " 5000000000"));
}

void RemoteSizeTest::TheBodyIsNotRead()
{
    // The rest of the body never comes: whoever waited for it would have no size.
    Server->Serve("/a", QByteArray(5000, 'x'));
    Server->Script("/a").Then(Answer::SilentAfter(1000));
    QCOMPARE(Ask(Server->Url("/a")), QStringList(Server->Url("/a") + " 5000"));
    // The connection is given up: a body is never fetched to its end for its size.
    QVERIFY(Host->RunUntil([&] { return Server->OpenConnections() == 0; }));
    QVERIFY(Server->BodyBytes("/a") <= 1000);
}

void RemoteSizeTest::NoBodyGathersWhileTheApplicationIsBusy()
{
    constexpr qint64 c_Most = 16 * 1024;
    Server->Serve("/a", "content");
    App->GetRemoteFileSize(Server->Url("/a"), [](QString const&, unsigned long long) {});
    qint64 const buffer = App->ContentSizeRequests.begin()->first->readBufferSize();
    // 0 would be no bound at all.
    QVERIFY(buffer > 0 && buffer <= c_Most);
    QVERIFY(Host->RunUntilIdle());
}

void RemoteSizeTest::AnErrorPagesLengthIsASize()
{
    Server->Script("/a").Then(Answer::Status(404, "12345"));
    QCOMPARE(Ask(Server->Url("/a")), QStringList(Server->Url("/a") + " 5"));
}

void RemoteSizeTest::AnUnreachableServerGivesNoCallbackAndStaysListed()
{
    QCOMPARE(Ask(TestSupport::ScriptedServer::RefusingUrl("/a")), QStringList());
    QCOMPARE(App->ContentSizeRequests.size(), std::size_t{1});
}

void RemoteSizeTest::AServerThatClosesBeforeItsHeadersGivesNoCallback()
{
    Server->Script("/a").Always(Answer::ClosedBeforeHeaders());
    QCOMPARE(Ask(Server->Url("/a")), QStringList());
}

void RemoteSizeTest::ManyQueriesAnswerOnceEach()
{
    constexpr int c_Queries = 200;
    std::map<QString, QStringList> sizes;
    for (int i = 0; i < c_Queries; ++i) {
        QString const path = QString("/%1").arg(i);
        Server->Serve(path, QByteArray(i, 'x'));
        App->GetRemoteFileSize(Server->Url(path),
                               [&](QString const& p_Url, unsigned long long p_Size) {
                                   sizes[p_Url] += QString::number(p_Size);
                               });
    }
    QVERIFY(Host->RunUntilIdle());
    QCOMPARE(sizes.size(), std::size_t{c_Queries});
    for (int i = 0; i < c_Queries; ++i)
        QCOMPARE(sizes[Server->Url(QString("/%1").arg(i))], QStringList(QString::number(i)));
}

void RemoteSizeTest::TheMapIsUnlockedWhileCallbacksRun()
{
    Server->Serve("/a", "a");
    bool wasFree = false;
    App->GetRemoteFileSize(Server->Url("/a"), [&](QString const&, unsigned long long) {
        std::thread([&] {
            wasFree = App->ContentSizeRequestsMutex.tryLock();
            if (wasFree)
                App->ContentSizeRequestsMutex.unlock();
        }).join();
    });
    QVERIFY(Host->RunUntilIdle());
    QVERIFY(wasFree);
}

void RemoteSizeTest::TheReplyIsDeleted()
{
    Server->Serve("/a", "content");
    App->GetRemoteFileSize(Server->Url("/a"), [](QString const&, unsigned long long) {});
    QCOMPARE(App->NetworkManager->findChildren<QNetworkReply*>().size(), 1);
    QVERIFY(Host->RunUntil([&] { return App->ContentSizeRequests.empty(); }));
    QVERIFY(Host->RunUntil(
        [&] { return App->NetworkManager->findChildren<QNetworkReply*>().isEmpty(); }));
}

} // namespace Varnholt::Launcher

VARNHOLT_TEST(Varnholt::Launcher::RemoteSizeTest)
#include "tst_RemoteSize.moc"
