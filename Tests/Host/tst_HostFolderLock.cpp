#include "Host/Core/Folder/FolderLock.hpp"
#include "Tests/Host/HostProcess.hpp"
#include "Tests/Host/SessionGame.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/OrdinaryUser.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QDir>
#include <QtTest>

#include <cerrno>

namespace Varnholt::TestSupport {

/// One host at a time works in a folder, and a lock that nobody holds keeps nobody out.
class HostFolderLockTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void AFolderThatAnotherHostWorksInIsLeftAlone();
    void ALockWhoseOwnerHasDiedKeepsNobodyOut();
    void TheLockEndsWithTheRun();
    void AFileOfAnEarlierKindKeepsNobodyOut();
    void TheFileGoesWithTheGame();
    void WhatStandsInItsPlaceIsNamed();
    void AFolderThatNobodyMayWriteIsHeldByNobody();
    void WithoutLocksTheUserIsWarned();
    void AFolderThatWasMovedAwayInMidRunIsNotLocked();
    void TheFileIsNoForeignOne();
};

void HostFolderLockTest::AFolderThatAnotherHostWorksInIsLeftAlone()
{
    HostGame game;
    game.AddFiles().Publish();
    QString const base = game.HoldContent("Data/base.MPQ", 20000);
    HostProcess first(game, {"install", game.Folder});
    QVERIFY(first.WaitUntil([&] { return game.Read("Data/base.MPQ.part").size() == 20000; }));
    game.ForgetRequests();
    for (QStringList const& command :
         {QStringList{"install", game.Folder}, QStringList("update"), QStringList("repair"),
          QStringList("play"), QStringList{"uninstall", "--delete-files", "--yes"}}) {
        Outcome const outcome = HostProcess(game, QStringList("-q") + command).Finish();
        QCOMPARE(outcome.Err,
                 QString("varnholt-host: another program works in the folder %1 (varnholt-host, "
                         "process %2 on %3); wait for it to end, then try again.\n")
                     .arg(game.Folder)
                     .arg(first.ProcessId())
                     .arg(QSysInfo::machineHostName()));
        QCOMPARE(outcome.Status, 8);
    }
    QCOMPARE(game.Requested(), QStringList());
    game.Server.OpenGate(base);
    QCOMPARE(first.Finish().Status, 0);
    QCOMPARE(game.Wrong(), QStringList());
}

void HostFolderLockTest::ALockWhoseOwnerHasDiedKeepsNobodyOut()
{
    HostGame game;
    game.AddFiles().Publish();
    game.HoldContent("Data/base.MPQ", 20000);
    {
        HostProcess first(game, {"install", game.Folder});
        QVERIFY(first.WaitUntil([&] { return game.Read("Data/base.MPQ.part").size() == 20000; }));
    } // killed
    QVERIFY(game.Has(Host::FolderLock::c_File));
    Outcome const outcome = HostProcess(game, {"-q", "install", game.Folder}).Finish();
    QCOMPARE(outcome.Err, QString());
    QCOMPARE(outcome.Status, 0);
    QCOMPARE(game.Wrong(), QStringList());
}

void HostFolderLockTest::TheLockEndsWithTheRun()
{
    SessionGame game;
    game.AddFiles().Publish().PutInstalled();
    QVERIFY(game.Open());
    FileLock lock(game.Path(Host::FolderLock::c_File));
    QCOMPARE(lock.Take(), FileLock::Outcome::Taken);
    QCOMPARE(game.Run(RequestType::Update), QString("folder-locked"));
    lock.Release();
    QCOMPARE(game.Run(RequestType::Update), QString("done"));
    QCOMPARE(lock.Take(), FileLock::Outcome::Taken);
}

void HostFolderLockTest::AFileOfAnEarlierKindKeepsNobodyOut()
{
    SessionGame game;
    game.AddFiles().Publish().PutInstalled();
    // A process that lives, a machine: such a file was a lock once.
    QByteArray const content = QByteArray::number(QCoreApplication::applicationPid()) +
                               "\nvarnholt-host\n" + QSysInfo::machineHostName().toUtf8() + '\n';
    game.Put(Host::FolderLock::c_File, content);
    QVERIFY(WriteFile(game.SettingsFile + ".lock", content));
    QVERIFY(QFile::remove(game.Path("readme.txt")));
    QVERIFY(game.Open());
    QCOMPARE(game.Run(RequestType::Update), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
}

void HostFolderLockTest::TheFileGoesWithTheGame()
{
    HostGame game;
    game.AddFiles().Publish().PutInstalled();
    QCOMPARE(HostProcess(game, {"-q", "update"}).Finish().Status, 0);
    QVERIFY(game.Has(Host::FolderLock::c_File));
    QCOMPARE(HostProcess(game, {"-q", "uninstall", "--delete-files", "--yes"}).Finish().Status, 0);
    QVERIFY(!game.Has(Host::FolderLock::c_File));
}

void HostFolderLockTest::WhatStandsInItsPlaceIsNamed()
{
    HostGame game;
    game.AddFiles().Publish().PutInstalled();
    QString const lock = game.Path(Host::FolderLock::c_File);
    QVERIFY(WriteFile(game.Base + "theirs", "precious"));
    QVERIFY(QFile::link(game.Base + "theirs", lock));
    Outcome const outcome = HostProcess(game, {"-q", "update"}).Finish();
    QVERIFY2(IsOneSentence(outcome.Err), qPrintable(outcome.Err));
    QVERIFY2(outcome.Err.contains(lock), qPrintable(outcome.Err));
    QCOMPARE(outcome.Status, 7);
    QCOMPARE(ReadFile(game.Base + "theirs"), QByteArray("precious"));
}

void HostFolderLockTest::AFolderThatNobodyMayWriteIsHeldByNobody()
{
    QTemporaryDir const folder;
    QVERIFY(SetMode(folder.path(), 0555));
    VARNHOLT_AS_ORDINARY_USER();
    Host::FolderLock lock(folder.path() + '/');
    QVERIFY(!lock.Take());
    QVERIFY(!lock.Warning());
}

void HostFolderLockTest::WithoutLocksTheUserIsWarned()
{
#ifdef VARNHOLT_NO_LOCKS
    HostGame game;
    game.AddFiles().Publish().PutInstalled();
    QMap<QString, QString> const variables{{"LD_PRELOAD", VARNHOLT_NO_LOCKS}};
    Outcome const outcome = HostProcess(game, {"update"}, variables).Finish();
    QVERIFY2(outcome.Err.contains("The folder " + game.Folder + " cannot be locked (" +
                                  qt_error_string(ENOLCK) + "); let no other program work in it"),
             qPrintable(outcome.Err));
    QCOMPARE(outcome.Status, 0);
    QVERIFY(!game.IsMarkedUnfinished());
#else
    QSKIP("calls cannot be replaced here");
#endif
}

void HostFolderLockTest::AFolderThatWasMovedAwayInMidRunIsNotLocked()
{
    SessionGame game;
    game.AddFiles().Publish().PutInstalled();
    QString const away = game.Base + "away";
    QVERIFY(QFile::remove(game.Path("Data/base.MPQ")));
    QString const path = game.HoldContent("Data/base.MPQ", 20000);
    QVERIFY(game.Open());
    game.Start(RequestType::Update);
    QVERIFY(game.WaitForPart("Data/base.MPQ", 20000));
    QVERIFY(QDir().rename(game.Folder, away));
    game.Server.OpenGate(path);
    QCOMPARE(game.End(), QString("done"));
    QVERIFY(QDir(game.Folder).removeRecursively());
    QVERIFY(QDir().rename(away, game.Folder));
    QVERIFY(game.Has(Host::FolderLock::c_File));
    QCOMPARE(game.Run(RequestType::Update), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
}

void HostFolderLockTest::TheFileIsNoForeignOne()
{
    SessionGame game;
    game.AddFiles().Publish();
    game.Put(Host::FolderLock::c_File, "");
    QVERIFY(game.Open());
    QCOMPARE(game.Install(), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::HostFolderLockTest)
#include "tst_HostFolderLock.moc"
