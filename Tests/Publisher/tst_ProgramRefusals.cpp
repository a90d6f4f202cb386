#include "Tests/Publisher/BuildSeries.hpp"
#include "Tests/Publisher/ProgramRun.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QTcpServer>
#include <QtTest>

namespace Varnholt::TestSupport {

/// Calls that the program refuses, and what it says then.
class ProgramRefusalsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void AWrongCallIsAUsageError_data();
    void AWrongCallIsAUsageError() { IsRefused(2); }
    void AFailureIsOneSentence_data();
    void AFailureIsOneSentence() { IsRefused(1); }
    void ADamagedManifestIsNamed_data();
    void ADamagedManifestIsNamed();

private:
    /// Runs the command of a row.
    void IsRefused(int p_Status) const;
    /// The text with what there is in place of the words in capitals.
    QString Real(QString p_Text) const;

    BuildSeries const Game{2};
    QTcpServer Server;
};

namespace {

void AddCommand(char const* p_Command, char const* p_Sentence)
{
    AddRow(qPrintable(QString("varnholt-publish %1").arg(p_Command)), QString(p_Command),
           QString(p_Sentence));
}

void AddColumns()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("sentence"); // a part of it
}

void AddWrongBuilds()
{
    AddCommand("build", "--source is required; \"varnholt-publish build --help\" explains it");
    AddCommand("build --source s --output o", "--build is required");
    for (auto const& [options, sentence] :
         {std::pair("--bogus", "unknown option \"--bogus\"; \"varnholt-publish build"),
          std::pair("extra", "unknown argument \"extra\""), std::pair("--number x", "--number"),
          std::pair("--number -1", "--number"), std::pair("--number 2147483648", "--number"),
          std::pair("--platform linux", "--platform"), std::pair("--jobs 0", "--jobs"),
          std::pair("--hosts http://a", "--hosts \"http://a\": give the host name"),
          std::pair("--hosts \"a,b c\"", "--hosts \"b c\": a host name holds no blank"),
          std::pair("--hosts a,", "--hosts \"\": a host name is empty"),
          std::pair("--hosts a --local", "--hosts excludes --local"),
          std::pair("--hosts EMPTY", "--hosts \"\": a host name is empty"),
          std::pair("--realmlist \"a\nb\"", "--realmlist \"a"),
          std::pair("--locales frFR", "--locales \"frFR\": write TAG=NAME"),
          std::pair("--locales =F", "--locales \"=F\": write TAG=NAME"),
          std::pair("--locales a=A,a=B", "--locales: the tag a is given twice"),
          std::pair("--app-id ../x", "--app-id \"../x\": use letters")})
        AddCommand(qPrintable(QString("build --source s --output o --build b %1").arg(options)),
                   sentence);
    AddCommand("build --source s --output o --build a/b", "--build \"a/b\": use");
    AddCommand("build --source EMPTY --output o --build b",
               "--source \"\": the folder's name is empty");
    AddCommand("build --source s --output EMPTY --build b", "--output \"\": the folder");
}

} // namespace

void ProgramRefusalsTest::initTestCase()
{
    QVERIFY(Server.listen(QHostAddress::LocalHost));
}

QString ProgramRefusalsTest::Real(QString p_Text) const
{
    return p_Text.replace("SOURCE", Game.Options.Source)
        .replace("OUTPUT", Game.Options.Output)
        .replace("RULES", Game.Options.RulesFile)
        .replace("NONE", Game.Temporary.filePath("none"))
        .replace("PORT", QString::number(Server.serverPort()))
        .remove("EMPTY");
}

void ProgramRefusalsTest::IsRefused(int p_Status) const
{
    QFETCH(QString, command);
    QFETCH(QString, sentence);
    Tree const before = Game.Published();
    Tree const source = TreeOf(Game.Options.Source);
    QStringList arguments = QProcess::splitCommand(command);
    for (QString& argument : arguments)
        argument = Real(argument);
    ProgramResult const result = RunProgram(arguments);
    QCOMPARE(result.Status, p_Status);
    QCOMPARE(result.Output, QByteArray());
    QVERIFY2(result.Errors.startsWith("varnholt-publish: "), result.Errors.constData());
    QVERIFY2(result.Errors.contains(Real(sentence).toUtf8()), result.Errors.constData());
    QCOMPARE(result.Errors.count('\n'), 1);
    QVERIFY(result.Errors.endsWith('\n'));
    QCOMPARE(Game.Published(), before);
    QCOMPARE(TreeOf(Game.Options.Source), source);
}

void ProgramRefusalsTest::AWrongCallIsAUsageError_data()
{
    AddColumns();
    AddCommand("", "A command is required; \"varnholt-publish --help\" explains it");
    AddCommand("bild", "unknown command \"bild\"; did you mean \"build\"?");
    AddCommand("fly", "unknown command \"fly\"; \"varnholt-publish --help\" explains it");
    AddCommand("--bogus", "unknown option \"--bogus\"; \"varnholt-publish --help\" explains it");
    AddCommand("list --otuput o", "unknown option \"--otuput\"; did you mean \"--output\"?");
    AddCommand("list --otuput=o", "unknown option \"--otuput\"; did you mean \"--output\"?");
    AddWrongBuilds();
    AddCommand("rules", "--source");
    AddCommand("rules --source s --platform x", "--platform");
    AddCommand("rules --source s --explain EMPTY", "--explain \"\": the path is empty");
    AddCommand("list", "--output");
    AddCommand("rollback --output o", "--build");
    AddCommand("prune --output o", "--keep or --build is required");
    AddCommand("prune --output o --keep 0", "--keep");
    AddCommand("prune --output o --keep 1 --build b", "--keep");
    AddCommand("diff --output OUTPUT", "builds");
    AddCommand("diff --output OUTPUT a b c", "At Most 2");
    AddCommand("diff build_1", "--output");
    AddCommand("diff --output OUTPUT build_1 --players 0", "--players");
    AddCommand("diff --output OUTPUT build_1 --locale deDE",
               "--locale \"deDE\": build build_1 does not offer this language");
    AddCommand("serve", "--root");
    AddCommand("serve --root NONE --port 65536", "--port");
    AddCommand("serve --root NONE --port x", "--port");
    AddCommand("verify", "give --output or --url");
    AddCommand("verify --output a --url http://a/", "excludes");
    AddCommand("verify --output a --all", "--all requires --url");
    AddCommand("verify --url http://a/ --all --sample 2", "excludes");
    AddCommand("verify --output o --trust-key x",
               "\"x\" is neither a public key nor a file of one");
    for (char const* const url : {"content.example.net", "ftp://a/", "http:///", "http://a/?b"})
        AddCommand(qPrintable(QString("verify --url %1").arg(url)), "\" is no address of a server");
    AddCommand("hosts --output OUTPUT", "hosts");
    AddCommand("hosts --output OUTPUT \"a,b c\"", "hosts \"b c\": a host name holds no blank");
    AddCommand("hosts --output o a --expires 9", "--sign-key");
    AddCommand("realmlist --output OUTPUT a\"\"\"b", "is not a host name");
    AddCommand("keys new", "file");
    AddCommand("keys show f --output o", "--output has no meaning");
    AddCommand("keys change --output o --old f", "--new");
}

void ProgramRefusalsTest::AFailureIsOneSentence_data()
{
    AddColumns();
    AddCommand("build --source NONE --output OUTPUT --build b",
               "NONE: the source folder does not exist");
    AddCommand("rules --source SOURCE --rules NONE", "NONE: cannot be read: ");
    for (char const* const path : {"none", "shared/b", "../rules.json", "/etc/passwd"})
        AddCommand(qPrintable(QString("rules --source SOURCE --explain %1").arg(path)),
                   qPrintable(QString("%1: the source folder holds no such file").arg(path)));
    AddCommand("rules --source SOURCE/.. --explain source",
               "source: the source folder holds no such file");
    AddCommand("list --output OUTPUT --app-id none", "OUTPUT: no build of none is published there");
    AddCommand("rollback --output OUTPUT --build none",
               "OUTPUT/pelmora_app: there is no build none");
    AddCommand("prune --output OUTPUT --build build_2",
               "info.json: the build build_2 is on offer and cannot be removed");
    AddCommand("diff --output SOURCE build_1",
               "SOURCE: no build of pelmora_app is published there");
    AddCommand("diff --output OUTPUT build_1 --app-id other", "no build of other is published");
    AddCommand("diff --output OUTPUT build_1 build_9",
               "builds/build_9/info.json: there is no build build_9");
    AddCommand("realmlist --output OUTPUT a --app-id other", "no build of other is published");
    for (char const* const command : {"hosts a", "rollback --build build_1", "prune --keep 1"})
        AddCommand(qPrintable(QString("%1 --output SOURCE").arg(command)),
                   "SOURCE: the output folder is no published tree");
    AddCommand("serve --root NONE", "NONE: the folder to serve does not");
    AddCommand("serve --root RULES", "RULES: the folder to serve does not");
    AddCommand("serve --root OUTPUT --port 0 --address 192.0.2.1",
               "cannot listen on 192.0.2.1 port 0: ");
    AddCommand("serve --root OUTPUT --port PORT", "cannot listen on 127.0.0.1 port PORT: ");
}

void ProgramRefusalsTest::ADamagedManifestIsNamed_data()
{
    constexpr char c_File[] = R"({"path": "a", "location": "b",
                                  "md5": "0123456789ABCDEF0123456789ABCDEF")";

    QTest::addColumn<QString>("manifest");
    QTest::addColumn<QString>("sentence");
    QString const noManifest = "/builds/b/info.json: is no manifest: ";
    AddRow("text", "hello", noManifest + "illegal value");
    AddRow("empty", "{}", noManifest + "it has no list of base files");
    AddRow("no streamed files", R"({"content": {"base_mac": []}})",
           noManifest + "it has no list of streamed files");
    AddRow("half a file", R"({"content": {"base_mac": [{"path": "a"}]}})",
           noManifest + "a file lacks its path");
    AddRow("unknown language",
           QString(R"({"content": {"base_mac": [%1, "locale": "deDE"}]}})").arg(c_File),
           noManifest + "a is of the language deDE");
    AddRow("lost content",
           QString(R"({"content": {"base_mac": [%1}]}, "streamed_content": []})").arg(c_File),
           "/b: the content of a is missing");
}

void ProgramRefusalsTest::ADamagedManifestIsNamed()
{
    QFETCH(QString, manifest);
    QFETCH(QString, sentence);
    QString const application = Game.Temporary.filePath("damaged/pelmora_app");
    QVERIFY(WriteFile(application + "/builds/b/info.json", manifest.toUtf8()));
    ProgramResult const result =
        RunProgram({"diff", "--output", Game.Temporary.filePath("damaged"), "b"});
    QCOMPARE(result.Status, 1);
    QVERIFY2(result.Errors.contains((application + sentence).toUtf8()), result.Errors.constData());
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::ProgramRefusalsTest)
#include "tst_ProgramRefusals.moc"
