#include "Publisher/Rules/FlagNames.hpp"
#include "Publisher/Rules/RuleSetReader.hpp"
#include "Tests/Publisher/FailureOf.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/JsonSchema.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QJsonArray>
#include <QJsonDocument>
#include <QTemporaryDir>
#include <QtTest>

namespace Varnholt::Publisher {

using TestSupport::AddRow;
using TestSupport::CaughtFailure;
using TestSupport::FailureOf;

namespace {

TestSupport::JsonSchema Schema()
{
    return TestSupport::JsonSchema::Documented("rules");
}

} // namespace

class RuleSetErrorsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void BrokenJsonIsReportedWithLineAndColumn_data();
    void BrokenJsonIsReportedWithLineAndColumn();
    void WhatIsNotUnderstoodIsAnError_data();
    void WhatIsNotUnderstoodIsAnError();
    void TheSchemaRefusesItToo_data() { WhatIsNotUnderstoodIsAnError_data(); }
    void TheSchemaRefusesItToo();
    void TheSchemaAllowsWhatIsUnderstood_data();
    void TheSchemaAllowsWhatIsUnderstood();
    void TheSchemaNamesEveryFlag();
    void TheDocumentIsOfTheSchema();

private:
    CaughtFailure FailureOfReading(QByteArray const& p_Text) const
    {
        if (!TestSupport::WriteFile(File, p_Text))
            qFatal("the rules file cannot be written");
        return FailureOf([this] { ReadRuleSet(File, ContentPlatform::Mac, {}); });
    }

    QTemporaryDir Folder;
    QString const File = Folder.filePath("rules.json");
};

void RuleSetErrorsTest::BrokenJsonIsReportedWithLineAndColumn_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("place");
    AddRow("a value that is none", QByteArray("{\n  \"rules\": [\n    {\"match\": x}\n]}"),
           "line 3, column 15");
    AddRow("a value that is none, after an accent", QByteArray("{\"é\": x}"), "line 1, column 7");
    AddRow("a value that is none, after a character of two places", QByteArray("{\n\"😀\": x}"),
           "line 2, column 6");
    // The JSON reader stops behind the bracket that it did not expect.
    AddRow("a colon that is missing", QByteArray("{\n\"rules\" []}"), "line 2, column 10");
    AddRow("more after the end", QByteArray("{}\n\nx"), "line 3, column 1");
}

void RuleSetErrorsTest::BrokenJsonIsReportedWithLineAndColumn()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, place);
    CaughtFailure const failure = FailureOfReading(text);
    QVERIFY2(failure.Sentence.startsWith(File + ": " + place + ": "), qPrintable(failure.Sentence));
    QCOMPARE(failure.ExitStatus, Failure::c_Other);
}

void RuleSetErrorsTest::WhatIsNotUnderstoodIsAnError_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("sentence");
    auto const add = [](char const* p_Text, char const* p_Sentence) {
        AddRow(p_Text, QByteArray(p_Text), QString(p_Sentence));
    };
    add("[]", "the top level must be a JSON object");
    add(R"({"rule": []})", "unknown key \"rule\"; the keys are rules, locales");
    add(R"({"rules": {}})", "\"rules\": must be an array of objects");
    add(R"({"rules": null})", "\"rules\": must be an array of objects");
    add(R"({"rules": [{"match": "a"}, 5]})", "line 1, rules[1]: must be an object");
    add(R"({"rules": [{"streamed": true}]})", "line 1, rules[0]: has no \"match\"");
    add(R"({"rules": [{"match": 1}]})", "line 1, rules[0]: \"match\": must hold text");
    add(R"({"rules": [{"match": ""}]})", "line 1, rules[0]: the pattern \"\" is empty");
    add(R"({"rules": [{"match": "/a"}]})",
        "line 1, rules[0]: the pattern \"/a\" starts with \"/\", but "
        "paths are relative to the source folder");
    add(R"({"rules": [{"match": "a", "flag": []}]})",
        "line 1, rules[0]: unknown key \"flag\"; the keys are match, flags, locale, streamed, "
        "exclude");
    add(R"({"rules": [{"match": "a", "flags": "executable"}]})",
        "line 1, rules[0]: \"flags\": must be an array of flag names");
    add(R"({"rules": [{"match": "a", "flags": [2]}]})",
        "line 1, rules[0]: \"flags\": must hold text");
    add(R"({"rules": [{"match": "a", "flags": ["Executable"]}]})",
        "line 1, rules[0]: \"flags\": unknown flag name \"Executable\"; the names are read-only, "
        "executable, game-executable, first-build-only, default-server-only, keep-if-present");
    add(R"({"rules": [{"match": "a", "locale": null}]})",
        "line 1, rules[0]: \"locale\": must hold text");
    add(R"({"rules": [{"match": "a", "locale": "frFR"}]})",
        "line 1, rules[0]: the locale \"frFR\" is not declared: add it to \"locales\" or give it "
        "with "
        "--locales");
    add(R"({"locales": {"frFR": "F"}, "rules": [{"match": "a", "locale": "frfr"}]})",
        "line 1, rules[0]: the locale \"frfr\" is not declared: add it to \"locales\" or give it "
        "with "
        "--locales");
    add(R"({"rules": [{"match": "a", "streamed": "yes"}]})",
        "line 1, rules[0]: \"streamed\": must be true or false");
    add(R"({"rules": [{"match": "a", "exclude": 1}]})",
        "line 1, rules[0]: \"exclude\": must be true or false");
    add("{\"rules\": [\n{\"match\": \"a\"},\n{\"match\": \"b\",\n\"flag\": []}]}",
        "line 3, rules[1]: unknown key \"flag\"; the keys are match, flags, locale, streamed, "
        "exclude");
    add(R"({"locales": ["frFR"]})", "\"locales\": must be an object of names by tag");
    add(R"({"locales": {"": "F"}})", "\"locales\": holds an empty tag");
    add(R"({"locales": {"frFR": 1}})", "\"locales\": \"frFR\": must hold text");
}

void RuleSetErrorsTest::WhatIsNotUnderstoodIsAnError()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, sentence);
    CaughtFailure const failure = FailureOfReading(text);
    QCOMPARE(failure.Sentence, File + ": " + sentence);
}

void RuleSetErrorsTest::TheSchemaRefusesItToo()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, sentence);
    QJsonDocument const document = QJsonDocument::fromJson(text);
    QVERIFY(!document.isNull());
    QJsonValue const value =
        document.isArray() ? QJsonValue(document.array()) : QJsonValue(document.object());
    // A schema does not compare one value with another.
    bool const isBeyondIt = sentence.contains("is not declared");
    QCOMPARE(Schema().Fault(value).isEmpty(), isBeyondIt);
}

void RuleSetErrorsTest::TheSchemaAllowsWhatIsUnderstood_data()
{
    QTest::addColumn<QByteArray>("text");
    for (char const* const text :
         {"{}", R"({"locales": {}})", R"({"rules": []})", R"({"rules": [{"match": "a"}]})",
          R"({"rules": [{"match": "a/*/**/?b", "flags": [], "locale": "", "streamed": false}]})",
          R"({"locales": {"frFR": "F"}, "rules": [{"match": "a", "locale": "frFR",
              "flags": ["executable", "read-only"], "exclude": true}]})"})
        AddRow(text, QByteArray(text));
}

void RuleSetErrorsTest::TheSchemaAllowsWhatIsUnderstood()
{
    QFETCH(QByteArray, text);
    QCOMPARE(FailureOfReading(text).Sentence, QString());
    QCOMPARE(Schema().Fault(QJsonDocument::fromJson(text).object()), QString());
}

void RuleSetErrorsTest::TheSchemaNamesEveryFlag()
{
    QJsonValue const rule = Schema().Words()["properties"]["rules"]["items"]["properties"];
    QCOMPARE(rule["flags"]["items"]["enum"].toVariant().toStringList(), FlagNames::All());
}

void RuleSetErrorsTest::TheDocumentIsOfTheSchema()
{
    QString const text = QString::fromUtf8(TestSupport::ReadFile(VARNHOLT_DOCUMENTS "/rules.md"));
    QString const example = text.section("```json", 1).section("```", 0, 0);
    QCOMPARE(Schema().Fault(QJsonDocument::fromJson(example.toUtf8()).object()), QString());
    QVERIFY(example.contains("\"rules\""));
    for (QString const& flag : FlagNames::All())
        QVERIFY2(text.contains("| `" + flag + "` |"), qPrintable(flag));
}

} // namespace Varnholt::Publisher

VARNHOLT_TEST(Varnholt::Publisher::RuleSetErrorsTest)
#include "tst_RuleSetErrors.moc"
