#include "Tests/Operating/Certificates.hpp"
#include "Tests/Operating/NginxServer.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QProcess>
#include <QRegularExpression>
#include <QTcpServer>
#include <QtTest>

namespace Varnholt::TestSupport {

namespace {

constexpr int c_WaitMilliseconds = 120000;

/// The commands of a document: blocks that are indented by four blanks, and, within the text, what
/// measures something.
QStringList CommandsOf(QString const& p_Document)
{
    static QRegularExpression const c_Inline(
        "`((?:varnholt-publish diff|stat|gzip|awk|du) [^`]+)`");
    QStringList commands;
    bool goesOn = false;
    for (QString const& line : p_Document.split('\n')) {
        if (line.startsWith("    ")) {
            if (goesOn)
                commands.last() += '\n' + line.trimmed();
            else
                commands += line.trimmed();
            goesOn = line.endsWith('\\');
            continue;
        }
        auto spans = c_Inline.globalMatch(line);
        while (spans.hasNext())
            commands += spans.next().captured(1);
    }
    return commands;
}

} // namespace

/// Every command of docs/operating.md, one after the other, as an operator would.
class OperatingCommandsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();

    void ACommandDoesWhatItSays_data();
    void ACommandDoesWhatItSays();
    void TogetherTheyLeaveAWholeTree();

private:
    QString Place(QString const& p_Name) const { return Folder.filePath(p_Name); }
    void StartServers();
    /// The command with what is there in place of what the document names.
    QString Real(QString p_Command) const;
    /// \return what it said, null when it failed
    QString Run(QString const& p_Command);

    QTemporaryDir Folder;
    Certificates Authority;
    std::unique_ptr<NginxServer> Server;
    QString TlsHost;
    QProcess Bucket;
    QProcessEnvironment Environment = QProcessEnvironment::systemEnvironment();
};

void OperatingCommandsTest::initTestCase()
{
    Environment.insert("PATH",
                       QFileInfo(VARNHOLT_PUBLISH_FILE).path() + ':' + Environment.value("PATH"));
    QVERIFY(QFile::link(VARNHOLT_SOURCE_FOLDER "/scripts", Place("scripts")));
    QVERIFY(!Run("scripts/make-sample-game made small && mv made/game Game && "
                 "mv made/rules.json . && mkdir backup bucket")
                 .isNull());
    QVERIFY(WriteFile(Place("access.log"), "127.0.0.1 - - [1/Jan/2026:10:00:00 +0000] \"GET / "
                                           "HTTP/1.1\" 200 5 \"-\" \"x\"\n"));
    StartServers();
}

void OperatingCommandsTest::StartServers()
{
    QTcpServer port;
    QVERIFY(port.listen(QHostAddress::LocalHost));
    TlsHost = QString("127.0.0.1:%1").arg(port.serverPort());
    port.close();
    auto const pair = Authority.Lasting();
    QString const live = "/etc/letsencrypt/live/content.example.net/";
    // As "sed" leaves it.
    Server = std::make_unique<NginxServer>(
        "nginx/content.conf",
        WebServer::Replacements{{"#tls ", ""},
                                {"listen 443", "listen " + TlsHost},
                                {live + "fullchain.pem", pair.Certificate},
                                {live + "privkey.pem", pair.Key},
                                {"root /srv/www;", "root " + Place("www") + ';'}});
    Environment.insert("SSL_CERT_FILE", Authority.AuthorityFile());
    QVERIFY(QFile::copy(QStringLiteral(VARNHOLT_DOCUMENTS "/nginx/content.conf"),
                        Place("content.conf")));

    Bucket.setProcessChannelMode(QProcess::MergedChannels);
    Bucket.start(VARNHOLT_RCLONE_FILE,
                 {"serve", "webdav", Place("bucket"), "--addr", "127.0.0.1:0"});
    QByteArray said;
    while (!said.contains("started on http://") && Bucket.waitForReadyRead(c_WaitMilliseconds))
        said += Bucket.readAll();
    // Takes the place of the remote that the document sets up.
    Environment.insert("RCLONE_CONFIG", Place("rclone.conf"));
    Environment.insert("RCLONE_CONFIG_STORAGE_TYPE", "webdav");
    Environment.insert("RCLONE_CONFIG_STORAGE_URL",
                       QString::fromUtf8(said).section("started on ", 1).section('\n', 0, 0));
}

void OperatingCommandsTest::cleanupTestCase()
{
    Bucket.kill();
    Bucket.waitForFinished();
}

QString OperatingCommandsTest::Real(QString p_Command) const
{
    QString const port = QString::number(Server->Port());
    for (auto const& [example, real] :
         {std::pair<QString, QString>{"mirror1.example.net:/srv/www", Place("copy")},
          {"mirror1.example.net", "127.0.0.1:" + port},
          {"mirror2.example.net", "localhost:" + port},
          {"http://content.example.net", "http://127.0.0.1:" + port},
          {"https://content.example.net", "https://" + TlsHost},
          {"content.example.net:443", TlsHost},
          {"/srv/www", Place("www")},
          {"/srv/new", Place("new")},
          {"/backup/www", Place("backup/www")},
          {"/etc/nginx/conf.d/content.conf", Place("content.conf")},
          {"/var/log/nginx/access.log", Place("access.log")},
          {"=publisher", "=$(id -u)"},
          {"--group=$(id -u)", "--group=$(id -g)"}})
        p_Command.replace(example, real);
    return p_Command;
}

QString OperatingCommandsTest::Run(QString const& p_Command)
{
    QProcess process;
    process.setProcessEnvironment(Environment);
    process.setWorkingDirectory(Folder.path());
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start("bash", {"-o", "pipefail", "-c", p_Command});
    bool const ended = process.waitForFinished(c_WaitMilliseconds);
    QString const said = QString::fromUtf8(process.readAll());
    if (ended && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0)
        return QLatin1String("") + said;
    qWarning("%s\n%s", qPrintable(p_Command), qPrintable(said));
    return {};
}

void OperatingCommandsTest::ACommandDoesWhatItSays_data()
{
    QTest::addColumn<QString>("command");
    QStringList const commands =
        CommandsOf(QString::fromUtf8(ReadFile(VARNHOLT_DOCUMENTS "/operating.md")));
    for (int i = 0; i < commands.size(); ++i)
        QTest::addRow("%d: %s", i, qPrintable(commands[i])) << commands[i];
    for (char const* const word :
         {"build", "diff", "verify", "rollback", "list", "prune", "hosts", "realmlist", "rsync",
          "scripts/mirror ", "mirror-bucket", "curl", "openssl", "install", "stat", "awk", "sed"})
        QVERIFY2(!commands.filter(word).isEmpty(), word);
}

void OperatingCommandsTest::ACommandDoesWhatItSays()
{
    QFETCH(QString, command);
    QVERIFY(!Run(Real(command)).isNull());
}

void OperatingCommandsTest::TogetherTheyLeaveAWholeTree()
{
    QCOMPARE(ReadFile(Place("www/pelmora_app/version.json")), QByteArray("{\"build\":\"18500\"}"));
    QVERIFY(!QFileInfo::exists(Place("www/pelmora_app/builds/18414")));
    for (char const* const copy : {"copy", "bucket/games", "backup/www"})
        QVERIFY(!Run("diff -r -x '.varnholt-publish.*' www " + QString(copy)).isNull());
    QVERIFY(ReadFile(Place("content.conf")).contains("\n    listen 443 ssl;\n"));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::OperatingCommandsTest)
#include "tst_OperatingCommands.moc"
