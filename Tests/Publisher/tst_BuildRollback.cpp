#include "Publisher/Publication/BuildPruning.hpp"
#include "Publisher/Publication/BuildRollback.hpp"
#include "Tests/Publisher/BuildSeries.hpp"
#include "Tests/Publisher/FailureOf.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/SmallVolume.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QProcess>
#include <QtTest>

namespace Varnholt::TestSupport {

using Publisher::CatalogedBuild;
using Publisher::RollBack;
using Publisher::RollbackOptions;

class BuildRollbackTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void OffersAnOlderBuild();
    void ChannelsAreIndependent();
    void ADamagedVersionFileIsReplaced();
    void WhatIsNotAWholeBuildIsRefused_data();
    void WhatIsNotAWholeBuildIsRefused();
    void ADamagedBuildIsRefused_data();
    void ADamagedBuildIsRefused();
    void AFullDiskHindersNeitherRollbackNorPruning();
    void TheCatalogIsInTheOrderOfPublication();
    void TheCatalogKnowsSizesAndChannels();
};

void BuildRollbackTest::OffersAnOlderBuild()
{
    BuildSeries const game(3);
    Tree before = game.Published();
    QCOMPARE(RollBack({game.Options.Output, "pelmora_app", "build_1", false}), QString("build_3"));
    before["pelmora_app/version.json"] = "{\"build\":\"build_1\"}";
    QCOMPARE(game.Published(), before);
    QCOMPARE(RollBack({game.Options.Output, "pelmora_app", "build_3", false}), QString("build_1"));
}

void BuildRollbackTest::ChannelsAreIndependent()
{
    BuildSeries const game(2);
    QCOMPARE(RollBack({game.Options.Output, "pelmora_app", "build_1", true}), QString());
    QCOMPARE(game.Read("pelmora_app/version_dev.json"), QByteArray("{\"build\":\"build_1\"}"));
    QCOMPARE(game.Read("pelmora_app/version.json"), QByteArray("{\"build\":\"build_2\"}"));
}

void BuildRollbackTest::ADamagedVersionFileIsReplaced()
{
    BuildSeries const game(2);
    QVERIFY(QFile::resize(game.OutputPath("pelmora_app/version.json"), 5));
    QCOMPARE(RollBack({game.Options.Output, "pelmora_app", "build_1", false}), QString());
    QCOMPARE(game.Read("pelmora_app/version.json"), QByteArray("{\"build\":\"build_1\"}"));
}

void BuildRollbackTest::WhatIsNotAWholeBuildIsRefused_data()
{
    QTest::addColumn<QString>("build");
    QTest::addColumn<QString>("appId");
    QTest::addColumn<QString>("lost"); // file of the tree
    QTest::addColumn<QString>("sentence");
    QString const own = BuildSeries::OwnPath(1);
    AddRow("unknown", "build_9", "pelmora_app", "", "there is no build build_9");
    AddRow("empty", "", "pelmora_app", "", "there is no build ");
    AddRow("elsewhere", "../builds/build_1", "pelmora_app", "",
           "there is no build ../builds/build_1");
    AddRow("of another application", "build_1", "other_app", "",
           "other_app: there is no build build_1");
    AddRow("without a manifest", "build_1", "pelmora_app", "pelmora_app/builds/build_1/info.json",
           "there is no build build_1");
    AddRow("without a content file", "build_1", "pelmora_app", own,
           "build_1/info.json: the build build_1 is not whole: 1 content files are missing or "
           "damaged, the first is ");
}

void BuildRollbackTest::WhatIsNotAWholeBuildIsRefused()
{
    QFETCH(QString, build);
    QFETCH(QString, appId);
    QFETCH(QString, lost);
    QFETCH(QString, sentence);
    BuildSeries const game(2);
    QVERIFY(lost.isEmpty() || QFile::remove(game.OutputPath(lost)));
    Tree const before = game.Published();
    CaughtFailure const failure = FailureOf([&] {
        RollBack({game.Options.Output, appId, build, false});
    });
    QVERIFY2(failure.Sentence.contains(sentence), qPrintable(failure.Sentence));
    QVERIFY(failure.Sentence.startsWith(game.Options.Output));
    QCOMPARE(failure.ExitStatus, Publisher::Failure::c_Other);
    QCOMPARE(game.Published(), before);
}

void BuildRollbackTest::ADamagedBuildIsRefused_data()
{
    QTest::addColumn<QByteArray>("content");
    AddRow("of a wrong size", BuildSeries::Own(1).left(3));
    AddRow("of wrong bytes", BuildSeries::Own(1).toUpper());
}

void BuildRollbackTest::ADamagedBuildIsRefused()
{
    QFETCH(QByteArray, content);
    BuildSeries const game(2);
    QVERIFY(WriteFile(game.OutputPath(BuildSeries::OwnPath(1)), content));
    RollbackOptions options{game.Options.Output, "pelmora_app", "build_1", false};
    QString const sentence = FailureOf([&] { RollBack(options); }).Sentence;
    QVERIFY2(sentence.contains(QString(" (own): the MD5 of its %1 bytes").arg(content.size())),
             qPrintable(sentence));
    QCOMPARE(game.Read("pelmora_app/version.json"), QByteArray("{\"build\":\"build_2\"}"));
    options.Quick = true;
    QCOMPARE(RollBack(options), QString("build_2"));
}

void BuildRollbackTest::AFullDiskHindersNeitherRollbackNorPruning()
{
    BuildSeries game(3);
    QString const output = game.Temporary.filePath("volume");
    SmallVolume const volume(output, "1m");
    if (!volume.IsMounted())
        QSKIP("this user cannot mount a volume");
    QCOMPARE(QProcess::execute("cp", {"-a", game.Options.Output + "/.", output}), 0);
    game.Options.Output = output;
    VolumeFiller const filler(output + "/filler");
    QVERIFY(filler.IsFull());
    for (int const build : {1, 2, 1})
        RollBack({output, "pelmora_app", BuildSeries::Name(build), false});
    QCOMPARE(game.Read("pelmora_app/version.json"), QByteArray("{\"build\":\"build_1\"}"));
    Publisher::PruneOptions const two{output, "pelmora_app", {}, {"build_2"}, false};
    QCOMPARE(Publisher::PruneBuilds(two).ContentFiles, 1);
    QVERIFY(game.IsWhole(1));
    QVERIFY(!game.Catalog().Has("build_2"));
}

void BuildRollbackTest::TheCatalogIsInTheOrderOfPublication()
{
    BuildSeries game(3);
    QVERIFY(QDir().mkpath(game.OutputPath("pelmora_app/builds/empty")));
    QStringList const published{"build_1", "build_2", "build_3"};
    QCOMPARE(game.Catalog().Builds(), published);
    // As in a tree that was copied without times.
    game.SetAge(1, 0);
    game.SetAge(3, 5);
    QCOMPARE(game.Catalog().Builds(), published);
    // Where no order was noted down, the times are all there is; what follows is noted down.
    QString const record = game.OutputPath(".varnholt-publish.pelmora_app.builds");
    QVERIFY(QFile::remove(record));
    QCOMPARE(game.Catalog().Builds(), QStringList({"build_3", "build_2", "build_1"}));
    game.Publish("a_build");
    game.SetAge(3, 0);
    QCOMPARE(game.Catalog().Builds(), QStringList({"build_3", "build_2", "build_1", "a_build"}));
    QVERIFY(WriteFile(record, "{"));
    QVERIFY(FailureOf([&] {
                game.Catalog().Builds();
            }).Sentence.startsWith(record + ": the record of the builds' order is damaged"));
}

void BuildRollbackTest::TheCatalogKnowsSizesAndChannels()
{
    BuildSeries game(2);
    game.Put("twin", "shared");
    game.AddRules("{\"match\": \"twin\", \"streamed\": true}");
    game.Options.Build = {"build_3", "Three", 3};
    game.Options.DevChannel = true;
    game.Publish();
    CatalogedBuild const build = game.Catalog().Read("build_3");
    QCOMPARE(build.Name, QString("Three"));
    QCOMPARE(build.Number, 3);
    QCOMPARE(build.Files, 4);
    QCOMPARE(build.StreamedFiles, 1);
    QCOMPARE(build.Bytes, 8 + 6 + 6 + BuildSeries::Own(2).size());
    QCOMPARE(build.Content.size(), 3);
    QCOMPARE(game.Catalog().BuildOn(true), QString("build_3"));
    QCOMPARE(game.Catalog().BuildOn(false), QString("build_2"));
    QVERIFY(WriteFile(game.OutputPath("pelmora_app/version.json"), "{}"));
    QCOMPARE(FailureOf([&] { game.Catalog().BuildOn(false); }).Sentence,
             game.OutputPath("pelmora_app/version.json") + ": is damaged: it names no build");
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::BuildRollbackTest)
#include "tst_BuildRollback.moc"
