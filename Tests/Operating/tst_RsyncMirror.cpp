#include "Tests/Publisher/PublishedGame.hpp"
#include "Tests/Publisher/SigningKeys.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QProcess>
#include <QtTest>

namespace Varnholt::TestSupport {

/// scripts/mirror
class RsyncMirrorTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void ACopyIsTheTree();
    void ANewBuildIsTakenOver();
    void AChangeOfKeyIsTakenOver();
    void AVersionOfTheSameSizeAndTimeIsTakenOver();
    void WhatIsCutOffLeavesTheVersion_data();
    void WhatIsCutOffLeavesTheVersion();
    void RemovesNothingUnlessItIsToldTo();
    void AWrongCallIsAUsageError();

private:
    /// \return exit status
    static int Run(QStringList const& p_Arguments)
    {
        QProcess process;
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start(QStringLiteral(VARNHOLT_SOURCE_FOLDER "/scripts/mirror"), p_Arguments);
        return process.waitForFinished() && process.exitStatus() == QProcess::NormalExit
                   ? process.exitCode()
                   : -1;
    }
    static QString CopyOf(PublishedGame const& p_Game) { return p_Game.Temporary.filePath("copy"); }
    static int Mirror(PublishedGame const& p_Game)
    {
        return Run({p_Game.Options.Output, CopyOf(p_Game)});
    }
};

void RsyncMirrorTest::ACopyIsTheTree()
{
    PublishedGame game;
    game.Put("Data/a", "a");
    game.Put("empty", "");
    game.Options.RealmListAddress = "logon.example.net";
    game.Publish("build_1");
    game.Options.DevChannel = true;
    game.Options.RealmListAddress.reset();
    game.Publish("build_2");
    Tree const published = game.Published();
    QVERIFY(WriteFile(game.OutputPath(".varnholt-publish.new/1"), "unfinished"));
    QCOMPARE(Mirror(game), 0);
    QCOMPARE(TreeOf(CopyOf(game)), published);
    QCOMPARE(ModeOf(CopyOf(game) + "/pelmora_app/version.json"), 0644);
}

void RsyncMirrorTest::ANewBuildIsTakenOver()
{
    PublishedGame game;
    game.Publish("build_1");
    QCOMPARE(Mirror(game), 0);
    game.Put("Data/b", "b");
    game.Options.Hosts = QStringList("mirror.example.net");
    game.Publish("build_2");
    QCOMPARE(Mirror(game), 0);
    QCOMPARE(TreeOf(CopyOf(game)), game.Published());
}

void RsyncMirrorTest::AChangeOfKeyIsTakenOver()
{
    PublishedGame game;
    game.Options.RealmListAddress = "logon.example.net";
    game.Options.Signing = SigningKeys().Options();
    game.Publish();
    QCOMPARE(Mirror(game), 0);
    SigningKeys::Change(game);
    QCOMPARE(Mirror(game), 0);
    QCOMPARE(TreeOf(CopyOf(game)), game.Published());
    QVERIFY(QFile::exists(CopyOf(game) + "/pelmora_app/trust-key.minisig"));
}

void RsyncMirrorTest::AVersionOfTheSameSizeAndTimeIsTakenOver()
{
    PublishedGame game;
    game.Publish("build_1");
    QCOMPARE(Mirror(game), 0);
    QString const version = "pelmora_app/version.json";
    QDateTime const time = QFileInfo(game.OutputPath(version)).lastModified();
    game.Publish("build_2");
    QFile file(game.OutputPath(version));
    QVERIFY(file.open(QIODevice::ReadWrite));
    QVERIFY(file.setFileTime(time, QFileDevice::FileModificationTime));
    file.close();
    QCOMPARE(Mirror(game), 0);
    QCOMPARE(ReadFile(CopyOf(game) + '/' + version), QByteArray("{\"build\":\"build_2\"}"));
}

void RsyncMirrorTest::WhatIsCutOffLeavesTheVersion_data()
{
    QTest::addColumn<QString>("obstacle");
    QTest::newRow("content") << PublishedGame::ContentPath("new content");
    QTest::newRow("manifest") << "pelmora_app/builds/build_2/info.json";
    QTest::newRow("hosts") << "cdns.info";
}

void RsyncMirrorTest::WhatIsCutOffLeavesTheVersion()
{
    QFETCH(QString, obstacle);
    PublishedGame game;
    game.Publish("build_1");
    QCOMPARE(Mirror(game), 0);
    game.Put("Data/b", "new content");
    game.Options.Hosts = QStringList("mirror.example.net");
    game.Publish("build_2");
    // A folder with something in it cannot be replaced by a file.
    QString const blocked = CopyOf(game) + '/' + obstacle;
    QFile::remove(blocked);
    QVERIFY(WriteFile(blocked + "/x", "x"));
    QVERIFY(Mirror(game) != 0);
    QString const version = CopyOf(game) + "/pelmora_app/version.json";
    QCOMPARE(ReadFile(version), QByteArray("{\"build\":\"build_1\"}"));

    QVERIFY(QDir(blocked).removeRecursively());
    QCOMPARE(Mirror(game), 0);
    QCOMPARE(TreeOf(CopyOf(game)), game.Published());
}

void RsyncMirrorTest::RemovesNothingUnlessItIsToldTo()
{
    PublishedGame game;
    game.Put("Data/a", "old");
    game.Publish("build_1");
    QCOMPARE(Mirror(game), 0);
    Tree const before = game.Published();
    QVERIFY(QDir(game.OutputPath("pelmora_app/builds/build_1")).removeRecursively());
    QVERIFY(QFile::remove(game.OutputPath(PublishedGame::ContentPath("old"))));
    QCOMPARE(Mirror(game), 0);
    QCOMPARE(TreeOf(CopyOf(game)), before);
    QVERIFY(WriteFile(CopyOf(game) + "/notes.txt", "of the mirror's own"));
    QCOMPARE(Run({"--delete", game.Options.Output, CopyOf(game)}), 0);
    QVERIFY(QFile::remove(CopyOf(game) + "/notes.txt"));
    QCOMPARE(TreeOf(CopyOf(game)), game.Published());
}

void RsyncMirrorTest::AWrongCallIsAUsageError()
{
    QCOMPARE(Run({}), 2);
    QCOMPARE(Run({"from"}), 2);
    QCOMPARE(Run({"--delete", "from"}), 2);
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::RsyncMirrorTest)
#include "tst_RsyncMirror.moc"
