#include "Publisher/Publication/BuildPruning.hpp"
#include "Publisher/Publication/BuildRollback.hpp"
#include "Publisher/Tree/TreeTransaction.hpp"
#include "Tests/Publisher/BuildSeries.hpp"
#include "Tests/Publisher/FailureOf.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

namespace Varnholt::TestSupport {

using Publisher::PublicationSummary;

namespace {

/// Paths of what a dry run would write.
QStringList PathsOf(PublicationSummary const& p_Summary)
{
    QStringList paths;
    for (Publisher::TreeFile const& file : p_Summary.WouldWrite)
        paths += file.Path;
    return paths;
}

/// The times of everything that clients see.
std::map<QString, QDateTime> TimesOf(QString const& p_Folder)
{
    std::map<QString, QDateTime> times;
    for (auto const& [path, content] : ForClients(TreeOf(p_Folder)))
        times[path] = QFileInfo(p_Folder + '/' + path).lastModified();
    return times;
}

} // namespace

class PublicationPlanTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void ADryRunNamesWhatTheNextRunWrites();
    void ADryRunMakesNoFolder();
    void ADryRunFailsAsTheRunWould();
    void ADryRunWaitsForNobody();
    void AnUnchangedSourceChangesNothing();
    void WhateverClientsWouldSeeIsAChange_data();
    void WhateverClientsWouldSeeIsAChange();
    void TheBuildOfTheChannelCounts();
    void NobodyChangesTheTreeBetweenPlanAndPublication();
    void WhatCannotBeUnderstoodIsPublishedAnew();
    void ADryRunTellsThatNothingChanged();
};

void PublicationPlanTest::ADryRunNamesWhatTheNextRunWrites()
{
    PublishedGame game;
    game.Publish();
    game.Put("Data/new", "new content");
    game.Put("Data/same", "the game");
    game.Options.Build.Id = "build_2";
    game.Options.Hosts = QStringList("a.example");
    game.Options.RealmListAddress = "logon";
    game.Options.DryRun = true;
    Tree const before = TreeOf(game.Options.Output);
    auto const times = TimesOf(game.Options.Output);
    PublicationSummary const planned = game.Publish();
    QCOMPARE(TreeOf(game.Options.Output), before);
    QCOMPARE(TimesOf(game.Options.Output), times);
    QCOMPARE(PathsOf(planned),
             QStringList({PublishedGame::ContentPath("new content"),
                          "pelmora_app/builds/build_2/info.json", "cdns.info",
                          "pelmora_app/realmlist.info", "pelmora_app/version.json"}));
    QCOMPARE(planned.NewContentFiles, 1);
    QCOMPARE(planned.Files, 3);

    game.Options.DryRun = false;
    QVERIFY(PathsOf(game.Publish()).isEmpty());
    for (Publisher::TreeFile const& file : planned.WouldWrite)
        QCOMPARE(file.Bytes, QFileInfo(game.OutputPath(file.Path)).size());
}

void PublicationPlanTest::ADryRunMakesNoFolder()
{
    PublishedGame game;
    game.Options.DryRun = true;
    QCOMPARE(PathsOf(game.Publish()).size(), 4);
    QVERIFY(!QFileInfo::exists(game.Options.Output));
}

void PublicationPlanTest::ADryRunFailsAsTheRunWould()
{
    PublishedGame game;
    game.Publish();
    game.Put("Data/new", "new content");
    QString const failure = game.FailureSentence();
    QVERIFY(failure.contains("already published with other content"));
    game.Options.DryRun = true;
    QCOMPARE(game.FailureSentence(), failure);
}

void PublicationPlanTest::ADryRunWaitsForNobody()
{
    PublishedGame game;
    game.Publish();
    Publisher::TreeTransaction const other(game.Options.Output);
    game.Options.DryRun = true;
    QCOMPARE(game.FailureSentence(), QString());
}

void PublicationPlanTest::AnUnchangedSourceChangesNothing()
{
    PublishedGame game;
    game.Options.Hosts = QStringList("a");
    game.Options.RealmListAddress = "b";
    game.Publish();
    Tree const before = game.Published();
    auto const times = TimesOf(game.Options.Output);
    game.Options.IfChanged = true;
    game.Options.Build = {"build_2", "Another name", 2};
    PublicationSummary const summary = game.Publish();
    QCOMPARE(summary.UnchangedBuild, QString("build_1"));
    QCOMPARE(summary.Files, 1);
    QCOMPARE(game.Published(), before);
    QCOMPARE(TimesOf(game.Options.Output), times);
}

void PublicationPlanTest::WhateverClientsWouldSeeIsAChange_data()
{
    QTest::addColumn<GameChange>("change");
    auto const add = [](char const* p_Name, GameChange const& p_Change) {
        QTest::newRow(p_Name) << p_Change;
    };
    add("content", [](PublishedGame& p_Game) { p_Game.Put("Data/a", "B"); });
    add("a file more", [](PublishedGame& p_Game) { p_Game.Put("Data/b", "b"); });
    add("a file less", [](PublishedGame& p_Game) { QFile::remove(p_Game.SourcePath("Data/a")); });
    add("a name", [](PublishedGame& p_Game) {
        QFile::rename(p_Game.SourcePath("Data/a"), p_Game.SourcePath("Data/b"));
    });
    add("a rule",
        [](PublishedGame& p_Game) { p_Game.AddRules(R"({"match": "Data/a", "streamed": true})"); });
    add("a language", [](PublishedGame& p_Game) { p_Game.Options.Locales = {{"frFR", "F"}}; });
    add("the platform", [](PublishedGame& p_Game) {
        p_Game.Options.Platform = Publisher::ContentPlatform::Windows;
    });
    add("the hosts", [](PublishedGame& p_Game) { p_Game.Options.Hosts = QStringList("other"); });
    add("the realm list", [](PublishedGame& p_Game) { p_Game.Options.RealmListAddress = "other"; });
    add("content that was lost", [](PublishedGame& p_Game) {
        QFile::remove(p_Game.OutputPath(PublishedGame::ContentPath("A")));
    });
}

void PublicationPlanTest::WhateverClientsWouldSeeIsAChange()
{
    QFETCH(GameChange, change);
    PublishedGame game;
    game.Put("Data/a", "A");
    game.Publish();
    game.Options.IfChanged = true;
    QCOMPARE(game.Publish("build_2").UnchangedBuild, QString("build_1"));
    change(game);
    QCOMPARE(game.Publish("build_2").UnchangedBuild, QString());
    QCOMPARE(game.Read("pelmora_app/version.json"), QByteArray("{\"build\":\"build_2\"}"));
    QCOMPARE(game.Publish("build_3").UnchangedBuild, QString("build_2"));
}

void PublicationPlanTest::TheBuildOfTheChannelCounts()
{
    PublishedGame game;
    game.Options.DevChannel = true;
    game.Publish();
    game.Options.IfChanged = true;
    QCOMPARE(game.Publish().UnchangedBuild, QString("build_1"));
    game.Options.DevChannel = false;
    QCOMPARE(game.Publish().UnchangedBuild, QString());
    QCOMPARE(game.Publish().UnchangedBuild, QString("build_1"));
}

void PublicationPlanTest::NobodyChangesTheTreeBetweenPlanAndPublication()
{
    BuildSeries game(3);
    game.Put("own", BuildSeries::Own(1));
    game.Options.IfChanged = true;
    QStringList refusals;
    game.Observer.OnPhase = [&](QString const&) {
        Publisher::PruneOptions const all{game.Options.Output, game.Options.AppId, 1, {}, false};
        refusals += FailureOf([&] { Publisher::PruneBuilds(all); }).Sentence;
        Publisher::RollbackOptions const first{game.Options.Output, game.Options.AppId, "build_1"};
        refusals += FailureOf([&] { Publisher::RollBack(first); }).Sentence;
    };
    game.Publish("build_4");
    QVERIFY(!refusals.isEmpty());
    for (QString const& refusal : qAsConst(refusals))
        QVERIFY2(refusal.contains(": another run is publishing there ("), qPrintable(refusal));
    QVERIFY(game.IsWhole(4));
}

void PublicationPlanTest::WhatCannotBeUnderstoodIsPublishedAnew()
{
    PublishedGame game;
    game.Publish();
    game.Options.IfChanged = true;
    QVERIFY(WriteFile(game.OutputPath("pelmora_app/version.json"), "{"));
    QCOMPARE(game.Publish().UnchangedBuild, QString());
    QVERIFY(WriteFile(game.OutputPath("pelmora_app/builds/build_1/info.json"), "{"));
    QCOMPARE(game.Publish("build_2").UnchangedBuild, QString());
    QCOMPARE(game.Read("pelmora_app/version.json"), QByteArray("{\"build\":\"build_2\"}"));
}

void PublicationPlanTest::ADryRunTellsThatNothingChanged()
{
    PublishedGame game;
    game.Publish();
    game.Options.IfChanged = true;
    game.Options.DryRun = true;
    PublicationSummary const summary = game.Publish("build_2");
    QCOMPARE(summary.UnchangedBuild, QString("build_1"));
    QVERIFY(summary.WouldWrite.empty());
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::PublicationPlanTest)
#include "tst_PublicationPlan.moc"
