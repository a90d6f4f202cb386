#include "Launcher/Application/RemoteText.hpp"
#include "Tests/Support/LogCapture.hpp"
#include "Tests/Support/SampleContent.hpp"
#include "Tests/Support/ScriptedServer.hpp"
#include "Tests/Support/TestApplication.hpp"
#include "Tests/Support/TestHost.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

namespace Varnholt::Launcher {

using TestSupport::Answer;
using TestSupport::SampleContent;

class RemoteContentTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void BringsTheBodyOnTheApplicationThread();
    void TheRequestIsQtsDefault();
    void AnEmptyBodyIsContent();
    void ALargeBodyArrivesWhole();
    void AnErrorPageIsContentAndNoError_data();
    void AnErrorPageIsContentAndNoError();
    void AnUnknownContentErrorIsReportedThenContentFollows_data();
    void AnUnknownContentErrorIsReportedThenContentFollows();
    void AClosedConnectionIsReportedThenThePartFollows();
    void AnUnreachableServerGivesEmptyContentAndNoError();
    void ARedirectIsNotFollowed();
    void RequestsInFlightAreListedUntilTheyComplete();
    void SeveralFetchesDoNotMixTheirBodies();
    void TheMapIsUnlockedWhileCallbacksRun();
    void CallersMayLeaveTheErrorCallbackOut();
    void TheReplyIsDeleted_data();
    void TheReplyIsDeleted();
    void RemoteTextEndsAtANulByteAndRepairsUtf8();

private:
    struct Result {
        QStringList Calls; ///< "error 2", "content <url>", in order
        QByteArray Data;
        QThread* Thread = nullptr;
    };
    /// Fetches and waits for the content.
    Result Fetch(QString const& p_Url);

    std::unique_ptr<TestSupport::LogCapture> Log;
    std::unique_ptr<TestSupport::ScriptedServer> Server;
    std::unique_ptr<TestSupport::TestApplication> App;
    std::unique_ptr<TestSupport::TestHost> Host;
};

void RemoteContentTest::init()
{
    Log = std::make_unique<TestSupport::LogCapture>();
    Server = std::make_unique<TestSupport::ScriptedServer>();
    App = std::make_unique<TestSupport::TestApplication>();
    Host = std::make_unique<TestSupport::TestHost>(*App);
}

void RemoteContentTest::cleanup()
{
    Host.reset();
    App.reset();
    Server.reset();
    Log.reset();
}

RemoteContentTest::Result RemoteContentTest::Fetch(QString const& p_Url)
{
    auto const result = std::make_shared<Result>();
    App->GetRemoteFileContent(
        p_Url,
        [result](QString const& p_From, QByteArray* p_Data) {
            result->Calls += "content " + p_From;
            result->Data = *p_Data;
            result->Thread = QThread::currentThread();
        },
        [result](int p_Error) { result->Calls += QString("error %1").arg(p_Error); });
    if (!Host->RunUntilIdle())
        result->Calls += "timed out";
    return *result;
}

void RemoteContentTest::BringsTheBodyOnTheApplicationThread()
{
    Server->Serve("/a", "content");
    QString const url = Server->Url("/a");
    Result const result = Fetch(url);
    QCOMPARE(result.Calls, QStringList("content " + url));
    QCOMPARE(result.Data, QByteArray("content"));
    QCOMPARE(result.Thread, thread());
}

void RemoteContentTest::TheRequestIsQtsDefault()
{
    Server->Serve("/a", "a");
    Fetch(Server->Url("/a"));
    auto const request = Server->Requests().at(0);
    QCOMPARE(request.Method, QByteArray("GET"));
    for (char const* const header : {"Range", "Cache-Control", "Authorization", "Cookie"})
        QVERIFY(!request.Has(header));
    QCOMPARE(request.Header("Accept-Encoding"), QByteArray("gzip, deflate"));
}

void RemoteContentTest::AnEmptyBodyIsContent()
{
    Server->Serve("/a", "");
    Result const result = Fetch(Server->Url("/a"));
    QCOMPARE(result.Calls.size(), 1);
    QCOMPARE(result.Data, QByteArray());
}

void RemoteContentTest::ALargeBodyArrivesWhole()
{
    QByteArray const bytes = SampleContent::Bytes(3000000);
    Server->Serve("/a", bytes);
    QCOMPARE(Fetch(Server->Url("/a")).Data, bytes);
    Server->Script("/a").Then(Answer::WithoutLength());
    QCOMPARE(Fetch(Server->Url("/a")).Data, bytes);
    Server->Script("/a").Then(Answer::Gzip());
    QCOMPARE(Fetch(Server->Url("/a")).Data, bytes);
}

void RemoteContentTest::AnErrorPageIsContentAndNoError_data()
{
    QTest::addColumn<int>("Status");
    for (int const status : {400, 401, 403, 404, 405, 409, 410, 418, 500, 501, 502, 503, 504})
        QTest::addRow("%d", status) << status;
}

void RemoteContentTest::AnErrorPageIsContentAndNoError()
{
    // The narrow filter: callers judge a fetch by its content, and an error page is content too.
    QFETCH(int, Status);
    Server->Script("/a").Always(Answer::Status(Status, "<html>page</html>"));
    QString const url = Server->Url("/a");
    Result const result = Fetch(url);
    QCOMPARE(result.Calls, QStringList("content " + url));
    QCOMPARE(result.Data, QByteArray("<html>page</html>"));
}

void RemoteContentTest::AnUnknownContentErrorIsReportedThenContentFollows_data()
{
    QTest::addColumn<int>("Status");
    for (int const status : {416, 422, 429, 451})
        QTest::addRow("%d", status) << status;
}

void RemoteContentTest::AnUnknownContentErrorIsReportedThenContentFollows()
{
    QFETCH(int, Status);
    Server->Script("/a").Always(Answer::Status(Status));
    QString const url = Server->Url("/a");
    QCOMPARE(Fetch(url).Calls, QStringList({"error 299", "content " + url}));
}

void RemoteContentTest::AClosedConnectionIsReportedThenThePartFollows()
{
    QByteArray const bytes = SampleContent::Bytes(1000);
    Server->Serve("/a", bytes);
    Server->Script("/a").Then(Answer::Truncated(600)).Then(Answer::Reset(300));
    QString const url = Server->Url("/a");
    for (int const size : {600, 300}) {
        Result const result = Fetch(url);
        QCOMPARE(result.Calls, QStringList({"error 2", "content " + url}));
        QCOMPARE(result.Data, bytes.left(size));
    }
    Server->Script("/a").Always(Answer::ClosedBeforeHeaders());
    Result const result = Fetch(url);
    QCOMPARE(result.Calls, QStringList({"error 2", "content " + url}));
    QCOMPARE(result.Data, QByteArray());
}

void RemoteContentTest::AnUnreachableServerGivesEmptyContentAndNoError()
{
    for (QString const& url :
         {TestSupport::ScriptedServer::RefusingUrl("/a"), QString("http:///a"), QString("")}) {
        Result const result = Fetch(url);
        QCOMPARE(result.Calls, QStringList("content " + url));
        QCOMPARE(result.Data, QByteArray());
    }
}

void RemoteContentTest::ARedirectIsNotFollowed()
{
    Server->Serve("/b", "elsewhere");
    Server->Script("/a").Then(Answer::Redirect("/b"));
    QCOMPARE(Fetch(Server->Url("/a")).Data, QByteArray("moved"));
    QCOMPARE(Server->Count("/b"), 0);
}

void RemoteContentTest::RequestsInFlightAreListedUntilTheyComplete()
{
    Server->Serve("/a", "content");
    Server->Script("/a").Then(Answer::SilentAfter(3));
    bool isListed = true;
    HTTP_GetRemotefileContentRequest const* const request = App->GetRemoteFileContent(
        Server->Url("/a"), [&](QString, QByteArray*) { isListed = !App->ContentRequests.empty(); });
    QCOMPARE(App->ContentRequests.size(), std::size_t{1});
    QCOMPARE(App->ContentRequests.begin()->second, request);
    QCOMPARE(App->ContentRequests.begin()->first, request->Reply);
    QCOMPARE(request->Url, Server->Url("/a"));
    QVERIFY(Host->RunUntil([&] { return request->Data == "con"; }));
    Server->OpenGate("/a");
    QVERIFY(Host->RunUntilIdle());
    QVERIFY(!isListed);
    QVERIFY(App->ContentRequests.empty());
}

void RemoteContentTest::SeveralFetchesDoNotMixTheirBodies()
{
    constexpr int c_Fetches = 30;
    std::map<QString, QByteArray> got;
    for (int i = 0; i < c_Fetches; ++i) {
        QString const path = QString("/%1").arg(i);
        Server->Serve(path, SampleContent::Bytes(5000 + i, static_cast<quint32>(i + 1)));
        App->GetRemoteFileContent(Server->Url(path), [&](QString const& p_Url, QByteArray* p_Data) {
            got[p_Url] += *p_Data;
        });
    }
    QVERIFY(Host->RunUntilIdle());
    QCOMPARE(got.size(), std::size_t{c_Fetches});
    for (int i = 0; i < c_Fetches; ++i)
        QCOMPARE(got[Server->Url(QString("/%1").arg(i))],
                 SampleContent::Bytes(5000 + i, static_cast<quint32>(i + 1)));
}

void RemoteContentTest::TheMapIsUnlockedWhileCallbacksRun()
{
    Server->Serve("/a", "a");
    bool wasFree = false;
    App->GetRemoteFileContent(Server->Url("/a"), [&](QString, QByteArray*) {
        std::thread([&] {
            wasFree = App->ContentRequestsMutex.tryLock();
            if (wasFree)
                App->ContentRequestsMutex.unlock();
        }).join();
    });
    QVERIFY(Host->RunUntilIdle());
    QVERIFY(wasFree);
}

void RemoteContentTest::CallersMayLeaveTheErrorCallbackOut()
{
    Server->Script("/a").Always(Answer::Status(418));
    Server->Script("/b").Always(Answer::Truncated(0));
    Server->Serve("/b", "content");
    int calls = 0;
    for (char const* const path : {"/a", "/b"})
        App->GetRemoteFileContent(Server->Url(path), [&](QString, QByteArray*) { ++calls; });
    QVERIFY(Host->RunUntilIdle());
    QCOMPARE(calls, 2);
    QCOMPARE(Host->Errors(), QStringList());
}

void RemoteContentTest::TheReplyIsDeleted_data()
{
    QTest::addColumn<Answer>("First");
    QTest::newRow("content") << Answer::Normal();
    QTest::newRow("error page") << Answer::Status(404);
    QTest::newRow("closed connection") << Answer::Truncated(3);
}

void RemoteContentTest::TheReplyIsDeleted()
{
    QFETCH(Answer, First);
    Server->Serve("/a", "content");
    Server->Script("/a").Then(First);
    App->GetRemoteFileContent(Server->Url("/a"), [](QString const&, QByteArray*) {});
    QCOMPARE(App->NetworkManager->findChildren<QNetworkReply*>().size(), 1);
    QVERIFY(Host->RunUntil([&] { return App->ContentRequests.empty(); }));
    QVERIFY(Host->RunUntil(
        [&] { return App->NetworkManager->findChildren<QNetworkReply*>().isEmpty(); }));
}

void RemoteContentTest::RemoteTextEndsAtANulByteAndRepairsUtf8()
{
    QCOMPARE(RemoteText::Of(QByteArray("a\0b", 3)), QString("a"));
    QCOMPARE(RemoteText::Of(QByteArray("\0", 1)), QString());
    QCOMPARE(RemoteText::Of({}), QString());
    QCOMPARE(RemoteText::Of("\xc3\xa9\xff"), QString(QChar(0xe9)) + QChar(0xfffd));
    QCOMPARE(RemoteText::Of("line\n"), QString("line\n"));
}

} // namespace Varnholt::Launcher

VARNHOLT_TEST(Varnholt::Launcher::RemoteContentTest)
#include "tst_RemoteContent.moc"
