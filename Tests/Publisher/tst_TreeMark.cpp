#include "Publisher/Tree/TreeMark.hpp"
#include "Tests/Publisher/FailureOf.hpp"
#include "Tests/Publisher/PublishedGame.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

namespace Varnholt::TestSupport {

using Publisher::TreeMark;

class TreeMarkTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void AFolderOfOthersIsRefusedAndStaysAsItIs_data();
    void AFolderOfOthersIsRefusedAndStaysAsItIs();
    void AnEmptyFolderBecomesATree();
    void RemainsOfAKilledRunAreItsOwn();
    void AFailedFirstBuildLeavesNoMark();
    void OnlyATreeIsTakenForOne();
};

void TreeMarkTest::AFolderOfOthersIsRefusedAndStaysAsItIs_data()
{
    QTest::addColumn<QString>("path");
    for (char const* const path : {"letter.txt", ".hidden", "folder/letter.txt",
                                   "pelmora_app/version.json", ".varnholt-publish", "cdns.info"})
        QTest::newRow(path) << QString(path);
}

void TreeMarkTest::AFolderOfOthersIsRefusedAndStaysAsItIs()
{
    QFETCH(QString, path);
    PublishedGame game;
    QVERIFY(WriteFile(game.OutputPath(path), "theirs"));
    Tree const before = TreeOf(game.Options.Output);
    CaughtFailure const failure = FailureOf([&] { game.Publish(); });
    QCOMPARE(failure.Sentence, game.Options.Output +
                                   ": the output folder is not empty and no published tree: "
                                   "choose an empty or a new one");
    QCOMPARE(failure.ExitStatus, Publisher::Failure::c_Other);
    QCOMPARE(TreeOf(game.Options.Output), before);
}

void TreeMarkTest::AnEmptyFolderBecomesATree()
{
    PublishedGame game;
    QVERIFY(QDir().mkpath(game.Options.Output));
    game.Publish();
    QVERIFY(TreeMark(game.Options.Output).IsThere());
    game.Publish("build_2");
    QCOMPARE(game.Read("pelmora_app/version.json"), QByteArray("{\"build\":\"build_2\"}"));
}

void TreeMarkTest::RemainsOfAKilledRunAreItsOwn()
{
    PublishedGame game;
    QVERIFY(WriteFile(game.OutputPath(".varnholt-publish.new/0"), "half a file"));
    game.Publish();
    QVERIFY(!QFileInfo::exists(game.OutputPath(".varnholt-publish.new")));
    QCOMPARE(game.Read("pelmora_app/version.json"), QByteArray("{\"build\":\"build_1\"}"));
}

void TreeMarkTest::AFailedFirstBuildLeavesNoMark()
{
    PublishedGame game;
    QVERIFY(QDir().mkpath(game.Options.Output));
    game.Observer.OnBytes = [] { throw Publisher::Failure("stopped"); };
    QCOMPARE(game.FailureSentence(), QString("stopped"));
    QCOMPARE(TreeOf(game.Options.Output), Tree());
}

void TreeMarkTest::OnlyATreeIsTakenForOne()
{
    PublishedGame game;
    auto const sentence = [](QString const& p_Folder) {
        return FailureOf([&] { TreeMark(p_Folder).CheckIsTree(); }).Sentence;
    };
    QString const& output = game.Options.Output;
    QCOMPARE(sentence(output), output + ": the output folder does not exist");
    QCOMPARE(sentence(game.Options.RulesFile), game.Options.RulesFile + ": is not a folder");
    QCOMPARE(sentence(game.Options.Source),
             game.Options.Source + ": the output folder is no published tree");
    game.Publish();
    QCOMPARE(sentence(output), QString());
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::TreeMarkTest)
#include "tst_TreeMark.moc"
