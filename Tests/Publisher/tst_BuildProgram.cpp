#include "Publisher/Rules/FlagNames.hpp"
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
    void HelpHasAnExample_data();
    void HelpHasAnExample();
    void HelpNamesEveryFlag();
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

void BuildProgramTest::HelpHasAnExample_data()
{
    QTest::addColumn<QString>("command");
    for (char const* const command : {"adopt", "build", "diff", "hosts", "keys", "list", "prune",
                                      "realmlist", "rollback", "rules", "serve", "sign", "verify"})
        AddRow(command, command);
}

void BuildProgramTest::HelpHasAnExample()
{
    QFETCH(QString, command);
    ProgramResult const result = RunProgram({command, "--help"});
    QCOMPARE(result.Status, 0);
    QCOMPARE(result.Errors, QByteArray());
    QVERIFY2(result.Output.contains("\n  varnholt-publish " + command.toUtf8() + ' '),
             result.Output.constData());
}

void BuildProgramTest::HelpNamesEveryFlag()
{
    QByteArray const help = RunProgram({"build", "--help"}).Output;
    for (QString const& flag : Publisher::FlagNames::All())
        QVERIFY2(help.contains(' ' + flag.toUtf8()), qPrintable(flag));
    QVERIFY(help.contains("Français"));
}

void BuildProgramTest::ResultsThatCannotBeWrittenAreAnError_data()
{
    QTest::addColumn<QString>("command");
    AddRow("help", "build --help");
    AddRow("version", "--version");
    AddRow("text", "rules --source SOURCE --rules RULES");
    AddRow("objects", "rules --source SOURCE --rules RULES --json");
    AddRow("build", "build --source SOURCE --rules RULES --output OUTPUT --build 1 --local");
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
