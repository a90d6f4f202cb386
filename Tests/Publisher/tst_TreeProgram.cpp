#include "Tests/Publisher/BuildSeries.hpp"
#include "Tests/Publisher/ProgramRun.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QJsonDocument>
#include <QJsonObject>
#include <QtTest>

#include <csignal>

namespace Varnholt::TestSupport {

namespace {

/// All but progress.
QList<QJsonObject> ObjectsOf(QByteArray const& p_Output)
{
    QList<QJsonObject> objects;
    for (QByteArray const& line : p_Output.split('\n')) {
        if (!line.isEmpty() && !line.contains("\"type\":\"progress\""))
            objects += QJsonDocument::fromJson(line).object();
    }
    return objects;
}

} // namespace

class TreeProgramTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void ListsBuildsWithTheirChannels();
    void ListsObjects();
    void ListsAnIncompleteBuild();
    void RollsBack();
    void Prunes();
    void PrunesInObjects();
    void AKilledPruningLeavesWholeBuilds();
    void AMirrorBecomesTheOrigin();
    void ACopyThatIsNotWholeIsNotAdopted();
    void ADryRunWritesNothing();
    void ABuildIsAnObject();
    void AnUnchangedSourceIsNoFailure();
    void TheIndexIsUsedAndIgnored();

private:
    static ProgramResult Run(PublishedGame const& p_Game, QString const& p_Command,
                             QStringList const& p_More = {})
    {
        return RunProgram(QStringList({p_Command, "--output", p_Game.Options.Output}) + p_More);
    }
};

void TreeProgramTest::ListsBuildsWithTheirChannels()
{
    BuildSeries const game(3);
    QCOMPARE(Run(game, "rollback", {"--build", "build_2", "--dev"}).Status, 0);
    ProgramResult const result = Run(game, "list");
    QCOMPARE(result.Status, 0);
    QCOMPARE(result.Errors, QByteArray());
    QCOMPARE(result.Output, QByteArray("build_1  3 files (0 streamed), 26 bytes\n"
                                       "build_2  3 files (0 streamed), 26 bytes  on dev\n"
                                       "build_3  3 files (0 streamed), 26 bytes  on live\n"));
    QCOMPARE(Run(game, "rollback", {"--build", "build_2"}).Status, 0);
    QVERIFY(Run(game, "list")
                .Output.contains("\nbuild_2  3 files (0 streamed), 26 bytes  on live, "
                                 "dev\n"));
}

void TreeProgramTest::ListsObjects()
{
    BuildSeries const game(2);
    ProgramResult const result = Run(game, "list", {"--json"});
    QCOMPARE(result.Status, 0);
    QCOMPARE(result.Output,
             QByteArray("{\"build\":\"build_1\",\"bytes\":26,\"channels\":[],\"files\":3,"
                        "\"missingFiles\":0,\"name\":\"Build 1\",\"number\":1,"
                        "\"streamedFiles\":0,\"type\":\"build\"}\n"
                        "{\"build\":\"build_2\",\"bytes\":26,\"channels\":[\"live\"],\"files\":3,"
                        "\"missingFiles\":0,\"name\":\"Build 1\",\"number\":1,"
                        "\"streamedFiles\":0,\"type\":\"build\"}\n"));
}

void TreeProgramTest::ListsAnIncompleteBuild()
{
    BuildSeries const game(2);
    QVERIFY(QFile::remove(game.OutputPath(BuildSeries::OwnPath(1))));
    QVERIFY(
        Run(game, "list")
            .Output.startsWith("build_1  3 files (0 streamed), 14 bytes, incomplete: 1 missing\n"));
}

void TreeProgramTest::RollsBack()
{
    BuildSeries const game(3);
    ProgramResult const result = Run(game, "rollback", {"--build", "build_1"});
    QCOMPARE(result.Status, 0);
    QCOMPARE(result.Errors, QByteArray());
    QCOMPARE(result.Output,
             QByteArray("The channel live offers build build_1 (before: build_3)\n"));
    QCOMPARE(game.Read("pelmora_app/version.json"), QByteArray("{\"build\":\"build_1\"}"));
    QCOMPARE(Run(game, "rollback", {"--build", "build_2", "--dev", "--quick", "--json"}).Output,
             QByteArray("{\"before\":\"\",\"build\":\"build_2\",\"channel\":\"dev\","
                        "\"type\":\"rollback\"}\n"));
    QCOMPARE(game.Read("pelmora_app/version_dev.json"), QByteArray("{\"build\":\"build_2\"}"));
}

void TreeProgramTest::Prunes()
{
    BuildSeries const game(4);
    QByteArray const planned = Run(game, "prune", {"--keep", "2", "--dry-run"}).Output;
    QCOMPARE(planned,
             QByteArray("Would remove build build_1\nWould remove build build_2\nWould "
                        "remove 2 builds and 2 content files (24 bytes), 2 builds stay\n"));
    QVERIFY(game.IsWhole(1));
    ProgramResult const result = Run(game, "prune", {"--keep", "2"});
    QCOMPARE(result.Status, 0);
    QCOMPARE(result.Errors, QByteArray());
    QCOMPARE(result.Output, QByteArray(planned).replace("Would remove", "Removed"));
    QCOMPARE(game.Catalog().Builds(), QStringList({"build_3", "build_4"}));
}

void TreeProgramTest::PrunesInObjects()
{
    BuildSeries const game(3);
    ProgramResult const result =
        Run(game, "prune", {"--build", "build_2", "--build", "build_1", "--json"});
    QCOMPARE(result.Status, 0);
    QCOMPARE(result.Output, QByteArray("{\"build\":\"build_2\",\"type\":\"removed\"}\n"
                                       "{\"build\":\"build_1\",\"type\":\"removed\"}\n"
                                       "{\"contentBytes\":24,\"contentFiles\":2,\"dryRun\":false,"
                                       "\"keptBuilds\":1,\"removedBuilds\":2,"
                                       "\"type\":\"prune\"}\n"));
}

void TreeProgramTest::AKilledPruningLeavesWholeBuilds()
{
    PublishedGame game;
    constexpr int files = 2000;
    for (int i = 0; i < files; ++i)
        game.Put(QString("old/%1").arg(i), QByteArray::number(i));
    game.Publish();
    QVERIFY(QDir(game.SourcePath("old")).removeRecursively());
    game.Put("own", "new");
    game.Publish("build_2");
    QString const manifest = game.OutputPath("pelmora_app/builds/build_1/info.json");
    {
        ProgramRun run({"prune", "--output", game.Options.Output, "--keep", "1"});
        // Whatever it has done by then, the rest must hold.
        QTRY_VERIFY_WITH_TIMEOUT(!QFileInfo::exists(manifest), 60000);
        run.Signal(SIGKILL);
        run.Finish();
    }
    Publisher::BuildCatalog const catalog(game.Options.Output, "pelmora_app");
    QCOMPARE(catalog.Builds(), QStringList("build_2"));
    QCOMPARE(catalog.Read("build_2").Missing, QStringList());
    QCOMPARE(Run(game, "prune", {"--keep", "1"}).Status, 0);
    QCOMPARE(catalog.Read("build_2").Missing, QStringList());
    for (auto const& [path, content] : game.Published()) {
        bool const isUsed = content == "new" || content == "the game";
        QVERIFY2(!path.startsWith("pelmora_app/files/") || path.endsWith('/') || isUsed,
                 qPrintable(path));
    }
}

void TreeProgramTest::AMirrorBecomesTheOrigin()
{
    BuildSeries game(3);
    Tree const before = game.Published();
    game.Options.Output = game.Temporary.filePath("mirror");
    for (auto const& [path, content] : before)
        QVERIFY(path.endsWith('/') || WriteFile(game.OutputPath(path), content));
    for (int const build : {1, 2, 3})
        game.SetAge(build, 3 - build);
    QCOMPARE(RunProgram(game.BuildArguments({}, "build_4")).Status, 1);
    ProgramResult const result = Run(game, "adopt");
    QCOMPARE(result.Errors, QByteArray());
    QCOMPARE(result.Status, 0);
    QCOMPARE(result.Output, game.Options.Output.toUtf8() + " is a published tree now\n");
    QCOMPARE(game.Published(), before);
    game.SetAge(1, 0);
    QCOMPARE(RunProgram(game.BuildArguments({}, "build_4")).Status, 0);
    QCOMPARE(Run(game, "prune", {"--keep", "2"}).Status, 0);
    QCOMPARE(game.Catalog().Builds(), QStringList({"build_3", "build_4"}));
    QVERIFY(Run(game, "adopt").Errors.contains(": is a published tree already\n"));
}

void TreeProgramTest::ACopyThatIsNotWholeIsNotAdopted()
{
    BuildSeries const game(2);
    QVERIFY(QFile::remove(game.OutputPath(".varnholt-publish.tree")));
    QVERIFY(WriteFile(game.OutputPath(BuildSeries::OwnPath(2)), "damaged"));
    ProgramResult const result = Run(game, "adopt");
    QCOMPARE(result.Status, 1);
    QVERIFY2(result.Errors.contains(": the copy is not whole: 1 defects, the first is: "),
             result.Errors.constData());
    QVERIFY(!QFile::exists(game.OutputPath(".varnholt-publish.tree")));
}

void TreeProgramTest::ADryRunWritesNothing()
{
    PublishedGame const game;
    ProgramResult const result = RunProgram(game.BuildArguments({"--dry-run"}, "build_1"));
    QCOMPARE(result.Status, 0);
    QCOMPARE(result.Errors, QByteArray());
    QVERIFY(!QFileInfo::exists(game.Options.Output));
    QList<QByteArray> const lines = result.Output.split('\n');
    QCOMPARE(lines[0],
             "would write  " + PublishedGame::ContentPath("the game").toUtf8() + " (8 bytes)");
    QVERIFY(lines[1].startsWith("would write  pelmora_app/builds/build_1/info.json ("));
    QCOMPARE(lines[2], QByteArray("would write  cdns.info (14 bytes)"));
    QCOMPARE(lines[3], QByteArray("would write  pelmora_app/version.json (19 bytes)"));
    QCOMPARE(lines[4], "Would publish build build_1 in " + game.Options.Output.toUtf8());

    auto const objects =
        ObjectsOf(RunProgram(game.BuildArguments({"--dry-run", "--json"}, "build_1")).Output);
    QCOMPARE(objects.size(), 5);
    QCOMPARE(objects[2]["type"].toString(), QString("write"));
    QCOMPARE(objects[2]["file"].toString(), QString("cdns.info"));
    QCOMPARE(objects[2]["bytes"].toInt(), 14);
    QCOMPARE(objects[4]["published"].toBool(true), false);
    QVERIFY(!QFileInfo::exists(game.Options.Output));
}

void TreeProgramTest::ABuildIsAnObject()
{
    PublishedGame const game;
    game.Put("music", "abc");
    game.AddRules("{\"match\": \"music\", \"streamed\": true}");
    ProgramResult const result = RunProgram(game.BuildArguments({"--json"}, "build_1"));
    QCOMPARE(result.Status, 0);
    auto const objects = ObjectsOf(result.Output);
    QCOMPARE(objects.size(), 1);
    QJsonObject object = objects[0];
    for (char const* const key : {"milliseconds", "bytesPerSecond"}) {
        QVERIFY(object.take(key).toDouble(-1) >= 0);
    }
    QCOMPARE(object, (QJsonObject{{"type", "build"},
                                  {"build", "build_1"},
                                  {"output", game.Options.Output},
                                  {"published", true},
                                  {"unchanged", false},
                                  {"files", 2},
                                  {"streamedFiles", 1},
                                  {"bytes", 11},
                                  {"indexedFiles", 0},
                                  {"indexedBytes", 0},
                                  {"newContentFiles", 2},
                                  {"newContentBytes", 11}}));
}

void TreeProgramTest::AnUnchangedSourceIsNoFailure()
{
    PublishedGame const game;
    QCOMPARE(RunProgram(game.BuildArguments({"--if-changed"}, "build_1")).Status, 0);
    Tree const before = game.Published();
    ProgramResult const result = RunProgram(game.BuildArguments({"--if-changed"}, "build_2"));
    QCOMPARE(result.Status, 0);
    QVERIFY2(result.Output.startsWith("Nothing to publish: build build_1 in "),
             result.Output.constData());
    auto const objects =
        ObjectsOf(RunProgram(game.BuildArguments({"--if-changed", "--json"}, "build_2")).Output);
    QCOMPARE(objects.size(), 1);
    QCOMPARE(objects[0]["build"].toString(), QString("build_1"));
    QCOMPARE(objects[0]["unchanged"].toBool(), true);
    QCOMPARE(objects[0]["published"].toBool(true), false);
    QCOMPARE(game.Published(), before);
}

void TreeProgramTest::TheIndexIsUsedAndIgnored()
{
    PublishedGame const game;
    game.Age();
    QCOMPARE(RunProgram(game.BuildArguments({}, "build_1")).Status, 0);
    QByteArray const used("\nfrom index   8 bytes in 1 files\n");
    QByteArray const ignored("\nfrom index   0 bytes in 0 files\n");
    QVERIFY(RunProgram(game.BuildArguments({"--rehash"}, "build_2")).Output.contains(ignored));
    QVERIFY(RunProgram(game.BuildArguments({}, "build_3")).Output.contains(used));
    QString const index = game.OutputPath(game.IndexName());
    QVERIFY(WriteFile(index, "x"));
    QVERIFY(RunProgram(game.BuildArguments({"--no-index"}, "build_4")).Output.contains(ignored));
    QCOMPARE(ReadFile(index), QByteArray("x"));
    ProgramResult const warned = RunProgram(game.BuildArguments({}, "build_5"));
    QCOMPARE(warned.Status, 0);
    QVERIFY(warned.Output.contains(ignored));
    QCOMPARE(warned.Errors, "varnholt-publish: warning: " + index.toUtf8() +
                                ": the index is damaged, so every file is read again\n");
    QVERIFY(RunProgram(game.BuildArguments({}, "build_6")).Output.contains(used));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::TreeProgramTest)
#include "tst_TreeProgram.moc"
