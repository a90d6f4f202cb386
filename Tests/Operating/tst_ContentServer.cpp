#include "Publisher/Verification/ServerVerification.hpp"
#include "Tests/Publisher/PublishedGame.hpp"
#include "Tests/Publisher/ServingThread.hpp"
#include "Tests/Publisher/SigningKeys.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/SampleContent.hpp"
#include "Tests/Support/TestMain.hpp"

#ifdef VARNHOLT_CADDY_FILE
#include "Tests/Operating/CaddyServer.hpp"
#else
#include "Tests/Operating/NginxServer.hpp"
#endif

#include <QtTest>

namespace Varnholt::TestSupport {

namespace {

#ifdef VARNHOLT_CADDY_FILE
constexpr bool c_CompressesManifests = false;

std::unique_ptr<WebServer> StartServer(QString const& p_Root)
{
    return std::make_unique<CaddyServer>(
        WebServer::Replacements{{"root * /srv/www", "root * " + p_Root}});
}
#else
constexpr bool c_CompressesManifests = true;

std::unique_ptr<WebServer> StartServer(QString const& p_Root)
{
    return std::make_unique<NginxServer>(
        "nginx/content.conf", WebServer::Replacements{{"root /srv/www;", "root " + p_Root + ';'}});
}
#endif

QByteArray const c_AcceptGzip = "Accept-Encoding: gzip, deflate\r\n";
/// A text, so that a server which compresses anything compresses it.
QByteArray const c_Data = QByteArray("a line of text\n").repeated(10000);

QByteArray GetOf(QString const& p_Path)
{
    return "GET /" + p_Path.toUtf8();
}

QByteArray GetOfData()
{
    return GetOf(PublishedGame::ContentPath(c_Data));
}

} // namespace

/// The configurations of a content server: docs/nginx/content.conf, docs/Caddyfile.
class ContentServerTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void GivesEveryFileAsPublished();
    void GivesRanges_data();
    void GivesRanges();
    void ContentIsNotCompressed();
    void ManifestsAreCompressedForThoseWhoCanWhereItIsSaid();
    void TellsHowLongAnAnswerHolds_data();
    void TellsHowLongAnAnswerHolds();
    void GivesNothingElse_data();
    void GivesNothingElse();
    void IsWhatVerificationWants();

private:
    PublishedGame Game;
    std::unique_ptr<WebServer> Server;
};

void ContentServerTest::initTestCase()
{
    Game.Put("Data/text", c_Data);
    Game.Put("empty", "");
    for (int i = 0; i < 100; ++i)
        Game.Put(QString("Data/%1").arg(i),
                 SampleContent::Bytes(1000, static_cast<quint32>(i + 1)));
    Game.Options.RealmListAddress = "logon.example.net";
    Game.Options.Signing = SigningKeys().Options();
    Game.Options.DevChannel = true;
    Game.Publish();
    Game.Options.DevChannel = false;
    Game.Publish();
    SigningKeys::Change(Game);
    Server = StartServer(Game.Options.Output);
}

void ContentServerTest::GivesEveryFileAsPublished()
{
    int files = 0;
    for (auto const& [path, bytes] : Game.Published()) {
        if (path.endsWith('/'))
            continue;
        HttpReply const reply = Ask(Server->Port(), GetOf(path));
        QCOMPARE(reply.Status, 200);
        QCOMPARE(reply.Body, bytes);
        QCOMPARE(reply.Header("Content-Length").toInt(), bytes.size());
        ++files;
    }
    QCOMPARE(files, 115);
}

void ContentServerTest::GivesRanges_data()
{
    QTest::addColumn<QByteArray>("range");
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("contentRange");
    QTest::addColumn<QByteArray>("body");
    AddRow("rest", QByteArray("bytes=149990-"), 206, QByteArray("bytes 149990-149999/150000"),
           c_Data.right(10));
    AddRow("from the start", QByteArray("bytes=0-"), 206, QByteArray("bytes 0-149999/150000"),
           c_Data);
    AddRow("middle", QByteArray("bytes=100000-100009"), 206,
           QByteArray("bytes 100000-100009/150000"), c_Data.mid(100000, 10));
    AddRow("behind the end", QByteArray("bytes=150000-"), 416, QByteArray("bytes */150000"),
           QByteArray());
}

void ContentServerTest::GivesRanges()
{
    QFETCH(QByteArray, range);
    QFETCH(int, status);
    QFETCH(QByteArray, contentRange);
    QFETCH(QByteArray, body);
    HttpReply const reply =
        Ask(Server->Port(), GetOfData(), c_AcceptGzip + "Range: " + range + "\r\n");
    QCOMPARE(reply.Status, status);
    QCOMPARE(reply.Header("Content-Range"), contentRange);
    if (status == 206)
        QCOMPARE(reply.Body, body);
}

void ContentServerTest::ContentIsNotCompressed()
{
    HttpReply const reply = Ask(Server->Port(), GetOfData(), c_AcceptGzip);
    QCOMPARE(reply.Header("Content-Encoding"), QByteArray());
    QCOMPARE(reply.Header("Accept-Ranges"), QByteArray("bytes"));
    QCOMPARE(reply.Body, c_Data);
}

void ContentServerTest::ManifestsAreCompressedForThoseWhoCanWhereItIsSaid()
{
    QByteArray const get = GetOf("pelmora_app/builds/build_1/info.json");
    QCOMPARE(Ask(Server->Port(), get, c_AcceptGzip).Header("Content-Encoding"),
             c_CompressesManifests ? QByteArray("gzip") : QByteArray());
    QCOMPARE(Ask(Server->Port(), get).Header("Content-Encoding"), QByteArray());
}

void ContentServerTest::TellsHowLongAnAnswerHolds_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QByteArray>("value");
    AddRow("content", PublishedGame::ContentPath(c_Data),
           QByteArray("public, max-age=31536000, immutable"));
    AddRow("manifest", "pelmora_app/builds/build_1/info.json", QByteArray("public, max-age=86400"));
    AddRow("its signature", "pelmora_app/builds/build_1/info.json.minisig",
           QByteArray("public, max-age=300"));
    AddRow("version", "pelmora_app/version.json", QByteArray("public, max-age=60"));
    AddRow("development", "pelmora_app/version_dev.json", QByteArray("public, max-age=60"));
    AddRow("hosts", "cdns.info", QByteArray("public, max-age=300"));
    AddRow("realm list", "pelmora_app/realmlist.info", QByteArray("public, max-age=300"));
    for (char const* const name : {"version.json.minisig", "trust-key", "trust-key.minisig"})
        AddRow(name, "pelmora_app/" + QString(name), QByteArray("public, max-age=60"));
    for (char const* const path : {"cdns.info.minisig", "pelmora_app/realmlist.info.minisig"})
        AddRow(path, QString(path), QByteArray("public, max-age=300"));
}

void ContentServerTest::TellsHowLongAnAnswerHolds()
{
    QFETCH(QString, path);
    QFETCH(QByteArray, value);
    QCOMPARE(Ask(Server->Port(), GetOf(path)).Header("Cache-Control"), value);
    QCOMPARE(AskRange(Server->Port(), GetOf(path), "bytes=1-").Header("Cache-Control"), value);
}

void ContentServerTest::GivesNothingElse_data()
{
    QTest::addColumn<QString>("path");
    for (char const* const path : {"", "pelmora_app", "pelmora_app/",
                                   "pelmora_app/files/00/00000000000000000000000000000000",
                                   "pelmora_app/builds/none/info.json", "pelmora_app/builds/",
                                   "other/version.json", ".varnholt-publish.new/x", "notes.txt",
                                   "pelmora_app/version.json.old", "notes.txt.minisig"})
        AddRow(qPrintable(QString("/%1").arg(path)), QString(path));
}

void ContentServerTest::GivesNothingElse()
{
    QFETCH(QString, path);
    for (char const* const present : {".varnholt-publish.new/x", "notes.txt",
                                      "pelmora_app/version.json.old", "notes.txt.minisig"})
        QVERIFY(WriteFile(Game.OutputPath(present), "secret"));
    HttpReply const reply = Ask(Server->Port(), GetOf(path));
    QCOMPARE(reply.Status, 404);
    QVERIFY(!reply.Body.contains("secret"));
    // Else a CDN may keep for a while that a file is missing which arrives later.
    QCOMPARE(reply.Header("Cache-Control"), QByteArray("no-store"));
}

void ContentServerTest::IsWhatVerificationWants()
{
    QVERIFY(WriteFile(Game.OutputPath("cdns.info"), Server->Host().toUtf8()));
    auto const summary = Publisher::VerifyServers({Server->BaseUrl(), "pelmora_app", 0, true});
    QCOMPARE(summary.Defects, QStringList());
    QCOMPARE(summary.FilesRead, 103);
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::ContentServerTest)
#include "tst_ContentServer.moc"
