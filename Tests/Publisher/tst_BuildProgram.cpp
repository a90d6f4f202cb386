#include "Tests/Publisher/ProgramRun.hpp"
#include "Tests/Publisher/PublishedGame.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

namespace Varnholt::TestSupport {

class BuildProgramTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void PublishesAndTellsWhatItDid();
    void EveryOptionReachesTheTree();
    void TheNameIsTheBuildUnlessItIsGiven();
    void NamesAreUtf8WhateverTheLocale();
    void AWarningDoesNotFailIt();
    void AFailureIsOneSentenceThatNamesTheFile_data();
    void AFailureIsOneSentenceThatNamesTheFile();
    void AWrongCallIsAUsageError_data();
    void AWrongCallIsAUsageError();
    void HelpNamesEveryOption_data();
    void HelpNamesEveryOption();
    void ResultsThatCannotBeWrittenAreAnError_data();
    void ResultsThatCannotBeWrittenAreAnError();
    void TellsItsVersion();
};

void BuildProgramTest::PublishesAndTellsWhatItDid()
{
    PublishedGame game;
    game.Put("Music/a", "abc");
    game.AddRules("{\"match\": \"Music/**\", \"streamed\": true}");
    ProgramResult const result = RunProgram(game.BuildArguments());
    QCOMPARE(result.Status, 0);
    QCOMPARE(result.Errors, QByteArray());
    QList<QByteArray> const lines = result.Output.split('\n');
    QCOMPARE(lines.size(), 7);
    QCOMPARE(lines[0], "Published build build_1 in " + game.Options.Output.toUtf8());
    QCOMPARE(lines[1], QByteArray("files        2 (1 streamed)"));
    QCOMPARE(lines[2], QByteArray("bytes        11"));
    QCOMPARE(lines[3], QByteArray("from index   0 bytes in 0 files"));
    QCOMPARE(lines[4], QByteArray("new content  11 bytes in 2 files"));
    QVERIFY(lines[5].startsWith("rate         "));
    QCOMPARE(game.Read("pelmora_app/version.json"), QByteArray("{\"build\":\"build_1\"}"));
}

void BuildProgramTest::EveryOptionReachesTheTree()
{
    PublishedGame game;
    ProgramResult const result = RunProgram(game.BuildArguments(
        {"--name", "Build one", "--number", "17", "--locales",
         QString::fromUtf8("frFR=Français,enUS=English"), "--hosts", "a,b:81", "--realmlist",
         "logon.example", "--app-id", "other_app", "--platform", "win", "--dev"}));
    QCOMPARE(result.Errors, QByteArray());
    QCOMPARE(result.Status, 0);
    QCOMPARE(game.Read("cdns.info"), QByteArray("a b:81"));
    QCOMPARE(game.Read("other_app/realmlist.info"), QByteArray("SET realmlist \"logon.example\""));
    QCOMPARE(game.Read("other_app/version_dev.json"), QByteArray("{\"build\":\"build_1\"}"));
    QByteArray const manifest = game.Read("other_app/builds/build_1/info.json");
    for (char const* const text :
         {"\"build_str\":\"Build one\"", "\"build_number\":17", "\"base_win\":[",
          "{\"name\":\"English\",\"tag\":\"enUS\"},{\"name\":\"Français\",\"tag\":\"frFR\"}"})
        QVERIFY2(manifest.contains(text), text);
}

void BuildProgramTest::TheNameIsTheBuildUnlessItIsGiven()
{
    PublishedGame game;
    QCOMPARE(RunProgram(game.BuildArguments()).Status, 0);
    QByteArray const manifest = game.Read("pelmora_app/builds/build_1/info.json");
    QVERIFY(manifest.contains("\"build_number\":0,\"build_str\":\"build_1\""));
}

void BuildProgramTest::NamesAreUtf8WhateverTheLocale()
{
    PublishedGame game;
    game.Put(QString::fromUtf8("Été/日本"), "x");
    game.Options.Output = game.Temporary.filePath(QString::fromUtf8("öffentlich"));
    ProgramResult const result =
        RunProgram(game.BuildArguments(), {{"LC_ALL", "C"}, {"LANG", "C"}});
    QCOMPARE(result.Status, 0);
    QVERIFY(result.Output.contains("öffentlich"));
    QVERIFY(game.Read("pelmora_app/builds/build_1/info.json").contains("\"path\":\"Été/日本\""));
    QCOMPARE(game.Read(PublishedGame::ContentPath("x")), QByteArray("x"));
}

void BuildProgramTest::AWarningDoesNotFailIt()
{
    PublishedGame game;
    game.SetRules("{\"rules\":[{\"match\": \"Game\", \"flags\": [\"game-executable\"]}]}");
    ProgramResult const result = RunProgram(game.BuildArguments());
    QCOMPARE(result.Status, 0);
    QCOMPARE(result.Errors,
             QByteArray("varnholt-publish: warning: Game: the game's executable has no flag "
                        "executable, so clients cannot start it\n"));
}

void BuildProgramTest::AFailureIsOneSentenceThatNamesTheFile_data()
{
    QTest::addColumn<GameChange>("prepare");
    QTest::addColumn<QByteArray>("sentence");
    auto const add = [](char const* p_Name, char const* p_Sentence, GameChange const& p_Prepare) {
        QTest::newRow(p_Name) << p_Prepare << QByteArray(p_Sentence);
    };
    add("no source", "source: the source folder does not exist",
        [](PublishedGame& p_Game) { QDir(p_Game.Options.Source).removeRecursively(); });
    add("no rules", "rules.json: cannot be read: ", [](PublishedGame& p_Game) {
        QFile::remove(p_Game.Options.RulesFile);
    });
    add("broken rules", "rules.json: line 2, column 10: ", [](PublishedGame& p_Game) {
        p_Game.SetRules("{\n\"rules\": x}");
    });
    add("a name of the clients", "Data/a.part: clients use names", [](PublishedGame& p_Game) {
        p_Game.Put("Data/a.part", "x");
        p_Game.AddRules(R"({"match": "Data/a.part", "exclude": false})");
    });
    add("a link that leaves", "link: the symbolic link leads out of the source folder",
        [](PublishedGame& p_Game) { QFile::link("/", p_Game.SourcePath("link")); });
    add("names that differ in case", "DATA and Data differ only in letter case",
        [](PublishedGame& p_Game) {
            p_Game.Put("Data/a", "x");
            p_Game.Put("DATA/a", "x");
        });
    add("a name of a device", "Data/aux.txt: Windows keeps the name \"aux.txt\" for a device",
        [](PublishedGame& p_Game) {
            p_Game.Put("Data/aux.txt", "x");
            p_Game.Options.Platform = Publisher::ContentPlatform::Windows;
        });
    add("a folder for the version", "version.json: is not a file that can be replaced",
        [](PublishedGame& p_Game) {
            p_Game.Publish("build_0");
            QFile::remove(p_Game.OutputPath("pelmora_app/version.json"));
            QDir().mkpath(p_Game.OutputPath("pelmora_app/version.json"));
        });
    add("a folder of others", "output: the output folder is not empty and no published tree",
        [](PublishedGame& p_Game) { QDir().mkpath(p_Game.OutputPath("holiday pictures")); });
}

void BuildProgramTest::AFailureIsOneSentenceThatNamesTheFile()
{
    QFETCH(GameChange, prepare);
    QFETCH(QByteArray, sentence);
    PublishedGame game;
    prepare(game);
    bool const isForWindows = game.Options.Platform == Publisher::ContentPlatform::Windows;
    ProgramResult const result =
        RunProgram(game.BuildArguments({"--platform", isForWindows ? "win" : "mac"}));
    QCOMPARE(result.Status, 1);
    QCOMPARE(result.Output, QByteArray());
    QVERIFY2(result.Errors.startsWith("varnholt-publish: "), result.Errors.constData());
    QVERIFY2(result.Errors.contains(sentence), result.Errors.constData());
    QCOMPARE(result.Errors.count('\n'), 1);
    QVERIFY(result.Errors.endsWith('\n'));
}

void BuildProgramTest::AWrongCallIsAUsageError_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("text");
    auto const add = [](QStringList const& p_Arguments, char const* p_Text) {
        QTest::newRow(qPrintable("called with " + p_Arguments.join(' ')))
            << p_Arguments << QByteArray(p_Text);
    };
    QStringList const good{"build", "--source", "s", "--output", "o", "--build", "b"};
    add({}, "A command is required; \"varnholt-publish --help\" explains it");
    add({"bild"}, "unknown command \"bild\"; did you mean \"build\"?");
    add({"fly"}, "unknown command \"fly\"; \"varnholt-publish --help\" explains it");
    add({"--bogus"}, "unknown option \"--bogus\"; \"varnholt-publish --help\" explains it");
    add({"build"}, "--source is required; \"varnholt-publish build --help\" explains it");
    add(good.mid(0, 5), "--build is required");
    add({"list", "--otuput", "o"}, "unknown option \"--otuput\"; did you mean \"--output\"?");
    add({"list", "--otuput=o"}, "unknown option \"--otuput\"; did you mean \"--output\"?");
    add(good + QStringList("--bogus"), "unknown option \"--bogus\"; \"varnholt-publish build");
    add(good + QStringList("extra"), "unknown argument \"extra\"");
    add(good + QStringList({"--number", "x"}), "--number");
    add(good + QStringList({"--number", "-1"}), "--number");
    add(good + QStringList({"--number", "2147483648"}), "--number");
    add(good + QStringList({"--platform", "linux"}), "--platform");
    add(good + QStringList({"--jobs", "0"}), "--jobs");
    add(good + QStringList({"--hosts", "http://a"}), "--hosts \"http://a\": give the host name");
    add(good + QStringList({"--hosts", "a,b c"}), "--hosts \"b c\": a host name holds no blank");
    add(good + QStringList({"--hosts", "a,"}), "--hosts \"\": a host name is empty");
    add(good + QStringList({"--hosts", "a", "--local"}), "--hosts excludes --local");
    add(good + QStringList({"--hosts", ""}), "--hosts \"\": a host name is empty");
    add(good + QStringList({"--realmlist", "a\nb"}), "--realmlist \"a");
    add(good + QStringList({"--locales", "frFR"}), "--locales \"frFR\": write TAG=NAME");
    add(good + QStringList({"--locales", "=F"}), "--locales \"=F\": write TAG=NAME");
    add(good + QStringList({"--locales", "a=A,a=B"}), "--locales: the tag a is given twice");
    add(good + QStringList({"--app-id", "../x"}), "--app-id \"../x\": use letters");
    add({"build", "--source", "s", "--output", "o", "--build", "a/b"}, "--build \"a/b\": use");
    add({"build", "--source", "s", "--output", "", "--build", "b"}, "--output \"\": the folder");
    add({"rules"}, "--source");
    add({"rules", "--source", "s", "--platform", "x"}, "--platform");
    add({"rules", "--source", "s", "--explain", ""}, "--explain \"\": the path is empty");
    add({"list"}, "--output");
    add({"rollback", "--output", "o"}, "--build");
    add({"prune", "--output", "o"}, "--keep or --build is required");
    add({"prune", "--output", "o", "--keep", "0"}, "--keep");
    add({"prune", "--output", "o", "--keep", "1", "--build", "b"}, "--keep");
}

void BuildProgramTest::AWrongCallIsAUsageError()
{
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, text);
    ProgramResult const result = RunProgram(arguments);
    QCOMPARE(result.Status, 2);
    QCOMPARE(result.Output, QByteArray());
    QVERIFY2(result.Errors.startsWith("varnholt-publish: "), result.Errors.constData());
    QVERIFY2(result.Errors.contains(text), result.Errors.constData());
    QCOMPARE(result.Errors.count('\n'), 1);
}

void BuildProgramTest::HelpNamesEveryOption_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QStringList>("words");
    QTest::newRow("program") << QStringList("--help")
                             << QStringList({"build", "serve", "rules", "list", "rollback", "prune",
                                             "hosts", "realmlist", "COMMAND"});
    QTest::newRow("rules") << QStringList({"rules", "--help"})
                           << QStringList({"Example", "--source", "--rules", "--explain",
                                           "--locales", "--platform", "--json"});
    QTest::newRow("list") << QStringList({"list", "--help"})
                          << QStringList({"Example", "--output", "--app-id", "--json"});
    QTest::newRow("rollback") << QStringList({"rollback", "--help"})
                              << QStringList({"Example", "--output", "--build", "--dev", "--app-id",
                                              "--json"});
    QTest::newRow("prune") << QStringList({"prune", "--help"})
                           << QStringList({"Example", "--output", "--keep", "--build", "--dry-run",
                                           "--app-id", "--json"});
    QTest::newRow("what the build may skip")
        << QStringList({"build", "--help"})
        << QStringList({"--rehash", "--no-index", "--jobs", "--dry-run", "--if-changed", "--json"});
    QTest::newRow("build") << QStringList({"build", "--help"})
                           << QStringList({"--source",
                                           "--output",
                                           "--build",
                                           "--name",
                                           "--number",
                                           "--rules",
                                           "--locales",
                                           "--hosts",
                                           "--local",
                                           "--realmlist",
                                           "--app-id",
                                           "--platform",
                                           "--dev",
                                           "pelmora_app",
                                           "read-only",
                                           "executable",
                                           "game-executable",
                                           "first-build-only",
                                           "default-server-only",
                                           "keep-if-present",
                                           QString::fromUtf8("Français")});
    QTest::newRow("serve") << QStringList({"serve", "--help"})
                           << QStringList({"--root", "--address", "--port", "--quiet", "8080"});
}

void BuildProgramTest::HelpNamesEveryOption()
{
    QFETCH(QStringList, arguments);
    QFETCH(QStringList, words);
    ProgramResult const result = RunProgram(arguments);
    QCOMPARE(result.Status, 0);
    QCOMPARE(result.Errors, QByteArray());
    for (QString const& word : words)
        QVERIFY2(result.Output.contains(word.toUtf8()), qPrintable(word));
}

void BuildProgramTest::ResultsThatCannotBeWrittenAreAnError_data()
{
    QTest::addColumn<QString>("command");
    QTest::newRow("help") << "build --help";
    QTest::newRow("version") << "--version";
    QTest::newRow("text") << "rules --source SOURCE --rules RULES";
    QTest::newRow("objects") << "rules --source SOURCE --rules RULES --json";
    QTest::newRow("build")
        << "build --source SOURCE --rules RULES --output OUTPUT --build 1 --local";
}

void BuildProgramTest::ResultsThatCannotBeWrittenAreAnError()
{
    QFETCH(QString, command);
    PublishedGame const game;
    command.replace("SOURCE", game.Options.Source)
        .replace("RULES", game.Options.RulesFile)
        .replace("OUTPUT", game.Options.Output);
    QProcess shell;
    shell.start("sh", {"-c", QString(VARNHOLT_PUBLISH_FILE) + ' ' + command + " >/dev/full"});
    QVERIFY(shell.waitForFinished());
    QCOMPARE(shell.exitCode(), 1);
    QCOMPARE(shell.readAllStandardError(),
             QByteArray("varnholt-publish: the results cannot be written (No space left on "
                        "device)\n"));
}

void BuildProgramTest::TellsItsVersion()
{
    ProgramResult const result = RunProgram({"--version"});
    QCOMPARE(result.Status, 0);
    QCOMPARE(result.Output, QByteArray(VARNHOLT_PROJECT_VERSION "\n"));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::BuildProgramTest)
#include "tst_BuildProgram.moc"
