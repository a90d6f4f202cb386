#include "Tests/Publisher/FailureOf.hpp"
#include "Tests/Publisher/ServingThread.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/SampleContent.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QTcpSocket>
#include <QTemporaryDir>
#include <QtTest>

#include <thread>

namespace Varnholt::TestSupport {

class StaticServerTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init() { Server = std::make_unique<ServingThread>(Folder.filePath("tree/")); }
    void cleanup() { Server.reset(); }

    void AnswersAWholeFile_data();
    void AnswersAWholeFile();
    void AnswersARange_data();
    void AnswersARange();
    void ARangeMayBeginBeyond32Bits();
    void ARangeWithoutAByteIsRefused_data();
    void ARangeWithoutAByteIsRefused();
    void SeveralRangesGetTheWholeFile();
    void HeadAnswersHeadersOnly();
    void WhatIsNotThereIsNotFound_data();
    void WhatIsNotThereIsNotFound();
    void OtherMethodsAreRefused_data();
    void OtherMethodsAreRefused();
    void LargeFilesArriveWholeAndAtOnce();
    void AConnectionCarriesSeveralRequests();
    void AClientThatGoesAwayHarmsNobody();
    void EachAnswerIsLoggedInOneLine();
    void ASecondServerDoesNotShareThePort();

private:
    QTemporaryDir Folder;
    std::unique_ptr<ServingThread> Server;
    QByteArray const Large = SampleContent::Bytes(3'000'001);
};

void StaticServerTest::initTestCase()
{
    auto const put = [this](QString const& p_Path, QByteArray const& p_Bytes) {
        return WriteFile(Folder.filePath(p_Path), p_Bytes);
    };
    QVERIFY(put("tree/ten", "0123456789"));
    QVERIFY(put("tree/app/version.json", "{}"));
    QVERIFY(put("tree/cdns.info", "a b"));
    QVERIFY(put("tree/empty", ""));
    QVERIFY(put("tree/large", Large));
    for (char const* const path : {"tree/a b", "tree/é", "tree/100%25", "tree/..a", "secret",
                                   "tree2/secret", "tree/.varnholt-publish.tree"})
        QVERIFY(put(QString::fromUtf8(path), path));
    QVERIFY(QFile::link("ten", Folder.filePath("tree/inside")));
    QVERIFY(QFile::link("../secret", Folder.filePath("tree/outside")));
    QVERIFY(QFile::link("../tree2", Folder.filePath("tree/beside")));
    QVERIFY(QFile::link("none", Folder.filePath("tree/nowhere")));
}

void StaticServerTest::AnswersAWholeFile_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QByteArray>("type");
    auto const add = [](char const* p_Path, char const* p_Body, char const* p_Type) {
        QTest::newRow(p_Path) << QByteArray(p_Path) << QByteArray(p_Body) << QByteArray(p_Type);
    };
    add("/ten", "0123456789", "application/octet-stream");
    add("/app/version.json", "{}", "application/json");
    add("/cdns.info", "a b", "text/plain; charset=utf-8");
    add("/empty", "", "application/octet-stream");
    add("/a%20b", "tree/a b", "application/octet-stream");
    add("/%C3%A9", "tree/é", "application/octet-stream");
    add("/100%2525", "tree/100%25", "application/octet-stream");
    add("/..a", "tree/..a", "application/octet-stream");
    add("//app//version.json", "{}", "application/json");
    add("/inside", "0123456789", "application/octet-stream");
    add("/ten?x=1", "0123456789", "application/octet-stream");
}

void StaticServerTest::AnswersAWholeFile()
{
    QFETCH(QByteArray, path);
    QFETCH(QByteArray, body);
    QFETCH(QByteArray, type);
    HttpReply const reply = Ask(Server->Port(), "GET " + path);
    QCOMPARE(reply.Status, 200);
    QCOMPARE(reply.Body, body);
    QCOMPARE(reply.Header("Content-Length"), QByteArray::number(body.size()));
    QCOMPARE(reply.Header("Content-Type"), type);
    QCOMPARE(reply.Header("Accept-Ranges"), QByteArray("bytes"));
    QVERIFY(reply.Header("Content-Range").isNull());
}

void StaticServerTest::AnswersARange_data()
{
    QTest::addColumn<QByteArray>("range");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QByteArray>("place");
    auto const add = [](char const* p_Range, char const* p_Body, char const* p_Place) {
        QTest::newRow(p_Range) << QByteArray(p_Range) << QByteArray(p_Body) << QByteArray(p_Place);
    };
    add("bytes=0-0", "0", "bytes 0-0/10");
    add("bytes=2-4", "234", "bytes 2-4/10");
    add("bytes=9-9", "9", "bytes 9-9/10");
    add("bytes=0-9", "0123456789", "bytes 0-9/10");
    add("bytes=0-", "0123456789", "bytes 0-9/10");
    add("bytes=5-", "56789", "bytes 5-9/10");
    add("bytes=9-", "9", "bytes 9-9/10");
    add("bytes=8-100", "89", "bytes 8-9/10");
    add("bytes=-3", "789", "bytes 7-9/10");
    add("bytes=-10", "0123456789", "bytes 0-9/10");
    add("bytes=-100", "0123456789", "bytes 0-9/10");
    add("bytes=9-9223372036854775807", "9", "bytes 9-9/10");
}

void StaticServerTest::AnswersARange()
{
    QFETCH(QByteArray, range);
    QFETCH(QByteArray, body);
    QFETCH(QByteArray, place);
    HttpReply const reply = AskRange(Server->Port(), "GET /ten", range);
    QCOMPARE(reply.Status, 206);
    QCOMPARE(reply.Body, body);
    QCOMPARE(reply.Header("Content-Range"), place);
    QCOMPARE(reply.Header("Content-Length"), QByteArray::number(body.size()));
    QCOMPARE(reply.Header("Content-Type"), QByteArray("application/octet-stream"));
}

void StaticServerTest::ARangeMayBeginBeyond32Bits()
{
    QString const file = Folder.filePath("tree/vast");
    QVERIFY(WriteFile(file, "") && QFile::resize(file, Q_INT64_C(5'000'000'007)));
    HttpReply const reply = AskRange(Server->Port(), "GET /vast", "bytes=5000000000-");
    QVERIFY(QFile::remove(file));
    QCOMPARE(reply.Header("Content-Range"), QByteArray("bytes 5000000000-5000000006/5000000007"));
    QCOMPARE(reply.Body, QByteArray(7, '\0'));
}

void StaticServerTest::ARangeWithoutAByteIsRefused_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QByteArray>("range");
    QTest::addColumn<QByteArray>("place");
    auto const add = [](char const* p_Path, char const* p_Range, char const* p_Place) {
        QTest::addRow("%s of %s", p_Range, p_Path)
            << QByteArray(p_Path) << QByteArray(p_Range) << QByteArray(p_Place);
    };
    add("/ten", "bytes=10-", "bytes */10");
    add("/ten", "bytes=10-20", "bytes */10");
    add("/ten", "bytes=100-", "bytes */10");
    add("/ten", "bytes=-0", "bytes */10");
    add("/ten", "bytes=-", "bytes */10");
    add("/empty", "bytes=0-", "bytes */0");
    add("/empty", "bytes=0-0", "bytes */0");
    add("/empty", "bytes=-5", "bytes */0");
    for (char const* const malformed :
         {"bytes=4-2", "bytes=x", "bytes=a-b", "bytes=", "bytes=--3", "bytes", "5-"})
        add("/ten", malformed, "");
}

void StaticServerTest::ARangeWithoutAByteIsRefused()
{
    QFETCH(QByteArray, path);
    QFETCH(QByteArray, range);
    QFETCH(QByteArray, place);
    HttpReply const reply = AskRange(Server->Port(), "GET " + path, range);
    QCOMPARE(reply.Status, 416);
    QCOMPARE(reply.Header("Content-Range"), place);
    QCOMPARE(reply.Body, QByteArray(""));
}

void StaticServerTest::SeveralRangesGetTheWholeFile()
{
    HttpReply const reply = AskRange(Server->Port(), "GET /ten", "bytes=0-1,4-5");
    QCOMPARE(reply.Status, 200);
    QCOMPARE(reply.Body, QByteArray("0123456789"));
    QCOMPARE(reply.Header("Content-Type"), QByteArray("application/octet-stream"));
    QVERIFY(reply.Header("Content-Range").isNull());
}

void StaticServerTest::HeadAnswersHeadersOnly()
{
    HttpReply const whole = Ask(Server->Port(), "HEAD /ten");
    QCOMPARE(whole.Status, 200);
    QCOMPARE(whole.Header("Content-Length"), QByteArray("10"));
    QCOMPARE(whole.Body, QByteArray(""));
    HttpReply const part = AskRange(Server->Port(), "HEAD /ten", "bytes=2-4");
    QCOMPARE(part.Status, 206);
    QCOMPARE(part.Header("Content-Length"), QByteArray("3"));
    QCOMPARE(part.Body, QByteArray(""));
    QCOMPARE(Ask(Server->Port(), "HEAD /large").Header("Content-Length"), QByteArray("3000001"));
    QCOMPARE(Ask(Server->Port(), "HEAD /none").Status, 404);
}

void StaticServerTest::WhatIsNotThereIsNotFound_data()
{
    QTest::addColumn<QByteArray>("path");
    QByteArray const paths =
        "/none / /app /app/ /TEN /.. /../secret /../tree2/secret /app/../ten /app/../../secret "
        "/app/.. /%2e%2e/secret /%2E%2E%2Fsecret /app/%2e%2e/%2e%2e/secret /%252e%252e/secret "
        "/..%5csecret /outside /beside/secret /nowhere /ten%00 //../secret /ten/ /ten/.. /ten/x "
        "/ten%2f xten \\ten /%2574en /%E9 /.varnholt-publish.tree /./.varnholt-publish.tree";
    for (QByteArray const& path : paths.split(' '))
        QTest::newRow(path.constData()) << path;
    QTest::newRow("absolute") << QByteArray("/") + Folder.filePath("secret").toUtf8();
}

void StaticServerTest::WhatIsNotThereIsNotFound()
{
    QFETCH(QByteArray, path);
    HttpReply const reply = Ask(Server->Port(), "GET " + path);
    QCOMPARE(reply.Status, 404);
    QVERIFY(!reply.Body.contains("secret"));
    QVERIFY(!reply.Body.contains("0123456789"));
}

void StaticServerTest::OtherMethodsAreRefused_data()
{
    QTest::addColumn<QByteArray>("method");
    for (char const* const method : {"POST", "PUT", "DELETE", "PATCH", "OPTIONS"})
        QTest::newRow(method) << QByteArray(method);
}

void StaticServerTest::OtherMethodsAreRefused()
{
    QFETCH(QByteArray, method);
    HttpReply const reply = Ask(Server->Port(), method + " /ten", "Content-Length: 0\r\n");
    QCOMPARE(reply.Status, 405);
    QCOMPARE(reply.Header("Allow"), QByteArray("GET, HEAD"));
    QCOMPARE(ReadFile(Folder.filePath("tree/ten")), QByteArray("0123456789"));
}

void StaticServerTest::LargeFilesArriveWholeAndAtOnce()
{
    std::vector<std::future<HttpReply>> replies;
    for (int i = 0; i < 6; ++i) {
        replies.push_back(std::async(std::launch::async, [this, i] {
            QByteArray const range = "bytes=" + QByteArray::number(i * 100'000) + '-';
            return AskRange(Server->Port(), "GET /large", range);
        }));
    }
    for (int i = 0; i < 6; ++i) {
        HttpReply const reply = replies[static_cast<std::size_t>(i)].get();
        QCOMPARE(reply.Status, 206);
        QVERIFY(reply.Body == Large.mid(i * 100'000));
    }
}

void StaticServerTest::AConnectionCarriesSeveralRequests()
{
    QTcpSocket socket;
    socket.connectToHost("127.0.0.1", Server->Port());
    QByteArray answers;
    for (int i = 0; i < 20; ++i) {
        socket.write("GET /ten HTTP/1.1\r\nHost: a\r\nRange: bytes=" + QByteArray::number(i % 10) +
                     "-\r\n\r\n");
        QByteArray const end = QByteArray("\r\n\r\n") + QByteArray("0123456789").mid(i % 10);
        answers.clear();
        while (!answers.endsWith(end)) {
            QVERIFY2(socket.waitForReadyRead(30000), answers.constData());
            answers += socket.readAll();
        }
    }
    QTRY_COMPARE(Server->Log().size(), 20);
}

void StaticServerTest::AClientThatGoesAwayHarmsNobody()
{
    QVERIFY(WriteFile(Folder.filePath("tree/huge"), QByteArray(60'000'000, 'x')));
    for (int i = 0; i < 5; ++i) {
        QTcpSocket socket;
        socket.setReadBufferSize(1000);
        socket.connectToHost("127.0.0.1", Server->Port());
        socket.write("GET /huge HTTP/1.1\r\nHost: a\r\n\r\n");
        QVERIFY(socket.waitForReadyRead(30000));
        socket.abort();
    }
    QCOMPARE(Ask(Server->Port(), "GET /ten").Body, QByteArray("0123456789"));
    QVERIFY(QFile::remove(Folder.filePath("tree/huge")));
}

void StaticServerTest::EachAnswerIsLoggedInOneLine()
{
    Ask(Server->Port(), "GET /ten");
    AskRange(Server->Port(), "GET /ten", "bytes=2-");
    Ask(Server->Port(), "GET /none%0a\x1b");
    Ask(Server->Port(), "HEAD /a%20b");
    Ask(Server->Port(), "POST /ten", "Content-Length: 0\r\n");
    QTRY_COMPARE(Server->Log(),
                 QStringList({"GET /ten - 200", "GET /ten bytes=2- 206", "GET /none%0a? - 404",
                              "HEAD /a%20b - 200", "POST /ten - 405"}));
}

void StaticServerTest::ASecondServerDoesNotShareThePort()
{
    Publisher::StaticServer second(Folder.path(), {});
    int const port = Server->Port();
    QString const sentence = FailureOf([&] { second.Listen("127.0.0.1", port); }).Sentence;
    QString const start = QString("cannot listen on 127.0.0.1 port %1: ").arg(port);
    QVERIFY2(sentence.startsWith(start) && sentence.size() > start.size(), qPrintable(sentence));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::StaticServerTest)
#include "tst_StaticServer.moc"
