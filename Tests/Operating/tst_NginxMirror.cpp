#include "Publisher/Verification/ServerVerification.hpp"
#include "Tests/Operating/NginxServer.hpp"
#include "Tests/Publisher/PublishedGame.hpp"
#include "Tests/Publisher/ServingThread.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/SampleContent.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

namespace Varnholt::TestSupport {

namespace {

constexpr int c_Slice = 4 * 1024 * 1024;
/// Two whole slices and a piece.
QByteArray const c_Big = SampleContent::Bytes(2 * c_Slice + 1000);

QByteArray GetOf(QByteArray const& p_Content)
{
    return "GET /" + PublishedGame::ContentPath(p_Content).toUtf8();
}

} // namespace

/// docs/nginx/mirror.conf in front of docs/nginx/content.conf
class NginxMirrorTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void GivesEveryFileAsPublished();
    void GivesRanges_data();
    void GivesRanges();
    void ARangeFetchesItsSlicesOnly();
    void WhatItHasItGivesWithoutTheContentServer();
    void KeepsWhatIsSaidAboutHoldingAnswers();
    void WhatIsNotThereIsNotFound();
    void IsWhatVerificationWants();

private:
    PublishedGame* Game = nullptr;
    NginxServer* Content = nullptr;
    NginxServer* Mirror = nullptr;
    QTemporaryDir* Cache = nullptr;
};

void NginxMirrorTest::init()
{
    Game = new PublishedGame;
    Game->Put("big", c_Big);
    Game->Put("exactly a slice", c_Big.left(c_Slice));
    Game->Put("small", "small");
    Game->Put("empty", "");
    Game->Publish();
    Content = new NginxServer("nginx/content.conf",
                              {{"root /srv/www;", "root " + Game->Options.Output + ';'}});
    Cache = new QTemporaryDir;
    Mirror = new NginxServer("nginx/mirror.conf",
                             {{"/var/cache/nginx/content", Cache->path()},
                              {"http://content.example.net;", "http://" + Content->Host() + ';'}});
    QVERIFY(WriteFile(Game->OutputPath("cdns.info"), Mirror->Host().toUtf8()));
}

void NginxMirrorTest::cleanup()
{
    delete Mirror;
    delete Cache;
    delete Content;
    delete Game;
}

void NginxMirrorTest::GivesEveryFileAsPublished()
{
    for (char const* const state : {"MISS", "HIT"}) {
        for (auto const& [path, bytes] : Game->Published()) {
            if (path.endsWith('/'))
                continue;
            HttpReply const reply = Ask(Mirror->Port(), "GET /" + path.toUtf8());
            QCOMPARE(reply.Status, 200);
            QVERIFY2(reply.Body == bytes, qPrintable(path));
            QCOMPARE(reply.Header("Content-Length").toInt(), bytes.size());
            if (!bytes.isEmpty())
                QCOMPARE(reply.Header("X-Cache"), QByteArray(state));
        }
    }
}

void NginxMirrorTest::GivesRanges_data()
{
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("last");
    int const size = c_Big.size();
    QTest::newRow("rest in the last slice") << size - 10 << -1;
    QTest::newRow("rest from the first slice") << 100 << -1;
    QTest::newRow("all") << 0 << -1;
    QTest::newRow("within a slice") << c_Slice + 5 << c_Slice + 50;
    QTest::newRow("over a boundary") << c_Slice - 5 << c_Slice + 5;
    QTest::newRow("last of a slice") << c_Slice - 1 << c_Slice - 1;
    QTest::newRow("first of a slice") << c_Slice << c_Slice;
}

void NginxMirrorTest::GivesRanges()
{
    QFETCH(int, first);
    QFETCH(int, last);
    QByteArray const from = QByteArray::number(first);
    QByteArray const to = last < 0 ? QByteArray() : QByteArray::number(last);
    int const end = last < 0 ? c_Big.size() - 1 : last;
    for (int i = 0; i < 2; ++i) {
        HttpReply const reply = AskRange(Mirror->Port(), GetOf(c_Big), "bytes=" + from + '-' + to);
        QCOMPARE(reply.Status, 206);
        QCOMPARE(reply.Header("Content-Range"), "bytes " + from + '-' + QByteArray::number(end) +
                                                    '/' + QByteArray::number(c_Big.size()));
        QVERIFY(reply.Body == c_Big.mid(first, end - first + 1));
    }
}

void NginxMirrorTest::ARangeFetchesItsSlicesOnly()
{
    QCOMPARE(AskRange(Mirror->Port(), GetOf(c_Big), "bytes=10-20").Status, 206);
    Content->Stop();
    QCOMPARE(AskRange(Mirror->Port(), GetOf(c_Big), "bytes=100-200").Status, 206);
    QVERIFY(AskRange(Mirror->Port(), GetOf(c_Big), "bytes=5000000-").Status >= 500);
}

void NginxMirrorTest::WhatItHasItGivesWithoutTheContentServer()
{
    QCOMPARE(Ask(Mirror->Port(), GetOf(c_Big)).Status, 200);
    QCOMPARE(Ask(Mirror->Port(), "GET /pelmora_app/version.json").Status, 200);
    Content->Stop();
    QVERIFY(Ask(Mirror->Port(), GetOf(c_Big)).Body == c_Big);
    QVERIFY(AskRange(Mirror->Port(), GetOf(c_Big), "bytes=5000000-").Body == c_Big.mid(5000000));
    QCOMPARE(Ask(Mirror->Port(), "GET /pelmora_app/version.json").Body,
             QByteArray("{\"build\":\"build_1\"}"));
    QVERIFY(Ask(Mirror->Port(), GetOf("small")).Status >= 500);
}

void NginxMirrorTest::KeepsWhatIsSaidAboutHoldingAnswers()
{
    QByteArray const forever = "public, max-age=31536000, immutable";
    QCOMPARE(Ask(Mirror->Port(), GetOf(c_Big)).Header("Cache-Control"), forever);
    QCOMPARE(AskRange(Mirror->Port(), GetOf(c_Big), "bytes=5-").Header("Cache-Control"), forever);
    QCOMPARE(Ask(Mirror->Port(), "GET /pelmora_app/version.json").Header("Cache-Control"),
             QByteArray("public, max-age=60"));
}

void NginxMirrorTest::WhatIsNotThereIsNotFound()
{
    QCOMPARE(Ask(Mirror->Port(), GetOf("unknown")).Status, 404);
    // It is not remembered either: mirrors are asked before a build has reached every server.
    Game->Put("later", "unknown");
    Game->Publish("build_2");
    QCOMPARE(Ask(Mirror->Port(), GetOf("unknown")).Body, QByteArray("unknown"));
}

void NginxMirrorTest::IsWhatVerificationWants()
{
    auto const summary = Publisher::VerifyServers({Content->BaseUrl(), "pelmora_app", 0, true});
    QCOMPARE(summary.Defects, QStringList());
    QCOMPARE(summary.Servers, QStringList({Content->BaseUrl(), Mirror->BaseUrl()}));
    QCOMPARE(summary.FilesRead, 10);
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::NginxMirrorTest)
#include "tst_NginxMirror.moc"
