#include "Tests/Completion/HandMadeRun.hpp"
#include "Tests/Support/OrdinaryUser.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QDir>
#include <QFile>
#include <QtTest>

namespace Varnholt::TestSupport {

namespace {

QString const c_Io = QStringLiteral("(IO) Download restarted for ");
QString const c_Md5 = QStringLiteral("(MD5) Download restarted for ");
QString const c_Rename = QStringLiteral("(RENAME) Download restarted for ");

} // namespace

class VerificationTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void AGoodFileIsMovedIntoPlace();
    void AnOldReadOnlyFileIsReplaced();
    void AnOldLargeFileIsGivenBackByTheWorker();
    void AMissingPartIsRestarted_data();
    void AMissingPartIsRestarted();
    void AWrongDigestIsRestarted();
    void ALowerCaseManifestDigestNeverMatches();
    void AnOldFileIsGoneAlsoWhenTheNewOneIsWrong();
    void AFolderInPlaceOfTheFileIsReportedAndRestarted();
    void AnOldFileThatCannotBeRemovedIsReported();
    void AWrongPartThatCannotBeContinuedIsRemoved();
    void AWrongPartThatCanBeContinuedStays();
    void AStoppedHashIsAWrongDigestAndKeepsThePart();
    void ADigestFromTheArrivalIsTaken_data();
    void ADigestFromTheArrivalIsTaken();
    void PermissionsFollowTheFlags_data();
    void PermissionsFollowTheFlags();
    void PermissionsReachNamesThatAShellReads();
    void TheOldFilesPermissionsAreNotInherited();
    void WithoutAFolderNothingIsTouched();
};

void VerificationTest::AGoodFileIsMovedIntoPlace()
{
    HandMadeRun run;
    QByteArray const bytes = SampleContent::Bytes(3 * 8192 + 5);
    run.Add({"Data/a", bytes}).Add({"b", "b"});
    run.List();
    run.Complete(bytes);
    QCOMPARE(run.Read("Data/a"), bytes);
    QVERIFY(!run.Has("Data/a.part"));
    QCOMPARE(run.App.CurrentDownloadIndex, 1u);
    QCOMPARE(run.App.DownloadRetryCount, 0u);
    QCOMPARE(run.Host.Errors(), QStringList());
    QCOMPARE(run.Log.CountContaining("restarted"), 0);
}

void VerificationTest::AnOldReadOnlyFileIsReplaced()
{
    HandMadeRun run;
    run.Add({"a", "new", 0x1}).Add({"b", "b"}).Put("a", "old");
    QVERIFY(QFile::setPermissions(run.Path("a"), QFile::ReadOwner));
    run.List();
    run.Complete("new");
    QCOMPARE(run.Read("a"), QByteArray("new"));
    QCOMPARE(run.Host.Errors(), QStringList());
}

void VerificationTest::AnOldLargeFileIsGivenBackByTheWorker()
{
    // A hole: it takes no room.
    constexpr qint64 c_Large = qint64{1} << 30;

    HandMadeRun run;
    run.Add({"a", "new"}).Add({"b", "b"});
    run.List();
    run.Put("a", "old");
    QVERIFY(QFile::resize(run.Path("a"), c_Large));
    auto const isHeld = [&] {
        QDir const handles("/proc/self/fd");
        QStringList targets;
        for (QFileInfo const& handle : handles.entryInfoList(QDir::Files | QDir::System))
            targets += handle.symLinkTarget();
        return targets.contains(run.Path("a") + " (deleted)");
    };
    run.Complete("new");
    QCOMPARE(run.Read("a"), QByteArray("new"));
    QCOMPARE(run.App.AsyncQueue.size(), std::size_t{1});
    if (!QFile::exists("/proc/self/fd"))
        QSKIP("nothing here tells what is held");
    QVERIFY(isHeld());
    run.App.AsyncQueue.pop();
    QVERIFY(!isHeld());
}

void VerificationTest::AMissingPartIsRestarted_data()
{
    QTest::addColumn<bool>("isFolder");
    QTest::newRow("none") << false;
    QTest::newRow("a folder in its place") << true;
}

void VerificationTest::AMissingPartIsRestarted()
{
    QFETCH(bool, isFolder);
    HandMadeRun run;
    run.Add({"a", "a"}).Add({"b", "b"});
    run.List();
    QVERIFY(!isFolder || QDir().mkpath(run.Path("a.part")));
    Launcher::HTTP_DownloadFileRequest request;
    run.Complete(request);
    QCOMPARE(run.Logged(c_Io, "a"), 1);
    QCOMPARE(run.Listed(), QStringList({"a", "b", "a"}));
    QCOMPARE(run.App.DownloadRetryCount, 1u);
    QCOMPARE(run.App.CurrentDownloadIndex, 1u);
}

void VerificationTest::AWrongDigestIsRestarted()
{
    HandMadeRun run;
    run.Add({"a", "right"}).Add({"b", "b"});
    run.List();
    run.Complete("wrong");
    QCOMPARE(run.Logged(c_Md5, "a"), 1);
    QCOMPARE(run.Listed(), QStringList({"a", "b", "a"}));
    QCOMPARE(run.App.DownloadRetryCount, 1u);
    QVERIFY(!run.Has("a"));
}

void VerificationTest::ALowerCaseManifestDigestNeverMatches()
{
    HandMadeRun run;
    run.Add({"a", "right"}).Add({"b", "b"});
    run.List();
    run.App.FilesToDownload[0].Md5 = run.App.FilesToDownload[0].Md5.toLower();
    run.Complete("right");
    QCOMPARE(run.Logged(c_Md5, "a"), 1);
}

void VerificationTest::AnOldFileIsGoneAlsoWhenTheNewOneIsWrong()
{
    HandMadeRun run;
    run.Add({"a", "right"}).Add({"b", "b"}).Put("a", "old");
    run.List();
    run.Complete("wrong");
    QVERIFY(!run.Has("a"));
}

void VerificationTest::AFolderInPlaceOfTheFileIsReportedAndRestarted()
{
    HandMadeRun run;
    run.Add({"a", "right"}).Add({"b", "b"}).Put("a/inside", "of the user");
    run.List();
    run.Complete("right");
    QCOMPARE(run.Host.Errors().size(), 1);
    QString const error = run.Host.Errors().front();
    QString const beginning = "File " + run.Path("a") + " error : ";
    QVERIFY2(error.startsWith(beginning) && error.size() > beginning.size(), qPrintable(error));
    QCOMPARE(run.Host.ErrorFlags.load(), 0);
    QCOMPARE(run.Logged(c_Rename, "a"), 1);
    QCOMPARE(run.Listed(), QStringList({"a", "b", "a"}));
    QCOMPARE(run.Read("a/inside"), QByteArray("of the user"));
    QCOMPARE(run.Read("a.part"), QByteArray("right"));
}

void VerificationTest::AnOldFileThatCannotBeRemovedIsReported()
{
    VARNHOLT_AS_ORDINARY_USER();
    HandMadeRun run;
    run.Add({"Data/a", "right"}).Add({"b", "b"}).Put("Data/a", "old");
    run.List();
    run.Put("Data/a.part", "right");
    QVERIFY(QFile::setPermissions(run.Path("Data"), QFile::ReadOwner | QFile::ExeOwner));
    Launcher::HTTP_DownloadFileRequest request;
    run.Complete(request);
    QVERIFY(QFile::setPermissions(run.Path("Data"),
                                  QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    QCOMPARE(run.Host.Errors().filter("File " + run.Path("Data/a") + " error : ").size(), 1);
    QCOMPARE(run.Logged(c_Rename, "Data/a"), 1);
    QCOMPARE(run.Read("Data/a"), QByteArray("old"));
}

// Continued from its end it would be asked for in vain, and grow with a server without ranges.
void VerificationTest::AWrongPartThatCannotBeContinuedIsRemoved()
{
    HandMadeRun run;
    run.Add({"a", "right"}).Add({"b", "b"});
    run.List();
    run.Put("a.part", "wrong");
    Launcher::HTTP_DownloadFileRequest request;
    request.Continuable = false;
    run.Complete(request);
    QVERIFY(!run.Has("a.part"));
}

void VerificationTest::AWrongPartThatCanBeContinuedStays()
{
    HandMadeRun run;
    run.Add({"a", "right"}).Add({"b", "b"});
    run.List();
    run.Put("a.part", "rig");
    Launcher::HTTP_DownloadFileRequest request;
    request.Continuable = true;
    run.Complete(request);
    QCOMPARE(run.Logged(c_Md5, "a"), 1);
    QCOMPARE(run.Read("a.part"), QByteArray("rig"));
}

void VerificationTest::AStoppedHashIsAWrongDigestAndKeepsThePart()
{
    HandMadeRun run;
    QByteArray const bytes = SampleContent::Bytes(20000);
    run.Add({"a", bytes}).Add({"b", "b"});
    run.List();
    run.AnswerContinue([](int p_Question) { return p_Question <= 1; });
    run.Complete(bytes);
    QCOMPARE(run.Logged(c_Md5, "a"), 1);
    QCOMPARE(run.Read("a.part"), bytes);
    QVERIFY(!run.Has("a"));
}

void VerificationTest::ADigestFromTheArrivalIsTaken_data()
{
    QTest::addColumn<bool>("isTouched");
    QTest::addColumn<int>("answers");
    QTest::addColumn<bool>("isPlaced");
    QTest::newRow("for the bytes that lie there") << false << 99 << true;
    QTest::newRow("not when more was written") << true << 99 << false;
    QTest::newRow("not when it is stopped") << false << 1 << false;
}

/// What was hashed is told to be the right file, and is not: only who reads it again finds out.
void VerificationTest::ADigestFromTheArrivalIsTaken()
{
    QFETCH(bool, isTouched);
    QFETCH(int, answers);
    QFETCH(bool, isPlaced);
    HandMadeRun run;
    QByteArray const bytes = SampleContent::Bytes(20000);
    run.Add({"a", bytes}).Add({"b", "b"});
    run.List();
    QByteArray const wrong(20000, 'x');
    run.Put("a.part", wrong);
    QString const part = run.Path("a.part");
    Launcher::FollowingDigest follower(part);
    follower.Follow(wrong.size());
    Launcher::HTTP_DownloadFileRequest request;
    request.Digest = follower.CatchUp([] { return true; });
    QVERIFY(request.Digest);
    request.Digest->Md5 = SampleContent::Md5(bytes);
    if (isTouched)
        run.Put("a.part", wrong + "x");
    run.AnswerContinue([&](int p_Question) { return p_Question <= answers; });
    run.Complete(request);
    QCOMPARE(run.Has("a"), isPlaced);
    QCOMPARE(run.Logged(c_Md5, "a"), isPlaced ? 0 : 1);
}

void VerificationTest::PermissionsFollowTheFlags_data()
{
    QTest::addColumn<int>("flags");
    QTest::addColumn<int>("mode");
    QTest::newRow("none") << 0 << 0640;
    QTest::newRow("others") << 0xE4 << 0640;
    QTest::newRow("read-only") << 0x1 << 0444;
    QTest::newRow("executable") << 0x2 << 0777;
    QTest::newRow("read-only, then executable") << 0x3 << 0777;
}

// The modes are decimal numbers that spell octal ones: what stays is what the shell has read.
void VerificationTest::PermissionsFollowTheFlags()
{
    QFETCH(int, flags);
    QFETCH(int, mode);
    HandMadeRun run;
    run.Add({"a", "a", flags}).Add({"b", "b"});
    run.List();
    run.Put("a.part", "a");
    QVERIFY(QFile::setPermissions(run.Path("a.part"),
                                  QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup));
    Launcher::HTTP_DownloadFileRequest request;
    run.Complete(request);
    QCOMPARE(run.Read("a"), QByteArray("a"));
    QCOMPARE(run.Mode("a"), mode);
}

void VerificationTest::PermissionsReachNamesThatAShellReads()
{
    HandMadeRun run;
    QString const name = QString::fromUtf8("it's \"$HOME\" `b` \\ été.txt");
    run.Add({name, "a", 0x1}).Add({"b", "b"});
    run.List();
    run.Complete("a");
    QCOMPARE(run.Mode(name), 0444);
}

void VerificationTest::TheOldFilesPermissionsAreNotInherited()
{
    HandMadeRun run;
    run.Add({"a", "new"}).Add({"b", "b"}).Put("a", "old");
    run.List();
    run.Put("b.part", "");
    int const usual = run.Mode("b.part");
    QVERIFY(QFile::setPermissions(run.Path("a"), QFile::ReadOwner | QFile::ExeOwner));
    run.Complete("new");
    QCOMPARE(run.Mode("a"), usual);
}

void VerificationTest::WithoutAFolderNothingIsTouched()
{
    HandMadeRun run;
    run.Add({"a", "a"}).Add({"b", "b"});
    run.List();
    run.App.InstallationPath.clear();
    QString const before = QDir::currentPath();
    QVERIFY(QDir::setCurrent(run.Folder));
    run.Put("a", "of somebody else");
    run.Put("ToDownloadBase.db", "a\n");
    run.App.ProcessContentDownload();
    run.Host.RunPending();
    QDir::setCurrent(before);
    QVERIFY(run.App.CurrentDownload == nullptr);
    QCOMPARE(run.FilesOnDisk(), QStringList({"ToDownloadBase.db", "a"}));
    QCOMPARE(run.Read("a"), QByteArray("of somebody else"));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::VerificationTest)
#include "tst_Verification.moc"
