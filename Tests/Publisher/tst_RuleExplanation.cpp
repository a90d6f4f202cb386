#include "Publisher/Rules/RuleLines.hpp"
#include "Publisher/Rules/RuleSetReader.hpp"
#include "Publisher/Source/SourceListing.hpp"
#include "Tests/Publisher/PublishedGame.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

namespace Varnholt::Publisher {

using Lines = std::vector<int>;

} // namespace Varnholt::Publisher

Q_DECLARE_METATYPE(Varnholt::Publisher::Lines)

namespace Varnholt::Publisher {

class RuleExplanationTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void FindsTheLineOfEachRule_data();
    void FindsTheLineOfEachRule();
    void EachPropertyHasTheLastRuleThatSetsIt();
    void OfTwoKeysAlikeTheLaterOneCounts();
    void ListsExcludedFilesToo();
};

void RuleExplanationTest::FindsTheLineOfEachRule_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<Lines>("lines");
    auto const add = [](char const* p_Name, char const* p_Text, Lines const& p_Lines) {
        QTest::newRow(p_Name) << QByteArray(p_Text) << p_Lines;
    };
    add("none", "{}", {});
    add("empty", "{\"rules\":[\n]}", {});
    add("one line", R"({"rules":[{"match":"a"},{"match":"b"}]})", {1, 1});
    add("lines", "{\n\"rules\": [\n{\"match\":\n\"a\"},\n\n\n{\n\"match\":\"b\"}]\n}", {3, 7});
    add("line ends of two characters", "{\r\n\"rules\":\r\n[{\"match\":\"a\"}]}", {3});
    add("arrays and objects inside",
        "{\"rules\":[\n{\"flags\":[\"a\",\n{\"x\":[{},\n{}]}]},\n{\"flags\":[]}]}", {2, 5});
    add("brackets in texts", "{\"rules\":[\n{\"match\":\"[{\\\"}],\\\\\"},\n{\"match\":\"]\"}]}",
        {2, 3});
    add("other keys around", "{\"locales\":{\"rules\":[\n{}]},\n\"rules\":[{}],\n\"x\":[\n{}]}",
        {3});
    add("an escaped key", "{\"\\u0072ules\":\n[{}]}", {2});
    add("a key as a value", "{\"x\":\"rules\",\"y\":[{}],\n\"rules\":[{}]}", {2});
    add("elements of other kinds", "{\"rules\":[1,\n\"a\",\ntrue,\n[],\n{}]}", {1, 2, 3, 4, 5});
    add("two keys alike", "{\"rules\":[{},{}],\n\"rules\":[{}]}", {2});
}

void RuleExplanationTest::FindsTheLineOfEachRule()
{
    QFETCH(QByteArray, text);
    QFETCH(Lines, lines);
    QCOMPARE(RuleLines(text), lines);
}

void RuleExplanationTest::EachPropertyHasTheLastRuleThatSetsIt()
{
    TestSupport::PublishedGame const game;
    game.SetRules("{\"locales\": {\"frFR\": \"F\"},\n"
                  "\"rules\": [\n"
                  "{\"match\": \"**\", \"flags\": [\"read-only\"], \"streamed\": true},\n"
                  "{\"match\": \"Data/**\", \"locale\": \"frFR\", \"flags\": []},\n"
                  "{\"match\": \"Other/**\", \"streamed\": false, \"exclude\": true}\n"
                  "]}");
    RuleSet const rules = SourceListing::ReadRules(game.Options);
    RuleExplanation const explanation = rules.Explain("Data/a");
    QCOMPARE(explanation.Flags, &rules.Rules[1]);
    QCOMPARE(explanation.Locale, &rules.Rules[1]);
    QCOMPARE(explanation.Streamed, &rules.Rules[0]);
    QVERIFY(!explanation.Excluded);
    QCOMPARE(explanation.Flags->Line, 4);
    QCOMPARE(explanation.Flags->Pattern, QString("Data/**"));
    QCOMPARE(explanation.Streamed->Line, 3);
}

void RuleExplanationTest::OfTwoKeysAlikeTheLaterOneCounts()
{
    TestSupport::PublishedGame const game;
    game.SetRules("{\"rules\":[],\n\n\"rules\":[{\"match\":\"b\"},"
                  "{\"match\":\"c\"}]}");
    RuleSet const rules = SourceListing::ReadRules(game.Options);
    QCOMPARE(rules.Rules.size(), std::size_t(2));
    QCOMPARE(rules.Rules[0].Pattern, QString("b"));
    QCOMPARE(rules.Rules[0].Line, 3);
}

void RuleExplanationTest::ListsExcludedFilesToo()
{
    TestSupport::PublishedGame const game;
    game.Put("Data/b", "b");
    game.Put("Data/a.part", "of a name that would be refused");
    game.AddRules("{\"match\": \"**/*.part\", \"exclude\": true}");
    TestSupport::TestObserver observer;
    QStringList paths;
    for (BuildFile const& file :
         SourceListing::AllFiles(game.Options, SourceListing::ReadRules(game.Options), observer)) {
        paths += file.Source.Path;
        QCOMPARE(file.Treatment.Excluded, file.Source.Path.endsWith(".part"));
    }
    QCOMPARE(paths, QStringList({"Data/a.part", "Data/b", "Game"}));
}

} // namespace Varnholt::Publisher

VARNHOLT_TEST(Varnholt::Publisher::RuleExplanationTest)
#include "tst_RuleExplanation.moc"
