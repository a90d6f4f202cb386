#include "Files/FileLock.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/OrdinaryUser.hpp"
#include "Tests/Support/TestHost.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <cerrno>
#include <thread>

namespace Varnholt::TestSupport {

using Outcome = FileLock::Outcome;

class FileLockTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void OneHasItAndTheOthersLearnWho();
    void OneThatWaitsGetsIt();
    void AFileAloneKeepsNobodyOut_data();
    void AFileAloneKeepsNobodyOut();
    void WhatIsNoNameIsNotTold_data();
    void WhatIsNoNameIsNotTold();
    void ProgramsThatAreStartedDoNotHaveIt();
    void AFileThatWasTakenAwayIsMadeAnew();
    void AnotherFileInItsPlaceIsLeftThere();
    void WhatStandsInItsPlaceIsLeftAlone_data();
    void WhatStandsInItsPlaceIsLeftAlone();
    void WithoutTheRightToWriteItKeepsOut();
    void WithoutAFileAndTheRightToMakeOneItFails();

private:
    std::unique_ptr<QTemporaryDir> Folder;
    QString Path;
};

void FileLockTest::init()
{
    Folder = std::make_unique<QTemporaryDir>();
    Path = Folder->filePath("lock");
}

void FileLockTest::OneHasItAndTheOthersLearnWho()
{
    FileLock first(Path);
    FileLock second(Path);
    QCOMPARE(first.Take(), Outcome::Taken);
    QCOMPARE(first.Take(), Outcome::Taken);
    QCOMPARE(second.Take(), Outcome::Held);
    QVERIFY(!second.IsTaken());
    QCOMPARE(second.Holder(),
             QString("tst_Files, process %1 on %2").arg(getpid()).arg(QSysInfo::machineHostName()));
    first.Release();
    QCOMPARE(second.Take(), Outcome::Taken);
    QCOMPARE(first.Take(), Outcome::Held);
}

void FileLockTest::OneThatWaitsGetsIt()
{
    FileLock first(Path);
    QCOMPARE(first.Take(), Outcome::Taken);
    FileLock second(Path);
    Outcome outcome = Outcome::Failed;
    std::thread waiting([&] { outcome = second.Take(TestHost::c_Timeout); });
    first.Remove();
    waiting.join();
    QCOMPARE(outcome, Outcome::Taken);
    QVERIFY(QFile::exists(Path));
}

void FileLockTest::AFileAloneKeepsNobodyOut_data()
{
    QTest::addColumn<QByteArray>("content");
    QByteArray const own = QByteArray::number(getpid());
    QTest::newRow("nothing") << QByteArray("");
    QTest::newRow("half of a name") << QByteArray("varnholt-ho");
    QTest::newRow("one that lives") << QByteArray("init, process 1\n");
    QTest::newRow("this process") << "tst_Files, process " + own + '\n';
    QTest::newRow("numbers first") << own + "\nvarnholt-host\nmachine\n";
}

void FileLockTest::AFileAloneKeepsNobodyOut()
{
    QFETCH(QByteArray, content);
    QVERIFY(WriteFile(Path, content));
    FileLock lock(Path);
    QCOMPARE(lock.Take(), Outcome::Taken);
    QCOMPARE(ReadFile(Path), "tst_Files, process " + QByteArray::number(getpid()) + " on " +
                                 QSysInfo::machineHostName().toUtf8() + '\n');
}

void FileLockTest::WhatIsNoNameIsNotTold_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("nothing") << QByteArray("");
    QTest::newRow("half of a name") << QByteArray("varnholt-ho");
    QTest::newRow("for a terminal") << QByteArray("\x1b[2Jprocess 1\n");
    QTest::newRow("long") << QByteArray(100'000, 'x') + '\n';
}

void FileLockTest::WhatIsNoNameIsNotTold()
{
    QFETCH(QByteArray, content);
    FileLock first(Path);
    QCOMPARE(first.Take(), Outcome::Taken);
    QVERIFY(WriteFile(Path, content));
    FileLock second(Path);
    QCOMPARE(second.Take(), Outcome::Held);
    QCOMPARE(second.Holder(), QString("it does not say which"));
}

void FileLockTest::ProgramsThatAreStartedDoNotHaveIt()
{
    FileLock first(Path);
    QCOMPARE(first.Take(), Outcome::Taken);
    QProcess program;
    program.start("cat", QStringList());
    QVERIFY(program.waitForStarted(TestHost::c_Timeout));
    first.Release();
    FileLock second(Path);
    QCOMPARE(second.Take(), Outcome::Taken);
    program.closeWriteChannel();
    QVERIFY(program.waitForFinished(TestHost::c_Timeout));
}

void FileLockTest::AFileThatWasTakenAwayIsMadeAnew()
{
    FileLock first(Path);
    QCOMPARE(first.Take(), Outcome::Taken);
    first.Remove();
    QVERIFY(!first.IsTaken());
    QVERIFY(!QFile::exists(Path));
    QCOMPARE(first.Take(), Outcome::Taken);
    QVERIFY(QFile::exists(Path));
}

void FileLockTest::AnotherFileInItsPlaceIsLeftThere()
{
    QString const place = Folder->filePath("game");
    QVERIFY(QDir().mkpath(place));
    FileLock first(place + "/lock");
    QCOMPARE(first.Take(), Outcome::Taken);
    QVERIFY(QDir().rename(place, Folder->filePath("away")));
    QVERIFY(QDir().mkpath(place));
    FileLock second(place + "/lock");
    QCOMPARE(second.Take(), Outcome::Taken);
    first.Remove();
    FileLock third(place + "/lock");
    QCOMPARE(third.Take(), Outcome::Held);
}

void FileLockTest::WhatStandsInItsPlaceIsLeftAlone_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<int>("error");
    QTest::newRow("a link") << "ln -s theirs lock" << ELOOP;
    QTest::newRow("a link to nothing") << "ln -s nothing lock" << ELOOP;
    QTest::newRow("a folder") << "mkdir lock" << EISDIR;
    QTest::newRow("a pipe") << "mkfifo lock" << EEXIST;
}

void FileLockTest::WhatStandsInItsPlaceIsLeftAlone()
{
    QFETCH(QString, command);
    QFETCH(int, error);
    QString const theirs = Folder->filePath("theirs");
    QVERIFY(WriteFile(theirs, "precious"));
    QProcess shell;
    shell.setWorkingDirectory(Folder->path());
    shell.start("sh", {"-c", command});
    QVERIFY(shell.waitForFinished(TestHost::c_Timeout));
    FileLock lock(Path);
    QCOMPARE(lock.Take(), Outcome::Failed);
    QCOMPARE(lock.Error(), error);
    QCOMPARE(ReadFile(theirs), QByteArray("precious"));
    QVERIFY(!QFile::exists(Folder->filePath("nothing")));
}

void FileLockTest::WithoutTheRightToWriteItKeepsOut()
{
    QVERIFY(WriteFile(Path, "other, process 1\n"));
    QVERIFY(SetMode(Path, 0444));
    QVERIFY(SetMode(Folder->path(), 0555));
    VARNHOLT_AS_ORDINARY_USER();
    FileLock first(Path);
    FileLock second(Path);
    QCOMPARE(first.Take(), Outcome::Taken);
    QCOMPARE(second.Take(), Outcome::Held);
}

void FileLockTest::WithoutAFileAndTheRightToMakeOneItFails()
{
    QVERIFY(SetMode(Folder->path(), 0555));
    VARNHOLT_AS_ORDINARY_USER();
    FileLock lock(Path);
    QCOMPARE(lock.Take(), Outcome::Failed);
    QCOMPARE(lock.Error(), EACCES);
    FileLock nowhere(Folder->filePath("no/lock"));
    QCOMPARE(nowhere.Take(), Outcome::Failed);
    QCOMPARE(nowhere.Error(), ENOENT);
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::FileLockTest)
#include "tst_FileLock.moc"
