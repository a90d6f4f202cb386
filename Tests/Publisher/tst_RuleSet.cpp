#include "Publisher/Rules/RuleSetReader.hpp"
#include "Tests/Publisher/FailureOf.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QTemporaryDir>
#include <QtTest>

namespace Varnholt::Publisher {

using TestSupport::FailureOf;

class RuleSetTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void ReadsEveryProperty();
    void WithoutRulesAFileIsPlain();
    void ALaterRuleOverridesPropertyByProperty();
    void AnEmptyValueTakesAPropertyBack();
    void FlagNamesAreTheManifestsBits_data();
    void FlagNamesAreTheManifestsBits();
    void LanguagesOfTheCommandLineWin();
    void ARuleMayUseALanguageOfTheCommandLine();

private:
    RuleSet Read(QByteArray const& p_Text, ContentPlatform p_Platform = ContentPlatform::Mac,
                 std::map<QString, QString> const& p_Locales = {}) const
    {
        QString const file = Folder.filePath("rules.json");
        if (!TestSupport::WriteFile(file, p_Text))
            qFatal("the rules file cannot be written");
        return ReadRuleSet(file, p_Platform, p_Locales);
    }

    QTemporaryDir Folder;
};

void RuleSetTest::ReadsEveryProperty()
{
    RuleSet const rules = Read(R"({"locales": {"frFR": "Français", "enUS": "English"},
        "rules": [{"match": "Data/**", "flags": ["read-only", "keep-if-present"],
                   "locale": "frFR", "streamed": true, "exclude": true}]})");
    QCOMPARE(rules.Locales, (std::map<QString, QString>{{"frFR", QString::fromUtf8("Français")},
                                                        {"enUS", "English"}}));
    FileTreatment const treatment = rules.TreatmentOf("Data/a");
    QCOMPARE(treatment.Flags, 0x81);
    QCOMPARE(treatment.Locale, QString("frFR"));
    QVERIFY(treatment.Streamed);
    QVERIFY(treatment.Excluded);
}

void RuleSetTest::WithoutRulesAFileIsPlain()
{
    for (FileTreatment const& treatment :
         {Read("{}").TreatmentOf("a"),
          Read(R"({"rules":[{"match":"b","streamed":true}]})").TreatmentOf("a")}) {
        QCOMPARE(treatment.Flags, 0);
        QVERIFY(treatment.Locale.isEmpty());
        QVERIFY(!treatment.Streamed);
        QVERIFY(!treatment.Excluded);
    }
}

void RuleSetTest::ALaterRuleOverridesPropertyByProperty()
{
    RuleSet const rules = Read(R"({"rules": [
        {"match": "**", "flags": ["read-only"], "streamed": true, "exclude": true},
        {"match": "Data/**", "flags": ["executable"], "exclude": false}]})");
    FileTreatment const data = rules.TreatmentOf("Data/a");
    QCOMPARE(data.Flags, 0x02);
    QVERIFY(data.Streamed);
    QVERIFY(!data.Excluded);
    QCOMPARE(rules.TreatmentOf("a").Flags, 0x01);
    QVERIFY(rules.TreatmentOf("a").Excluded);
}

void RuleSetTest::AnEmptyValueTakesAPropertyBack()
{
    RuleSet const rules = Read(R"({"locales": {"frFR": "Français"}, "rules": [
        {"match": "**", "flags": ["read-only"], "locale": "frFR"},
        {"match": "a", "flags": [], "locale": ""}]})");
    QCOMPARE(rules.TreatmentOf("a").Flags, 0);
    QCOMPARE(rules.TreatmentOf("a").Locale, QString(""));
    QCOMPARE(rules.TreatmentOf("b").Locale, QString("frFR"));
}

void RuleSetTest::FlagNamesAreTheManifestsBits_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<int>("mac");
    QTest::addColumn<int>("windows");
    QTest::newRow("read-only") << QByteArray("read-only") << 0x01 << 0x01;
    QTest::newRow("executable") << QByteArray("executable") << 0x02 << 0x02;
    QTest::newRow("game-executable") << QByteArray("game-executable") << 0x04 << 0x08;
    QTest::newRow("first-build-only") << QByteArray("first-build-only") << 0x20 << 0x20;
    QTest::newRow("default-server-only") << QByteArray("default-server-only") << 0x40 << 0x40;
    QTest::newRow("keep-if-present") << QByteArray("keep-if-present") << 0x80 << 0x80;
}

void RuleSetTest::FlagNamesAreTheManifestsBits()
{
    QFETCH(QByteArray, name);
    QFETCH(int, mac);
    QFETCH(int, windows);
    QByteArray const text = R"({"rules":[{"match":"a","flags":[")" + name + R"("]}]})";
    QCOMPARE(Read(text, ContentPlatform::Mac).TreatmentOf("a").Flags, mac);
    QCOMPARE(Read(text, ContentPlatform::Windows).TreatmentOf("a").Flags, windows);
}

void RuleSetTest::LanguagesOfTheCommandLineWin()
{
    RuleSet const rules = Read(R"({"locales": {"frFR": "File", "deDE": "Deutsch"}})",
                               ContentPlatform::Mac, {{"frFR", "Line"}, {"enUS", "English"}});
    QCOMPARE(rules.Locales, (std::map<QString, QString>{
                                {"frFR", "Line"}, {"enUS", "English"}, {"deDE", "Deutsch"}}));
}

void RuleSetTest::ARuleMayUseALanguageOfTheCommandLine()
{
    QByteArray const text = R"({"rules":[{"match":"a","locale":"frFR"}]})";
    QCOMPARE(Read(text, ContentPlatform::Mac, {{"frFR", "F"}}).TreatmentOf("a").Locale,
             QString("frFR"));
    QVERIFY(FailureOf([&] { Read(text); }).Sentence.contains("\"frFR\" is not declared"));
}

} // namespace Varnholt::Publisher

VARNHOLT_TEST(Varnholt::Publisher::RuleSetTest)
#include "tst_RuleSet.moc"
