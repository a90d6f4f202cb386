#include "Tests/Publisher/FailureOf.hpp"
#include "Tests/Publisher/MoveWatch.hpp"
#include "Tests/Publisher/PublishedGame.hpp"
#include "Tests/Publisher/SigningKeys.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

namespace Varnholt::TestSupport {

class PublicationCommitTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void TheVersionFileChangesLastAndInOneStep_data();
    void TheVersionFileChangesLastAndInOneStep();
    void WhatCannotBeReplacedTakesEverythingBack_data();
    void WhatCannotBeReplacedTakesEverythingBack();
    void ContentOfAWrongSizeIsWrittenAnew();
    void ContentOfWrongBytesIsWrittenAnewOnDemand();
    void AFolderInThePlaceOfContentIsReported();
    void APublishedBuildNeverChanges();
};

void PublicationCommitTest::TheVersionFileChangesLastAndInOneStep_data()
{
    QTest::addColumn<bool>("isSigned");
    QTest::newRow("unsigned") << false;
    QTest::newRow("each right behind its signature") << true;
}

void PublicationCommitTest::TheVersionFileChangesLastAndInOneStep()
{
    QFETCH(bool, isSigned);
    PublishedGame game;
    if (isSigned)
        game.Options.Signing = SigningKeys().Options();
    game.Options.Hosts = QStringList("old");
    game.Publish();
    game.Put("Data/new", "new content");
    game.Options.Hosts = QStringList("new");
    game.Options.RealmListAddress = "new";
    // Folders that exist can be watched from the start.
    QString const content = PublishedGame::ContentPath("new content");
    QVERIFY(QDir().mkpath(QFileInfo(game.OutputPath(content)).path()));
    QVERIFY(QDir().mkpath(game.OutputPath("pelmora_app/builds/build_2")));
    MoveWatch watch(game.Options.Output,
                    {"", "pelmora_app/", "pelmora_app/builds/build_2/", content.left(21)});
    game.Publish("build_2");
    QStringList expected{"moved " + content};
    for (QString const path : {"pelmora_app/builds/build_2/info.json", "cdns.info",
                               "pelmora_app/realmlist.info", "pelmora_app/version.json"}) {
        if (isSigned)
            expected += "moved " + path + ".minisig";
        expected += "moved " + path;
    }
    QCOMPARE(watch.Changes(), expected);
}

void PublicationCommitTest::WhatCannotBeReplacedTakesEverythingBack_data()
{
    QTest::addColumn<QString>("path");
    for (char const* const path : {"pelmora_app/version.json", "pelmora_app/realmlist.info",
                                   "cdns.info", "pelmora_app/builds/build_2/info.json"})
        QTest::newRow(path) << QString(path);
}

/// A folder stands where the file must go, which is seen when the files before it are in place.
void PublicationCommitTest::WhatCannotBeReplacedTakesEverythingBack()
{
    QFETCH(QString, path);
    PublishedGame game;
    game.Options.Hosts = QStringList("old");
    game.Options.RealmListAddress = "old";
    game.Publish();
    QFile::remove(game.OutputPath(path));
    QVERIFY(WriteFile(game.OutputPath(path + "/inside"), "x"));
    Tree const before = game.Published();
    game.Put("Data/new", "new content");
    game.Options.Hosts = QStringList("new");
    game.Options.RealmListAddress = "new";
    game.Options.Build.Id = "build_2";
    QCOMPARE(game.FailureSentence(),
             game.OutputPath(path) + ": is not a file that can be replaced");
    QCOMPARE(game.Published(), before);
}

void PublicationCommitTest::ContentOfAWrongSizeIsWrittenAnew()
{
    PublishedGame game;
    game.Publish();
    QString const content = game.OutputPath(PublishedGame::ContentPath("the game"));
    QVERIFY(WriteFile(content, "the"));
    QCOMPARE(game.Publish("build_2").NewContentFiles, 1);
    QCOMPARE(ReadFile(content), QByteArray("the game"));
}

void PublicationCommitTest::ContentOfWrongBytesIsWrittenAnewOnDemand()
{
    PublishedGame game;
    game.Age();
    game.Publish();
    QString const content = game.OutputPath(PublishedGame::ContentPath("the game"));
    QVERIFY(WriteFile(content, "THE GAME"));
    for (bool const isRead : {false, true}) {
        game.Options.ReadIndex = !isRead;
        game.Options.ReadStore = isRead;
        QCOMPARE(game.Publish("build_2").NewContentFiles, isRead ? 1 : 0);
    }
    QCOMPARE(ReadFile(content), QByteArray("the game"));
    QCOMPARE(game.Observer.Warnings.size(), 1);
    QVERIFY(game.Observer.Warnings[0].startsWith(content + ": is written anew: the MD5 of its 8"));
}

void PublicationCommitTest::AFolderInThePlaceOfContentIsReported()
{
    PublishedGame game;
    QString const content = game.OutputPath(PublishedGame::ContentPath("the game"));
    QVERIFY(WriteFile(content + "/inside", "x"));
    QVERIFY(WriteFile(game.OutputPath(".varnholt-publish.tree"), ""));
    Tree const before = game.Published();
    QCOMPARE(game.FailureSentence(), content + ": stands where a content file must go");
    QCOMPARE(game.Published(), before);
}

void PublicationCommitTest::APublishedBuildNeverChanges()
{
    PublishedGame game;
    game.Publish();
    Tree const before = game.Published();
    game.Put("Data/new", "new content");
    QCOMPARE(game.FailureSentence(), game.OutputPath("pelmora_app/builds/build_1/info.json") +
                                         ": this build is already published with other content: "
                                         "choose another --build");
    QCOMPARE(game.Published(), before);
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::PublicationCommitTest)
#include "tst_PublicationCommit.moc"
