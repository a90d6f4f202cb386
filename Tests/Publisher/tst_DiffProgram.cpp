#include "Tests/Publisher/ProgramRun.hpp"
#include "Tests/Publisher/PublishedGame.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/SampleContent.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QtTest>

namespace Varnholt::TestSupport {

namespace {

QByteArray const c_Locales = "{\"enUS\": \"English\", \"frFR\": \"French\"}";
QByteArray const c_Rules = "{\"match\": \"enUS/**\", \"locale\": \"enUS\"}, "
                           "{\"match\": \"frFR/**\", \"locale\": \"frFR\"}, {\"match\": "
                           "\"Music/**\", \"streamed\": true}, "
                           "{\"match\": \"kept*\", \"flags\": [\"keep-if-present\"]}, "
                           "{\"match\": \"first*\", \"flags\": [\"first-build-only\"]}";

} // namespace

class DiffProgramTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void ListsWhatDiffersAndCountsWhatIsFetched();
    void CountsForOneLanguage();
    void OneBuildIsANewInstallation();
    void CountsForManyPlayers();
    void EqualBuildsFetchNothing();
    void JsonHoldsEveryFileAndASummary();
    void AFileThatChangesItsLanguageIsNewToTheOther();
    void TellsOfAnotherTreatment();
    void ReadsBuildsForWindows();

private:
    ProgramResult Diff(QStringList const& p_Arguments) const
    {
        return RunProgram(QStringList({"diff", "--output", Game.Options.Output}) + p_Arguments);
    }
    /// The lines of a run that must succeed.
    QList<QByteArray> Lines(QStringList const& p_Arguments) const
    {
        ProgramResult const result = Diff(p_Arguments);
        return result.Status == 0 && result.Errors.isEmpty() ? result.Output.split('\n')
                                                             : QList<QByteArray>();
    }

    PublishedGame Game;
};

void DiffProgramTest::initTestCase()
{
    Game.AddRules(c_Rules, c_Locales);
    Game.Put("same", "1");
    Game.Put("changed", "12");
    Game.Put("removed", "123");
    Game.Put("kept changed", "1234");
    Game.Put("first changed", "12345");
    Game.Put("enUS/changed", "en");
    Game.Put("Music/changed", "old music");
    Game.Put("Music/same", "same music");
    Game.Publish("build_1");
    Game.Put("changed", QByteArray(20, 'x'));
    QVERIFY(QFile::remove(Game.SourcePath("removed")));
    Game.Put("kept changed", QByteArray(300, 'x'));
    Game.Put("kept new", QByteArray(4000, 'x'));
    Game.Put("first changed", QByteArray(50000, 'x'));
    Game.Put("enUS/changed", QByteArray(600000, 'x'));
    Game.Put("frFR/new", QByteArray(700000, 'x'));
    Game.Put("Music/changed", QByteArray(8000000, 'x'));
    Game.Publish("build_2");
}

void DiffProgramTest::ListsWhatDiffersAndCountsWhatIsFetched()
{
    QCOMPARE(Diff({"build_1", "build_2"}).Output, QByteArray("~ Music/changed 8000000 bytes\n"
                                                             "~ changed 20 bytes\n"
                                                             "~ enUS/changed 600000 bytes\n"
                                                             "~ first changed 50000 bytes\n"
                                                             "+ frFR/new 700000 bytes\n"
                                                             "~ kept changed 300 bytes\n"
                                                             "+ kept new 4000 bytes\n"
                                                             "- removed 3 bytes\n"
                                                             "new       2 files, 704000 bytes\n"
                                                             "changed   5 files, 8650320 bytes\n"
                                                             "altered   0 files, 0 bytes\n"
                                                             "removed   1 files, 3 bytes\n"
                                                             "same      3 files, 19 bytes\n"
                                                             "To fetch by one client:\n"
                                                             "base      5 files, 1354020 bytes\n"
                                                             "streamed  1 files, 8000000 bytes\n"
                                                             "requests  16\n"));
}

void DiffProgramTest::CountsForOneLanguage()
{
    auto const english = Lines({"--locale", "enUS", "build_1", "build_2"});
    QVERIFY(english.contains("~ enUS/changed 600000 bytes"));
    QVERIFY(!english.contains("+ frFR/new 700000 bytes"));
    QVERIFY(english.contains("base      4 files, 654020 bytes"));
    auto const french = Lines({"--locale", "frFR", "build_1", "build_2"});
    QVERIFY(!french.contains("~ enUS/changed 600000 bytes"));
    QVERIFY(french.contains("+ frFR/new 700000 bytes"));
    QVERIFY(french.contains("base      4 files, 754020 bytes"));
    QVERIFY(french.contains("streamed  1 files, 8000000 bytes"));
}

void DiffProgramTest::OneBuildIsANewInstallation()
{
    auto const lines = Lines({"build_1", "--locale", "frFR"});
    QVERIFY(lines.contains("+ kept changed 4 bytes"));
    QVERIFY(lines.contains("new       8 files, 42 bytes"));
    QVERIFY(lines.contains("changed   0 files, 0 bytes"));
    QVERIFY(lines.contains("base      6 files, 23 bytes"));
    QVERIFY(lines.contains("streamed  2 files, 19 bytes"));
    QVERIFY(lines.contains("requests  20"));
}

void DiffProgramTest::CountsForManyPlayers()
{
    auto const lines = Lines({"build_2", "--players", "10000000"});
    QVERIFY(lines.contains("To fetch by 10000000 clients:"));
    QVERIFY(lines.contains("bytes     93543390000000"));
    QVERIFY(lines.contains("requests  240000000"));
}

void DiffProgramTest::EqualBuildsFetchNothing()
{
    auto const lines = Lines({"build_2", "build_2"});
    QVERIFY(lines.contains("same      10 files, 9354339 bytes"));
    QVERIFY(lines.contains("base      0 files, 0 bytes"));
    QVERIFY(lines.contains("streamed  0 files, 0 bytes"));
    // A client still asks what is current.
    QVERIFY(lines.contains("requests  4"));
}

void DiffProgramTest::JsonHoldsEveryFileAndASummary()
{
    auto const lines = Lines({"build_1", "build_2", "--json", "--players", "3"});
    auto const object = [&lines](int p_Line) {
        return QJsonDocument::fromJson(lines.value(p_Line)).object();
    };
    QJsonObject const kept{{"type", "file"},
                           {"change", "changed"},
                           {"path", "kept changed"},
                           {"bytes", 300},
                           {"md5", SampleContent::Md5(QByteArray(300, 'x'))},
                           {"streamed", false},
                           {"fetched", false}};
    QCOMPARE(object(7), kept);
    QCOMPARE(object(6)["locale"].toString(), QString("frFR"));
    QCOMPARE(object(2)["change"].toString(), QString("same"));
    QCOMPARE(object(2)["streamed"].toBool(), true);
    QJsonObject const summary{{"type", "summary"},
                              {"new", QJsonObject{{"files", 2}, {"bytes", 704000}}},
                              {"changed", QJsonObject{{"files", 5}, {"bytes", 8650320}}},
                              {"altered", QJsonObject{{"files", 0}, {"bytes", 0}}},
                              {"removed", QJsonObject{{"files", 1}, {"bytes", 3}}},
                              {"same", QJsonObject{{"files", 3}, {"bytes", 19}}},
                              {"base", QJsonObject{{"files", 5}, {"bytes", 1354020}}},
                              {"streamed", QJsonObject{{"files", 1}, {"bytes", 8000000}}},
                              {"requests", 16},
                              {"players", 3},
                              {"playersBytes", "28062060"},
                              {"playersRequests", "48"}};
    QCOMPARE(object(11), summary);
    QCOMPARE(lines.size(), 13); // the last one has its end
}

void DiffProgramTest::AFileThatChangesItsLanguageIsNewToTheOther()
{
    PublishedGame game;
    game.Put("speech", "hello");
    game.AddRules("{\"match\": \"speech\", \"locale\": \"enUS\"}", c_Locales);
    game.Publish("a");
    game.AddRules("", c_Locales);
    game.Publish("b");
    auto const run = [&game](QString const& p_Locale) {
        return RunProgram({"diff", "--output", game.Options.Output, "a", "b", "--locale", p_Locale})
            .Output;
    };
    QVERIFY(run("frFR").startsWith("+ speech 5 bytes\n"));
    QVERIFY(run("enUS").startsWith("= speech 5 bytes, locale none (was enUS)\nnew       0 files"));
}

void DiffProgramTest::TellsOfAnotherTreatment()
{
    PublishedGame game;
    game.Put("a", "same");
    game.Put("b", "old");
    game.Put("c", "same too");
    game.AddRules(R"({"match": "b", "flags": ["read-only"]})", c_Locales);
    game.Publish("1");
    game.Put("b", "newer");
    game.AddRules(R"({"match": "a", "streamed": true, "locale": "frFR"},
                     {"match": "?", "flags": ["read-only", "keep-if-present"]})",
                  c_Locales);
    game.Publish("2");
    QStringList const arguments{"diff", "--output", game.Options.Output, "1", "2"};
    QByteArray const output = RunProgram(arguments).Output;
    QVERIFY2(output.startsWith("= a 4 bytes, flags read-only and keep-if-present (was none), "
                               "locale frFR (was none), streamed true (was false)\n"
                               "~ b 5 bytes, flags read-only and keep-if-present (was read-only)\n"
                               "= c 8 bytes, flags read-only and keep-if-present (was none)\n"
                               "new       0 files, 0 bytes\nchanged   1 files, 5 bytes\n"
                               "altered   2 files, 12 bytes\n"),
             output.constData());
    QJsonObject const object =
        QJsonDocument::fromJson(RunProgram(arguments + QStringList("--json")).Output.split('\n')[1])
            .object();
    QCOMPARE(object["change"].toString(), QString("altered"));
    QCOMPARE(object["fetched"].toBool(true), false);
    QCOMPARE(object["treated"].toObject(),
             (QJsonObject{{"flags", QJsonArray({"read-only", "keep-if-present"})},
                          {"locale", "frFR"},
                          {"streamed", true}}));
    QCOMPARE(object["treatedBefore"].toObject(),
             (QJsonObject{{"flags", QJsonArray()}, {"locale", ""}, {"streamed", false}}));
}

void DiffProgramTest::ReadsBuildsForWindows()
{
    PublishedGame game;
    game.Options.Platform = Publisher::ContentPlatform::Windows;
    game.Publish("a");
    ProgramResult const result = RunProgram({"diff", "--output", game.Options.Output, "a"});
    QVERIFY2(result.Output.startsWith("+ Game 8 bytes\n"), result.Output.constData());
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::DiffProgramTest)
#include "tst_DiffProgram.moc"
