#include "Tests/Gateway/GatewayBench.hpp"
#include "Tests/Operating/Certificates.hpp"
#include "Tests/Operating/NginxServer.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/SampleContent.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QTemporaryDir>

namespace Varnholt::TestSupport {

namespace {

using Kind = FetchProblem::Type;

QByteArray const c_Path = "game/files/a";
QByteArray const c_Version = "game/version.json";

} // namespace

/// Servers that speak TLS: a real nginx, with certificates made here.
class GatewayTlsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();

    void AServerIsTrustedByTheFileOfItsAuthority();
    void AnUnknownAuthorityIsToldInWords();
    void AnUntrustedServerIsAskedOnce();
    void AMirrorMaySpeakTls_data();
    void AMirrorMaySpeakTls();
    void RedirectsToTlsAreFollowed();
    void RedirectsNeverLeaveTls();
    void RedirectsThatHaveReachedTlsNeverLeaveIt();
    void TheNewerProtocolIsSpoken();

private:
    /// \param p_Redirect where "/redirected/" leads to
    std::unique_ptr<NginxServer> Start(Certificates::Pair const& p_Pair,
                                       QString const& p_Redirect = "http://127.0.0.1:1/");
    static QString Tls(WebServer const& p_Server) { return "https://" + p_Server.Host() + '/'; }
    QString LogFile() const { return Folder.filePath("log"); }

    Certificates Authority;
    QTemporaryDir Folder;
    std::unique_ptr<NginxServer> Good;
    std::unique_ptr<GatewayBench> Bench;
    QByteArray const Bytes = LargeBytes(20 * c_MiB);
};

std::unique_ptr<NginxServer> GatewayTlsTest::Start(Certificates::Pair const& p_Pair,
                                                   QString const& p_Redirect)
{
    QString const file = Folder.filePath("configuration");
    QString text = "log_format protocol '$server_protocol $request_method $uri';\n"
                   "server {\n"
                   "listen 80 ssl http2;\n"
                   "ssl_certificate CERTIFICATE;\n"
                   "ssl_certificate_key KEY;\n"
                   "root FOLDER/www;\n"
                   "access_log FOLDER/log protocol;\n"
                   "location /redirected/ { return 302 REDIRECT$request_uri; }\n"
                   "}\n";
    text.replace("CERTIFICATE", p_Pair.Certificate).replace("KEY", p_Pair.Key);
    text.replace("FOLDER", Folder.path()).replace("REDIRECT", p_Redirect.chopped(1));
    if (!WriteFile(file, text.toUtf8()))
        qFatal("the configuration cannot be written");
    return std::make_unique<NginxServer>(file);
}

void GatewayTlsTest::initTestCase()
{
    QVERIFY(WriteFile(Folder.filePath("www/" + c_Path), Bytes));
    QVERIFY(WriteFile(Folder.filePath("www/" + c_Version), "by TLS"));
    QVERIFY(WriteFile(Folder.filePath("www/cdns.info"), ""));
    Good = Start(Authority.Good());
}

void GatewayTlsTest::init()
{
    Bench = std::make_unique<GatewayBench>(0);
    Bench->Options.CaFile = Authority.AuthorityFile().toStdString();
}

void GatewayTlsTest::AServerIsTrustedByTheFileOfItsAuthority()
{
    Bench->Options.ContentServer = Tls(*Good).toStdString();
    Bench->Open();
    QCOMPARE(Bench->Document(c_Version).Body, QByteArray("by TLS"));
    Bench->Door->Plan({Planned(c_Path)});
    QVERIFY(Bench->Content(c_Path).Body == Bytes);
    QVERIFY(Bench->Door->BaseUrl().find("http://127.0.0.1:") == 0);
}

void GatewayTlsTest::AnUnknownAuthorityIsToldInWords()
{
    Bench->Options.CaFile.clear();
    Bench->Options.ContentServer = Tls(*Good).toStdString();
    Bench->Open();
    DoorReply const reply = Bench->Document(c_Version);
    QVERIFY(reply.Status >= 500);
    QVERIFY(!reply.Body.contains("by TLS"));
    FetchProblem const problem = Bench->ProblemOf(c_Version);
    QCOMPARE(problem.Kind, Kind::Untrusted);
    QCOMPARE(problem.Url, (Tls(*Good) + c_Version).toStdString());
    QCOMPARE(problem.Why, FetchProblem::Cause::CertificateProblem);
    QString const cause = QString::fromStdString(problem.Detail);
    QVERIFY2(cause.contains(QRegularExpression("issuer|authority|self.signed",
                                               QRegularExpression::CaseInsensitiveOption)),
             qPrintable(cause));
}

void GatewayTlsTest::AnUntrustedServerIsAskedOnce()
{
    Bench->Options.ContentServer = Tls(*Good).toStdString();
    Bench->Options.CaFile.clear();
    Bench->Open();
    QElapsedTimer timer;
    timer.start();
    QVERIFY(Bench->Document(c_Version).Status >= 500);
    QVERIFY2(timer.elapsed() < 5000, QByteArray::number(timer.elapsed()));
    QCOMPARE(Bench->Door->LatestProblem().value_or(FetchProblem{}).Kind, Kind::Untrusted);
}

void GatewayTlsTest::AMirrorMaySpeakTls_data()
{
    QTest::addColumn<bool>("isNamedSo");
    QTest::newRow("as the list says") << true;
    QTest::newRow("as the user says") << false;
}

void GatewayTlsTest::AMirrorMaySpeakTls()
{
    QFETCH(bool, isNamedSo);
    Bench->Server->Serve("/cdns.info", ((isNamedSo ? "https://" : "") + Good->Host()).toLatin1());
    Bench->Options.HttpsMirrors = !isNamedSo;
    Bench->Open();
    Bench->Door->Plan({Planned(c_Path)});
    QVERIFY(Bench->Content(c_Path).Body == Bytes);
    QCOMPARE(Bench->Server->Count('/' + c_Path), 0);
}

void GatewayTlsTest::RedirectsToTlsAreFollowed()
{
    Bench->Server->Script('/' + c_Version)
        .Always(Answer::Redirect((Tls(*Good) + c_Version).toLatin1()));
    Bench->Open();
    QCOMPARE(Bench->Document(c_Version).Body, QByteArray("by TLS"));
}

void GatewayTlsTest::RedirectsNeverLeaveTls()
{
    ScriptedServer plain;
    plain.Serve("/redirected/version.json", "plain");
    plain.Serve("/redirected/files/a", "plain");
    auto const server = Start(Authority.Good(), plain.BaseUrl());
    Bench->Options.ContentServer = Tls(*server).toStdString();
    Bench->Options.RetryFor = std::chrono::seconds{1};
    Bench->Open();
    QVERIFY(Bench->Document("redirected/version.json").Status >= 500);
    QVERIFY(Bench->Door->ProblemOf("redirected/version.json"));
    QVERIFY(Bench->Content("redirected/files/a").Status != 200);
    QCOMPARE(plain.Requests().size(), std::size_t{0});
}

void GatewayTlsTest::RedirectsThatHaveReachedTlsNeverLeaveIt()
{
    ScriptedServer plain;
    plain.Serve("/redirected/a", "plain");
    auto const server = Start(Authority.Good(), plain.BaseUrl());
    Bench->Server->Script('/' + c_Version)
        .Always(Answer::Redirect((Tls(*server) + "redirected/a").toLatin1()));
    Bench->Open();
    QVERIFY(Bench->Document(c_Version).Status >= 500);
    QCOMPARE(Bench->ProblemOf(c_Version).Kind, Kind::Unusable);
    QCOMPARE(plain.Requests().size(), std::size_t{0});
}

void GatewayTlsTest::TheNewerProtocolIsSpoken()
{
    Bench->Options.ContentServer = Tls(*Good).toStdString();
    Bench->Open();
    QCOMPARE(Bench->Document(c_Version).Status, 200);
    QVERIFY(Becomes([&] { return ReadFile(LogFile()).contains("HTTP/2.0 GET /" + c_Version); }));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::GatewayTlsTest)
#include "tst_GatewayTls.moc"
