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

/// Every document: that of operators first, whose tree others play from.
QStringList Documents()
{
    QDir const root(VARNHOLT_SOURCE_FOLDER);
    QStringList files{"docs/operating.md"};
    for (char const* const folder : {"", "docs/"})
        for (QString const& name : QDir(root.filePath(folder)).entryList({"*.md"}, QDir::Files))
            if (!files.contains(folder + name))
                files += folder + name;
    return files;
}

/// The commands of a document: blocks that are indented by four blanks, and, within the text, what
/// begins with a program.
QStringList CommandsOf(QString const& p_File)
{
    static QRegularExpression const c_Inline(
        "`((?:varnholt-publish diff|scripts/[a-z-]+|cmake|ctest|stat|gzip|awk|du) [^`]+)`");
    QStringList commands;
    bool goesOn = false;
    bool isExample = false;
    bool isBlock = false;
    bool isBehindBlank = false;
    QString const text = QString::fromUtf8(ReadFile(VARNHOLT_SOURCE_FOLDER "/" + p_File));
    for (QString const& line : text.split('\n')) {
        isExample ^= line.startsWith("```");
        isBlock = !isExample && line.startsWith("    ") && (isBlock || isBehindBlank);
        isBehindBlank = line.isEmpty();
        if (isExample)
            continue;
        if (isBlock) {
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

/// What takes too long here, or would run this test: somebody else runs it.
struct Elsewhere {
    QString Begin; ///< of the command
    QString File;  ///< that runs it
    QString Text;  ///< in there
};

std::vector<Elsewhere> const c_Elsewhere{
    {"scripts/demo", "Tests/EndToEnd/CMakeLists.txt", "scripts/demo --small"},
    {"scripts/package", ".github/workflows/linux.yml", "scripts/package --check"},
    {"scripts/test", ".ci/run", "scripts/test"},
    {"VARNHOLT_PRESET=tsan scripts/test", "scripts/test", "scripts/setup --tsan"},
    {".ci/run", ".ci/run", "scripts/test"},
    {"scripts/setup", ".ci/run", "scripts/setup --lint"},
    {"scripts/lint", ".ci/run", "scripts/lint"},
    {"scripts/fuzz", ".ci/run", "scripts/fuzz --seconds"},
    {"scripts/faults", "Tests/Faults/CMakeLists.txt", "varnholt-faults"},
    {"cmake --install", "Tests/Packaging/tst_InstallationTree.cpp", "\"--install\""},
};

/// Presets are looked up, not built; rows of benchmarks, which take minutes, likewise.
QString WithoutBuilding(QString p_Command)
{
    static QRegularExpression const c_Tests("ctest --preset (\\w+)(.*)$");
    static QRegularExpression const c_Build("(cmake(?: --build)?) --preset (\\w+)");

    p_Command.replace(c_Tests, "ctest --list-presets | grep '\"\\1\"' && ctest --test-dir "
                               "'" VARNHOLT_BUILD_FOLDER "' -N\\2 | grep 'Total Tests: [1-9]'");
    p_Command.replace(QRegularExpression("^scripts/bench (.*)"),
                      "for row in \\1; do grep -E \"^ +([a-z0-9-]+ \\| )*$row( \\| "
                      "[a-z0-9-]+)*\\) echo\" scripts/bench || exit; done");
    return p_Command.replace(c_Build, "\\1 --list-presets | grep '\"\\2\"'");
}

} // namespace

/// Every command of the documents, one after the other, as a reader would.
class DocumentCommandsTest : public QObject {
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

void DocumentCommandsTest::initTestCase()
{
    Environment.insert("PATH",
                       QFileInfo(VARNHOLT_PUBLISH_FILE).path() + ':' + Environment.value("PATH"));
    for (QString const name : {"scripts", "CMakePresets.json"})
        QVERIFY(QFile::link(VARNHOLT_SOURCE_FOLDER "/" + name, Place(name)));
    QVERIFY(QDir(Folder.path()).mkdir("home"));
    Environment.insert("HOME", Place("home"));
    Environment.remove("XDG_CONFIG_HOME");
    QVERIFY(!Run("scripts/make-sample-game made small && mv made/game Game && "
                 "mv made/rules.json . && mkdir backup bucket")
                 .isNull());
    QVERIFY(WriteFile(Place("access.log"), "127.0.0.1 - - [1/Jan/2026:10:00:00 +0000] \"GET / "
                                           "HTTP/1.1\" 200 5 \"-\" \"x\"\n"));
    StartServers();
}

void DocumentCommandsTest::StartServers()
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

void DocumentCommandsTest::cleanupTestCase()
{
    Bucket.kill();
    Bucket.waitForFinished();
}

QString DocumentCommandsTest::Real(QString p_Command) const
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
          {"--group=$(id -u)", "--group=$(id -g)"},
          // A password costs seconds each time.
          {"keys new game.key", "keys new game.key --no-password"},
          {"keys new next.key", "keys new next.key --no-password"},
          {"build/debug/", VARNHOLT_BUILD_FOLDER "/"}})
        p_Command.replace(example, real);
    return WithoutBuilding(p_Command);
}

QString DocumentCommandsTest::Run(QString const& p_Command)
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

void DocumentCommandsTest::ACommandDoesWhatItSays_data()
{
    QTest::addColumn<QString>("command");
    QStringList all;
    for (QString const& file : Documents()) {
        QStringList const commands = CommandsOf(file);
        for (int i = 0; i < commands.size(); ++i)
            QTest::addRow("%s, %d: %s", qPrintable(file), i, qPrintable(commands[i]))
                << commands[i];
        all += commands;
    }
    QString const words = "build,diff,verify,rollback,list,prune,hosts,realmlist,keys new,sign ,"
                          "keys change,minisign,rsync,scripts/mirror ,mirror-bucket,curl,openssl,"
                          "install,stat,awk,sed,varnholt-host,varnholt-publish rules,scripts/demo,"
                          "ctest,.ci/run";
    for (QString const& word : words.split(','))
        QVERIFY2(!all.filter(word).isEmpty(), qPrintable(word));
}

void DocumentCommandsTest::ACommandDoesWhatItSays()
{
    QFETCH(QString, command);
    for (Elsewhere const& other : c_Elsewhere)
        if (command.startsWith(other.Begin)) {
            QVERIFY(
                ReadFile(VARNHOLT_SOURCE_FOLDER "/" + other.File).contains(other.Text.toUtf8()));
            return;
        }
    QVERIFY(!Run(Real(command)).isNull());
}

void DocumentCommandsTest::TogetherTheyLeaveAWholeTree()
{
    QCOMPARE(ReadFile(Place("www/pelmora_app/version.json")), QByteArray("{\"build\":\"18500\"}"));
    QVERIFY(!QFileInfo::exists(Place("www/pelmora_app/builds/18414")));
    for (char const* const copy : {"copy", "bucket/games", "backup/www"})
        QVERIFY(!Run("diff -r -x '.varnholt-publish.*' www " + QString(copy)).isNull());
    QVERIFY(ReadFile(Place("content.conf")).contains("\n    listen 443 ssl;\n"));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::DocumentCommandsTest)
#include "tst_DocumentCommands.moc"
