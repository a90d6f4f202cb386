#include "Tests/Host/HostProcess.hpp"
#include "Tests/Host/SessionGame.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QDir>
#include <QLockFile>
#include <QtTest>

namespace Varnholt::TestSupport {

/// One host at a time works in a folder, and a lock that nobody holds keeps nobody out.
class HostFolderLockTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void AFolderThatAnotherHostWorksInIsLeftAlone();
    void TheLockGoesWithTheRun();
    void ALockWhoseOwnerDiedBeforeItsNameIsTakenOver_data();
    void ALockWhoseOwnerDiedBeforeItsNameIsTakenOver();
    void WhatADeadTakeoverLeftGoesToo_data();
    void WhatADeadTakeoverLeftGoesToo();
    void ALockWithoutNameThatIsHeldIsRespected();
    void AFolderThatWasMovedAwayInMidRunIsNotLocked();
    void ADeadInstallationsLockIsNoForeignFile();
};

void HostFolderLockTest::AFolderThatAnotherHostWorksInIsLeftAlone()
{
    HostGame game;
    game.AddFiles().Publish();
    QString const base = game.Content.ServerPath("Data/base.MPQ");
    game.Server.Script("GET " + base).Then(Answer::SilentAfter(20000));
    HostProcess first(game, {"install", game.Folder});
    QVERIFY(first.WaitUntil([&] { return game.Read("Data/base.MPQ.part").size() == 20000; }));
    game.ForgetRequests();
    for (QStringList const& command :
         {QStringList{"install", game.Folder}, QStringList("update"), QStringList("repair"),
          QStringList("play"), QStringList{"uninstall", "--delete-files", "--yes"}}) {
        Outcome const outcome = HostProcess(game, QStringList("-q") + command).Finish();
        QCOMPARE(outcome.Err, "varnholt-host: another program works in the folder " + game.Folder +
                                  "; wait for it to end, then try again.\n");
        QCOMPARE(outcome.Status, 8);
    }
    QCOMPARE(game.Requested(), QStringList());
    game.Server.OpenGate(base);
    QCOMPARE(first.Finish().Status, 0);
    QCOMPARE(game.Wrong(), QStringList());
}

void HostFolderLockTest::TheLockGoesWithTheRun()
{
    SessionGame game;
    game.AddFiles().Publish().PutInstalled();
    QVERIFY(game.Open());
    QLockFile lock(game.Path(".varnholt-host.lock"));
    QVERIFY(lock.tryLock());
    QCOMPARE(game.Run(RequestType::Update), QString("folder-locked"));
    lock.unlock();
    QCOMPARE(game.Run(RequestType::Update), QString("done"));
    QVERIFY(lock.tryLock());
}

void HostFolderLockTest::ALockWhoseOwnerDiedBeforeItsNameIsTakenOver_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("nothing") << QByteArray("");
    QTest::newRow("half of a number") << QByteArray("1");
    QTest::newRow("no machine") << QByteArray("1\nvarnholt-host\n");
    QTest::newRow("half of a machine") << QByteArray("1\nvarnholt-host\nmach");
    QTest::newRow("half of its number") << QByteArray("1\nvarnholt-host\nmachine\n1234");
}

void HostFolderLockTest::ALockWhoseOwnerDiedBeforeItsNameIsTakenOver()
{
    QFETCH(QByteArray, content);
    SessionGame game;
    game.AddFiles().Publish().PutInstalled();
    game.Put(".varnholt-host.lock", content);
    QVERIFY(WriteFile(game.SettingsFile + ".lock", content));
    QVERIFY(game.Open());
    QCOMPARE(game.Run(RequestType::Update), QString("done"));
    QVERIFY(!game.Has(".varnholt-host.lock"));
    QVERIFY(!QFile::exists(game.SettingsFile + ".lock"));
}

void HostFolderLockTest::WhatADeadTakeoverLeftGoesToo_data()
{
    QTest::addColumn<QByteArray>("lock");
    QTest::addColumn<QByteArray>("removal");
    // No process has this number.
    QByteArray const dead =
        "999999999\nvarnholt-host\n" + QSysInfo::machineHostName().toUtf8() + '\n';
    QTest::newRow("named") << dead << dead;
    QTest::newRow("without name") << dead << QByteArray("");
}

void HostFolderLockTest::WhatADeadTakeoverLeftGoesToo()
{
    QFETCH(QByteArray, lock);
    QFETCH(QByteArray, removal);
    SessionGame game;
    game.AddFiles().Publish().PutInstalled();
    game.Put(".varnholt-host.lock", lock);
    game.Put(".varnholt-host.lock.rmlock", removal);
    QVERIFY(game.Open());
    QCOMPARE(game.Run(RequestType::Update), QString("done"));
    QVERIFY(!game.Has(".varnholt-host.lock"));
    QVERIFY(!game.Has(".varnholt-host.lock.rmlock"));
}

void HostFolderLockTest::ALockWithoutNameThatIsHeldIsRespected()
{
    SessionGame game;
    game.AddFiles().Publish().PutInstalled();
    QLockFile lock(game.Path(".varnholt-host.lock"));
    QVERIFY(lock.tryLock());
    QVERIFY(QFile::resize(game.Path(".varnholt-host.lock"), 0));
    QVERIFY(game.Open());
    QCOMPARE(game.Run(RequestType::Update), QString("folder-locked"));
    QVERIFY(game.Has(".varnholt-host.lock"));
}

void HostFolderLockTest::AFolderThatWasMovedAwayInMidRunIsNotLocked()
{
    SessionGame game;
    game.AddFiles().Publish().PutInstalled();
    QString const away = game.Base + "away";
    QVERIFY(QFile::remove(game.Path("Data/base.MPQ")));
    QString const path = game.Content.ServerPath("Data/base.MPQ");
    game.Server.Script("GET " + path).Then(Answer::SilentAfter(20000));
    QVERIFY(game.Open());
    game.Start(RequestType::Update);
    QVERIFY(game.WaitForPart("Data/base.MPQ", 20000));
    QVERIFY(QDir().rename(game.Folder, away));
    game.Server.OpenGate(path);
    QCOMPARE(game.End(), QString("done"));
    QVERIFY(QDir(game.Folder).removeRecursively());
    QVERIFY(QDir().rename(away, game.Folder));
    QVERIFY(game.Has(".varnholt-host.lock"));
    QCOMPARE(game.Run(RequestType::Update), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
}

void HostFolderLockTest::ADeadInstallationsLockIsNoForeignFile()
{
    SessionGame game;
    game.AddFiles().Publish();
    game.Put(".varnholt-host.lock", "");
    QVERIFY(game.Open());
    QCOMPARE(game.Install(), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::HostFolderLockTest)
#include "tst_HostFolderLock.moc"
