#include "Tests/Publisher/ProgramRun.hpp"
#include "Tests/Publisher/PublishedGame.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

namespace Varnholt::TestSupport {

class RulesProgramTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void ListsEveryFileWithItsProperties();
    void ListsObjects();
    void ExplainsEachPropertyOfAPath();
    void ExplainsInObjects();
    void WarnsOfRulesThatMatchNothing();
    void ABuiltInExcludeIsExplainedBesideAFile();
    void WithoutAFileTheBuiltInRulesAreExplained();
    void FlagsAreThoseOfThePlatform();

private:
    QStringList Arguments(QStringList const& p_More = {}) const
    {
        return QStringList({"rules", "--source", Game->Options.Source, "--rules",
                            Game->Options.RulesFile}) +
               p_More;
    }

    std::unique_ptr<PublishedGame> Game;
};

void RulesProgramTest::init()
{
    Game = std::make_unique<PublishedGame>();
    Game->Put("Data/a", "a");
    Game->Put("Data/a.tmp", "b");
    Game->SetRules("{\"locales\": {\"frFR\": \"F\"},\n"
                   "\"rules\": [\n"
                   "{\"match\": \"Game\", \"flags\": [\"executable\", \"game-executable\"]},\n"
                   "{\"match\": \"Data/**\", \"locale\": \"frFR\", \"streamed\": true},\n"
                   "{\"match\": \"**/*.tmp\", \"exclude\": true}\n"
                   "]}");
}

void RulesProgramTest::ListsEveryFileWithItsProperties()
{
    ProgramResult const result = RunProgram(Arguments());
    QCOMPARE(result.Errors, QByteArray());
    QCOMPARE(result.Status, 0);
    QCOMPARE(result.Output, QByteArray("Data/a  locale=frFR  streamed=true\n"
                                       "Data/a.tmp  locale=frFR  streamed=true  exclude=true\n"
                                       "Game  flags=executable, game-executable\n"));
    QVERIFY(!QFileInfo::exists(Game->Options.Output));
}

void RulesProgramTest::ListsObjects()
{
    ProgramResult const result = RunProgram(Arguments({"--json"}));
    QCOMPARE(result.Status, 0);
    QCOMPARE(result.Output,
             QByteArray("{\"exclude\":false,\"flags\":[],\"locale\":\"frFR\",\"path\":\"Data/a\","
                        "\"streamed\":true,\"type\":\"file\"}\n"
                        "{\"exclude\":true,\"flags\":[],\"locale\":\"frFR\",\"path\":"
                        "\"Data/a.tmp\",\"streamed\":true,\"type\":\"file\"}\n"
                        "{\"exclude\":false,\"flags\":[\"executable\",\"game-executable\"],"
                        "\"locale\":\"\",\"path\":\"Game\",\"streamed\":false,"
                        "\"type\":\"file\"}\n"));
}

void RulesProgramTest::ExplainsEachPropertyOfAPath()
{
    QByteArray const file = Game->Options.RulesFile.toUtf8();
    for (char const* const path : {"Data/a.tmp", "./Data//a.tmp"}) {
        ProgramResult const result = RunProgram(Arguments({"--explain", path}));
        QCOMPARE(result.Errors, QByteArray());
        QCOMPARE(result.Status, 0);
        QCOMPARE(result.Output, "flags     none  (no rule)\n"
                                "locale    frFR  (" +
                                    file +
                                    ", line 4: \"Data/**\")\n"
                                    "streamed  true  (" +
                                    file +
                                    ", line 4: \"Data/**\")\n"
                                    "exclude   true  (" +
                                    file + ", line 5: \"**/*.tmp\")\n");
    }
}

void RulesProgramTest::ExplainsInObjects()
{
    ProgramResult const result = RunProgram(Arguments({"--explain", "Game", "--json"}));
    QCOMPARE(result.Status, 0);
    QList<QByteArray> const lines = result.Output.split('\n');
    QCOMPARE(lines.size(), 5);
    QCOMPARE(lines[0], "{\"file\":\"" + Game->Options.RulesFile.toUtf8() +
                           "\",\"line\":3,\"match\":\"Game\",\"path\":\"Game\",\"property\":"
                           "\"flags\",\"type\":\"property\",\"value\":[\"executable\","
                           "\"game-executable\"]}");
    QCOMPARE(lines[1], QByteArray("{\"path\":\"Game\",\"property\":\"locale\",\"type\":"
                                  "\"property\",\"value\":\"\"}"));
}

void RulesProgramTest::WarnsOfRulesThatMatchNothing()
{
    Game->SetRules("{\"locales\": {\"frFR\": \"F\"},\n\"rules\": [\n"
                   "{\"match\": \"Game\", \"flags\": [\"executable\", \"game-executable\"]},\n"
                   "{\"match\": \"Data/*.tmp\", \"exclude\": true},\n"
                   "{\"match\": \"Data/frFr/**\", \"locale\": \"frFR\"}\n]}");
    QByteArray const warning = "varnholt-publish: warning: " + Game->Options.RulesFile.toUtf8() +
                               ", line 5: \"Data/frFr/**\" matches no file\n";
    ProgramResult const listed = RunProgram(Arguments());
    QCOMPARE(listed.Status, 0);
    QCOMPARE(listed.Errors, warning);
    Game->Publish();
    QCOMPARE(Game->Observer.Warnings.size(), 1);
    QVERIFY(warning.contains(Game->Observer.Warnings.first().toUtf8()));
}

void RulesProgramTest::ABuiltInExcludeIsExplainedBesideAFile()
{
    Game->Put("WTF/Config.wtf", "x");
    QVERIFY(RunProgram(Arguments({"--explain", "WTF/Config.wtf"}))
                .Output.endsWith("\nexclude   true  (built-in rule: \"WTF/**\")\n"));
    QByteArray const object = RunProgram(Arguments({"--explain", "WTF/Config.wtf", "--json"}))
                                  .Output.split('\n')
                                  .value(3);
    QVERIFY2(object.contains("\"WTF/**\"") && !object.contains("\"line\""), object.constData());
}

void RulesProgramTest::WithoutAFileTheBuiltInRulesAreExplained()
{
    Game->Put("World of Warcraft.app/Contents/MacOS/World of Warcraft", "x");
    Game->Put("Data/frFR/a", "x");
    Game->Put("WTF/Config.wtf", "x");
    QStringList const arguments{"rules", "--source", Game->Options.Source, "--locales", "frFR=F"};
    ProgramResult result = RunProgram(arguments);
    QCOMPARE(result.Status, 0);
    QCOMPARE(result.Output, QByteArray("Data/a\nData/a.tmp\nData/frFR/a  locale=frFR\nGame\n"
                                       "WTF/Config.wtf  exclude=true\n"
                                       "World of Warcraft.app/Contents/MacOS/World of Warcraft  "
                                       "flags=executable, game-executable\n"));
    result = RunProgram(arguments + QStringList{"--explain", "Data/frFR/a"});
    QCOMPARE(result.Output, QByteArray("flags     none  (no rule)\n"
                                       "locale    frFR  (built-in rule: \"Data/frFR/**\")\n"
                                       "streamed  false  (no rule)\nexclude   false  (no rule)\n"));
    result = RunProgram(arguments + QStringList{"--explain", "Data/frFR/a", "--json"});
    QCOMPARE(result.Output.split('\n').value(1),
             QByteArray("{\"match\":\"Data/frFR/**\",\"path\":\"Data/frFR/a\",\"property\":"
                        "\"locale\",\"type\":\"property\",\"value\":\"frFR\"}"));
}

void RulesProgramTest::FlagsAreThoseOfThePlatform()
{
    ProgramResult const result = RunProgram(Arguments({"--platform", "win", "--explain", "Game"}));
    QVERIFY2(result.Output.startsWith("flags     executable, game-executable  ("),
             result.Output.constData());
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::RulesProgramTest)
#include "tst_RulesProgram.moc"
