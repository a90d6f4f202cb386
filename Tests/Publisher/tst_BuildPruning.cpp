#include "Publisher/Publication/BuildPruning.hpp"
#include "Publisher/Publication/BuildRollback.hpp"
#include "Tests/Publisher/BuildSeries.hpp"
#include "Tests/Publisher/FailureOf.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/ScopedCurrentFolder.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

namespace Varnholt::TestSupport {

using Publisher::PruneBuilds;
using Publisher::PruneOptions;
using Publisher::PruneSummary;
using Publisher::RollBack;

namespace {

PruneOptions Keep(PublishedGame const& p_Game, int p_Builds)
{
    return {p_Game.Options.Output, p_Game.Options.AppId, p_Builds, {}, false};
}

PruneOptions Remove(PublishedGame const& p_Game, QStringList const& p_Builds)
{
    return {p_Game.Options.Output, p_Game.Options.AppId, {}, p_Builds, false};
}

QString SentenceOf(PruneOptions const& p_Options)
{
    return FailureOf([&] { PruneBuilds(p_Options); }).Sentence;
}

} // namespace

class BuildPruningTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void KeepsTheNewestBuilds();
    void RemovesNamedBuilds();
    void ARelativeFolderIsTheSame();
    void WhatIsOnOfferStays();
    void ABuildOnOfferCannotBeNamed();
    void AnUnknownBuildRemovesNothing();
    void ContentThatAnInterruptedRunLeftIsRemoved();
    void WhatAnInterruptedRunStagedIsRemoved();
    void AnUnreadableManifestRemovesNothing();
    void AnUnreadableVersionFileRemovesNothing();
    void FilesOfOthersStay();
    void OtherApplicationsStay();
    void ADryRunRemovesNothing();
    void WhatWasRemovedCanBePublishedAgain();
    void ARemovedNameIsNotGivenToAnotherBuild();
};

void BuildPruningTest::KeepsTheNewestBuilds()
{
    BuildSeries const game(4);
    Tree expected = game.Published();
    PruneSummary const summary = PruneBuilds(Keep(game, 2));
    QCOMPARE(summary.Builds, QStringList({"build_1", "build_2"}));
    QCOMPARE(summary.KeptBuilds, 2);
    QCOMPARE(summary.ContentFiles, 2);
    QCOMPARE(summary.ContentBytes, 2 * BuildSeries::Own(1).size());
    for (int const build : {1, 2}) {
        expected.erase("pelmora_app/builds/" + BuildSeries::Name(build) + '/');
        expected.erase("pelmora_app/builds/" + BuildSeries::Name(build) + "/info.json");
        expected.erase(BuildSeries::OwnPath(build));
        expected.erase(BuildSeries::OwnPath(build).left(21));
    }
    QCOMPARE(game.Published(), expected);
    QVERIFY(PruneBuilds(Keep(game, 2)).Builds.isEmpty());
    QVERIFY(PruneBuilds(Keep(game, 9)).Builds.isEmpty());
    QVERIFY(game.IsWhole(3));
    QVERIFY(game.IsWhole(4));
}

void BuildPruningTest::RemovesNamedBuilds()
{
    BuildSeries const game(4);
    PruneSummary const summary = PruneBuilds(Remove(game, {"build_3", "build_1", "build_3"}));
    QCOMPARE(summary.Builds, QStringList({"build_3", "build_1"}));
    QCOMPARE(summary.ContentFiles, 2);
    QCOMPARE(game.Catalog().Builds(), QStringList({"build_2", "build_4"}));
    QVERIFY(game.IsWhole(2));
    QVERIFY(game.IsWhole(4));
    QVERIFY(!game.HasOwn(1));
    QVERIFY(!game.HasOwn(3));
}

void BuildPruningTest::ARelativeFolderIsTheSame()
{
    BuildSeries game(3);
    ScopedCurrentFolder const inside(game.Temporary.path());
    game.Options.Output = "output";
    PruneSummary const summary = PruneBuilds(Keep(game, 1));
    QCOMPARE(summary.Builds.size(), 2);
    QCOMPARE(summary.ContentFiles, 2);
    QVERIFY(!game.HasOwn(1));
    QVERIFY(game.IsWhole(3));
}

void BuildPruningTest::WhatIsOnOfferStays()
{
    BuildSeries const game(4);
    RollBack({game.Options.Output, "pelmora_app", "build_1", false});
    RollBack({game.Options.Output, "pelmora_app", "build_2", true});
    QCOMPARE(PruneBuilds(Keep(game, 1)).Builds, QStringList("build_3"));
    for (int const build : {1, 2, 4})
        QVERIFY(game.IsWhole(build));
    QVERIFY(!game.HasOwn(3));
}

void BuildPruningTest::ABuildOnOfferCannotBeNamed()
{
    BuildSeries const game(3);
    RollBack({game.Options.Output, "pelmora_app", "build_2", true});
    Tree const before = game.Published();
    for (int const build : {2, 3}) {
        QCOMPARE(SentenceOf(Remove(game, {"build_1", BuildSeries::Name(build)})),
                 QString("%1: the build %2 is on offer and cannot be removed")
                     .arg(game.Manifest(build), BuildSeries::Name(build)));
        QCOMPARE(game.Published(), before);
    }
}

void BuildPruningTest::AnUnknownBuildRemovesNothing()
{
    BuildSeries const game(2);
    Tree const before = game.Published();
    for (char const* const name : {"build_9", "", "..", "../builds/build_1"}) {
        QCOMPARE(SentenceOf(Remove(game, {"build_1", name})),
                 game.OutputPath("pelmora_app") + ": there is no build " + name);
        QCOMPARE(game.Published(), before);
    }
}

void BuildPruningTest::ContentThatAnInterruptedRunLeftIsRemoved()
{
    BuildSeries const game(2);
    QVERIFY(QFile::remove(game.Manifest(1)));
    QVERIFY(game.HasOwn(1));
    PruneSummary const summary = PruneBuilds(Keep(game, 1));
    QCOMPARE(summary.Builds, QStringList());
    QCOMPARE(summary.ContentFiles, 1);
    QVERIFY(!game.HasOwn(1));
    QVERIFY(game.IsWhole(2));
}

void BuildPruningTest::WhatAnInterruptedRunStagedIsRemoved()
{
    BuildSeries game(2);
    game.Put("more", "more");
    game.Observer.OnPhase = [](QString const& p_Phase) {
        if (p_Phase == "Copying")
            throw Publisher::Failure("stopped");
    };
    game.Options.Build.Id = "build_3";
    QCOMPARE(game.FailureSentence(), QString("stopped"));
    QString const staged = game.OutputPath(".varnholt-publish.pelmora_app.staged");
    QVERIFY(QFileInfo::exists(staged));
    PruneOptions options = Keep(game, 2);
    options.DryRun = true;
    QCOMPARE(PruneBuilds(options).ContentBytes, 4);
    QVERIFY(QFileInfo::exists(staged));
    QCOMPARE(PruneBuilds(Keep(game, 2)).ContentFiles, 1);
    QVERIFY(!QFileInfo::exists(staged));
}

void BuildPruningTest::AnUnreadableManifestRemovesNothing()
{
    BuildSeries const game(3);
    QVERIFY(QFile::resize(game.Manifest(2), 20));
    game.SetAge(2, 1);
    Tree const before = game.Published();
    QVERIFY(SentenceOf(Keep(game, 2)).startsWith(game.Manifest(2) + ": is no manifest"));
    QCOMPARE(game.Published(), before);
    // It can go itself.
    QCOMPARE(SentenceOf(Remove(game, {"build_2"})), QString());
    QVERIFY(game.IsWhole(1));
    QVERIFY(game.IsWhole(3));
}

void BuildPruningTest::AnUnreadableVersionFileRemovesNothing()
{
    BuildSeries const game(3);
    QString const version = game.OutputPath("pelmora_app/version.json");
    QVERIFY(QFile::resize(version, 5));
    Tree const before = game.Published();
    QCOMPARE(SentenceOf(Keep(game, 1)), version + ": is damaged: it names no build");
    QCOMPARE(SentenceOf(Remove(game, {"build_1"})), version + ": is damaged: it names no build");
    QCOMPARE(game.Published(), before);
}

void BuildPruningTest::FilesOfOthersStay()
{
    BuildSeries const game(2);
    QString const folder = BuildSeries::OwnPath(1).left(21);
    QStringList const others{"index.html",
                             "pelmora_app/notes",
                             "pelmora_app/files/notes",
                             "pelmora_app/builds/build_1/notes",
                             "pelmora_app/builds/other/notes",
                             folder + "notes",
                             folder + BuildSeries::OwnPath(1).mid(21).toLower(),
                             folder + BuildSeries::OwnPath(1).mid(21) + ".sig",
                             "pelmora_app/files/00/" + BuildSeries::OwnPath(2).mid(21)};
    for (QString const& other : others)
        QVERIFY(WriteFile(game.OutputPath(other), "theirs"));
    QCOMPARE(PruneBuilds(Keep(game, 1)).ContentFiles, 1);
    for (QString const& other : others)
        QCOMPARE(game.Read(other), QByteArray("theirs"));
}

void BuildPruningTest::OtherApplicationsStay()
{
    BuildSeries game(2);
    game.Options.AppId = "other_app";
    game.Publish("build_1");
    game.Publish("build_2");
    game.Options.AppId = "pelmora_app";
    PruneBuilds(Keep(game, 1));
    game.Options.AppId = "other_app";
    QVERIFY(game.IsWhole(1));
    QVERIFY(game.IsWhole(2));
}

void BuildPruningTest::ADryRunRemovesNothing()
{
    BuildSeries const game(3);
    Tree const before = TreeOf(game.Options.Output);
    PruneOptions options = Keep(game, 1);
    options.DryRun = true;
    PruneSummary const planned = PruneBuilds(options);
    QCOMPARE(TreeOf(game.Options.Output), before);
    options.DryRun = false;
    PruneSummary const done = PruneBuilds(options);
    QCOMPARE(planned.Builds, done.Builds);
    QCOMPARE(planned.ContentFiles, 2);
    QCOMPARE(planned.ContentFiles, done.ContentFiles);
    QCOMPARE(planned.ContentBytes, done.ContentBytes);
}

void BuildPruningTest::WhatWasRemovedCanBePublishedAgain()
{
    BuildSeries game(2);
    PruneBuilds(Keep(game, 1));
    game.Put("own", BuildSeries::Own(1));
    QCOMPARE(game.Publish("build_1").NewContentFiles, 1);
    QVERIFY(game.IsWhole(1));
    QCOMPARE(game.Catalog().Builds(), QStringList({"build_2", "build_1"}));
    QCOMPARE(game.Catalog().BuildOn(false), QString("build_1"));
}

void BuildPruningTest::ARemovedNameIsNotGivenToAnotherBuild()
{
    BuildSeries game(2);
    PruneBuilds(Keep(game, 1));
    game.Put("own", "of neither");
    Tree const before = game.Published();
    game.Options.Build.Id = "build_1";
    QCOMPARE(game.FailureSentence(),
             game.Manifest(1) + ": another build of this name was removed less than 30 days ago "
                                "and may be held by caches: choose another --build");
    QCOMPARE(game.Published(), before);
    // No cache holds it any more.
    QString const record = game.OutputPath(".varnholt-publish.pelmora_app.builds");
    QByteArray text = ReadFile(record);
    QDateTime const now = QDateTime::currentDateTimeUtc();
    text.replace(now.toString("yyyy-MM-dd").toLatin1(),
                 now.addDays(-31).toString("yyyy-MM-dd").toLatin1());
    QVERIFY(WriteFile(record, text));
    QCOMPARE(game.FailureSentence(), QString());
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::BuildPruningTest)
#include "tst_BuildPruning.moc"
