#include "Tests/Support/Response.hpp"
#include "Tests/Support/SampleContent.hpp"
#include "Tests/Support/ScriptedServer.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSignalSpy>
#include <QTcpSocket>
#include <QtTest>

#include <memory>

namespace Varnholt::TestSupport {

namespace {

struct Got {
    int Status = 0;
    QByteArray Body;
    QNetworkReply::NetworkError Error = QNetworkReply::NoError;
    QByteArray ContentRange;
    bool Finished = false;
};

Got Get(ScriptedServer const& p_Server, QString const& p_Path, QByteArray const& p_Range = {})
{
    QNetworkAccessManager manager;
    QNetworkRequest request(QUrl(p_Server.Url(p_Path)));
    if (!p_Range.isEmpty())
        request.setRawHeader("Range", p_Range);
    std::unique_ptr<QNetworkReply> const reply(manager.get(request));
    QSignalSpy finished(reply.get(), &QNetworkReply::finished);
    Got got;
    got.Finished = finished.wait(30000);
    got.Status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    got.Body = reply->readAll();
    got.Error = reply->error();
    got.ContentRange = reply->rawHeader("Content-Range");
    return got;
}

} // namespace

class ScriptedServerTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void ServesFilesWholeAndByRange();
    void RefusesARangeBehindTheEnd();
    void RecordsRequestsWithTheirHeaders();
    void PlaysTheScriptThenServesNormally();
    void CutsABodySoThatEveryClientSeesIt();
    void AnswersWrongOnDemand();
    void HoldsAnAnswerUntilTheGateOpens();
    void GoesOnInsideABodyWhenTheGateOpens();
    void DripsABody();
    void AnswersByMethod();
    void SendsWithoutEndUntilTheClientHasGone_data();
    void SendsWithoutEndUntilTheClientHasGone();
    void CountsTheAnswersUnderWay();
    void ServesOnSeveralAddresses();
    void CanBeAwayForAWhile();
};

void ScriptedServerTest::ServesFilesWholeAndByRange()
{
    ScriptedServer server;
    server.Serve("/a b", "0123456789");
    QCOMPARE(Get(server, "/a b").Body, QByteArray("0123456789"));
    Got const part = Get(server, "/a b", "bytes=4-");
    QCOMPARE(part.Status, 206);
    QCOMPARE(part.Body, QByteArray("456789"));
    QCOMPARE(part.ContentRange, QByteArray("bytes 4-9/10"));
    QCOMPARE(Get(server, "/a b", "bytes=0-3").Body, QByteArray("0123"));
    QCOMPARE(Get(server, "/missing").Status, 404);
}

void ScriptedServerTest::RefusesARangeBehindTheEnd()
{
    ScriptedServer server;
    server.Serve("/a", "0123456789");
    Got const got = Get(server, "/a", "bytes=10-");
    QCOMPARE(got.Status, 416);
    QCOMPARE(got.ContentRange, QByteArray("bytes */10"));
    QCOMPARE(got.Error, QNetworkReply::UnknownContentError);
}

void ScriptedServerTest::RecordsRequestsWithTheirHeaders()
{
    ScriptedServer server;
    server.Serve("/a", "a");
    Get(server, "/a");
    Get(server, "/b?q", "bytes=5-");
    auto const requests = server.Requests();
    QCOMPARE(requests.size(), std::size_t{2});
    QVERIFY(!requests[0].Has("Range"));
    QCOMPARE(requests[1].Header("range"), QByteArray("bytes=5-"));
    QCOMPARE(requests[1].Target, QByteArray("/b?q"));
    QCOMPARE(requests[1].Path, QString("/b"));
    QCOMPARE(requests[1].Method, QByteArray("GET"));
    QVERIFY(requests[1].Milliseconds >= requests[0].Milliseconds);
    QCOMPARE(server.Count("/a"), 1);
}

void ScriptedServerTest::PlaysTheScriptThenServesNormally()
{
    ScriptedServer server;
    server.Serve("/a", "content");
    server.Script("/a").Then(Answer::Status(500)).Then(Answer::Status(404), 2);
    QCOMPARE(Get(server, "/a").Status, 500);
    QCOMPARE(Get(server, "/a").Status, 404);
    QCOMPARE(Get(server, "/a").Status, 404);
    QCOMPARE(Get(server, "/a").Status, 200);
    server.Script("*").Always(Answer::Status(503));
    QCOMPARE(Get(server, "/a").Status, 503);
    QCOMPARE(Get(server, "/b").Status, 503);
}

void ScriptedServerTest::CutsABodySoThatEveryClientSeesIt()
{
    ScriptedServer server;
    server.Serve("/a", QByteArray(1000, 'x'));
    server.Script("/a").Always(Answer::Truncated(100));
    server.Serve("/r", QByteArray(1000, 'x'));
    server.Script("/r").Always(Answer::Reset(100));
    for (int i = 0; i < 10; ++i) {
        Got const cut = Get(server, "/a");
        QCOMPARE(cut.Error, QNetworkReply::RemoteHostClosedError);
        QCOMPARE(cut.Body.size(), 100);
        QCOMPARE(Get(server, "/r").Error, QNetworkReply::RemoteHostClosedError);
    }
}

void ScriptedServerTest::AnswersWrongOnDemand()
{
    ScriptedServer server;
    server.Serve("/a", "0123456789");
    server.Script("/a")
        .Then(Answer::ClaimingRange("bytes 4-9/999"))
        .Then(Answer::IgnoringRange())
        .Then(Answer::WrongRangeStart(-2))
        .Then(Answer::Redirect("/b"))
        .Then(Answer::Gzip())
        .Then(Answer::ClaimingLength(20))
        .Then(Answer::WithoutLength())
        .Always(Answer::ClosedBeforeHeaders());
    QCOMPARE(Get(server, "/a", "bytes=4-").ContentRange, QByteArray("bytes 4-9/999"));
    QCOMPARE(Get(server, "/a", "bytes=4-").Body, QByteArray("0123456789"));
    Got const shifted = Get(server, "/a", "bytes=4-");
    QCOMPARE(shifted.Body, QByteArray("23456789"));
    QCOMPARE(shifted.ContentRange, QByteArray("bytes 2-9/10"));
    QCOMPARE(Get(server, "/a").Status, 302);
    QCOMPARE(Get(server, "/a").Body, QByteArray("0123456789"));
    QCOMPARE(Get(server, "/a").Error, QNetworkReply::RemoteHostClosedError);
    QCOMPARE(Get(server, "/a").Body, QByteArray("0123456789"));
    QCOMPARE(Get(server, "/a").Error, QNetworkReply::RemoteHostClosedError);
}

void ScriptedServerTest::HoldsAnAnswerUntilTheGateOpens()
{
    ScriptedServer server;
    server.Serve("/a", "a");
    server.Script("/a").Then(Answer::SilentBeforeHeaders());
    QNetworkAccessManager manager;
    std::unique_ptr<QNetworkReply> const reply(
        manager.get(QNetworkRequest(QUrl(server.Url("/a")))));
    QTRY_COMPARE(server.Count("/a"), 1);
    QVERIFY(!reply->isFinished());
    server.OpenGate("/a");
    QTRY_VERIFY(reply->isFinished());
    QCOMPARE(reply->readAll(), QByteArray("a"));
}

void ScriptedServerTest::GoesOnInsideABodyWhenTheGateOpens()
{
    ScriptedServer server;
    server.Serve("/a", "0123456789");
    server.Script("/a").Then(Answer::SilentAfter(4));
    QNetworkAccessManager manager;
    std::unique_ptr<QNetworkReply> const reply(
        manager.get(QNetworkRequest(QUrl(server.Url("/a")))));
    QTRY_COMPARE(reply->bytesAvailable(), qint64{4});
    QCOMPARE(server.BodyBytes("/a"), qint64{4});
    server.OpenGate("/a");
    QTRY_VERIFY(reply->isFinished());
    QCOMPARE(reply->readAll(), QByteArray("0123456789"));
}

void ScriptedServerTest::DripsABody()
{
    ScriptedServer server;
    QByteArray const bytes = SampleContent::Bytes(100);
    server.Serve("/a", bytes);
    server.Script("/a").Then(Answer::Drip(7, 2));
    QCOMPARE(Get(server, "/a").Body, bytes);
}

void ScriptedServerTest::AnswersByMethod()
{
    ScriptedServer server;
    server.Serve("/a", "a");
    server.Script("HEAD /a").Then(Answer::Status(405));
    server.Script("GET *").Then(Answer::Status(500));
    auto const statusOfHead = [&] {
        QNetworkAccessManager manager;
        std::unique_ptr<QNetworkReply> const reply(
            manager.head(QNetworkRequest(QUrl(server.Url("/a")))));
        QSignalSpy finished(reply.get(), &QNetworkReply::finished);
        finished.wait();
        return reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    };
    QCOMPARE(Get(server, "/a").Status, 500);
    QCOMPARE(Get(server, "/a").Status, 200);
    QCOMPARE(statusOfHead(), 405);
    QCOMPARE(statusOfHead(), 200);
    QCOMPARE(server.ScriptedAnswers("HEAD /a"), 1);
}

void ScriptedServerTest::SendsWithoutEndUntilTheClientHasGone_data()
{
    QTest::addColumn<Answer>("answer");
    QTest::newRow("headers") << Answer::EndlessHeaders();
    QTest::newRow("body") << Answer::EndlessBody();
}

void ScriptedServerTest::SendsWithoutEndUntilTheClientHasGone()
{
    QFETCH(Answer, answer);
    ScriptedServer server;
    server.Serve("/a", "0123456789");
    server.Script("/a").Then(answer);
    QTcpSocket client;
    client.connectToHost(QHostAddress(QHostAddress::LocalHost),
                         static_cast<quint16>(QUrl(server.BaseUrl()).port()));
    client.write("GET /a HTTP/1.1\r\n\r\n");
    QByteArray got;
    QTRY_VERIFY((got += client.readAll()).size() > 1'000'000);
    QCOMPARE(server.OpenConnections(), 1);
    client.abort();
    QTRY_COMPARE(server.OpenConnections(), 0);
    QCOMPARE(got.contains("\r\n\r\n"), answer.HasEndlessBody);
    QCOMPARE(got.contains("01234567890123456789"), answer.HasEndlessBody);
}

void ScriptedServerTest::CountsTheAnswersUnderWay()
{
    ScriptedServer server;
    server.Script("*").Always(Answer::SilentBeforeHeaders());
    QNetworkAccessManager manager;
    std::vector<std::unique_ptr<QNetworkReply>> replies;
    for (char const* const path : {"/a", "/b", "/c"})
        replies.emplace_back(manager.get(QNetworkRequest(QUrl(server.Url(path)))));
    QTRY_COMPARE(server.AnswersNow(), 3);
    server.OpenGate("/a");
    QTRY_COMPARE(server.AnswersNow(), 2);
    replies.clear();
    QTRY_COMPARE(server.AnswersNow(), 0);
    QCOMPARE(server.MostAnswers(), 3);
    QCOMPARE(server.MostAnswers("HEAD"), 0);
}

void ScriptedServerTest::ServesOnSeveralAddresses()
{
    ScriptedServer first;
    ScriptedServer second(QStringLiteral("127.0.0.2"));
    first.Serve("/a", "1");
    second.Serve("/a", "2");
    QCOMPARE(Get(first, "/a").Body, QByteArray("1"));
    QCOMPARE(Get(second, "/a").Body, QByteArray("2"));
    second.Stop();
    QCOMPARE(Get(second, "/a").Error, QNetworkReply::ConnectionRefusedError);
}

void ScriptedServerTest::CanBeAwayForAWhile()
{
    ScriptedServer server;
    server.Serve("/a", "a");
    server.Stop();
    QCOMPARE(Get(server, "/a").Error, QNetworkReply::ConnectionRefusedError);
    server.Restart();
    QCOMPARE(Get(server, "/a").Body, QByteArray("a"));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::ScriptedServerTest)
#include "tst_ScriptedServer.moc"
