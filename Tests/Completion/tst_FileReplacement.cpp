#include "GameModules/FileReplacement.hpp"
#include "GameModules/PendingList.hpp"
#include "GameModules/TextFilePatch.hpp"
#include "Tests/Support/FileSizeLimit.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/FileWatch.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QTemporaryDir>
#include <QtTest>

namespace Varnholt::TestSupport {

namespace {

namespace FileReplacement = Launcher::FileReplacement;

constexpr rlim_t c_Room = 4096;
/// More than there is room for, and few enough to be buffered.
QByteArray const c_New(6000, 'n');

} // namespace

/// Small files are replaced as a whole or not at all.
class FileReplacementTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void TheNewContentStandsThereAlone();
    void ItsOwnContentIsNotWritten();
    void AFileThatDoesNotFitStaysAsItWas();
    void ANewFileThatDoesNotFitIsNotMade();
    void WhatAKilledProcessLeftIsTakenAway();
    void TheNewFileIsAsPrivateAsTheOldOne();
    void AListThatDoesNotFitStaysAsItWas();
    void AConfigurationThatDoesNotFitStaysAsItWas();

private:
    QStringList Names() const
    {
        return QDir(Folder->path())
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }

    std::unique_ptr<QTemporaryDir> Folder;
    QString Path;
};

void FileReplacementTest::init()
{
    Folder = std::make_unique<QTemporaryDir>();
    Path = Folder->filePath("file");
}

void FileReplacementTest::TheNewContentStandsThereAlone()
{
    QVERIFY(WriteFile(Path, "old, and longer than the new one"));
    QVERIFY(FileReplacement::Replace(Path, "new"));
    QCOMPARE(ReadFile(Path), QByteArray("new"));
    QVERIFY(FileReplacement::Replace(Path, c_New));
    QCOMPARE(ReadFile(Path), c_New);
    QCOMPARE(Names(), QStringList("file"));
}

void FileReplacementTest::ItsOwnContentIsNotWritten()
{
    for (QByteArray const& content : {QByteArray(), QByteArray("the same"), c_New}) {
        QVERIFY(WriteFile(Path, content));
        FileWatch const watch(Path);
        FileSizeLimit const limit(0);
        QVERIFY(FileReplacement::Replace(Path, content));
        QVERIFY(watch.IsUntouched());
    }
    // As long, and another.
    QVERIFY(FileReplacement::Replace(Path, QByteArray(c_New).replace(5999, 1, "x")));
    QCOMPARE(ReadFile(Path).right(2), QByteArray("nx"));
}

void FileReplacementTest::AFileThatDoesNotFitStaysAsItWas()
{
    QVERIFY(WriteFile(Path, "old"));
    FileSizeLimit const limit(c_Room);
    QVERIFY(!FileReplacement::Replace(Path, c_New));
    QCOMPARE(ReadFile(Path), QByteArray("old"));
    QCOMPARE(Names(), QStringList("file"));
}

void FileReplacementTest::ANewFileThatDoesNotFitIsNotMade()
{
    FileSizeLimit const limit(c_Room);
    QVERIFY(!FileReplacement::Replace(Path, c_New));
    QCOMPARE(Names(), QStringList());
}

void FileReplacementTest::WhatAKilledProcessLeftIsTakenAway()
{
    QVERIFY(WriteFile(Path, "old"));
    QVERIFY(WriteFile(Path + FileReplacement::c_Suffix, "half of someth"));
    QVERIFY(FileReplacement::Replace(Path, "new"));
    QCOMPARE(ReadFile(Path), QByteArray("new"));
    QCOMPARE(Names(), QStringList("file"));
}

void FileReplacementTest::TheNewFileIsAsPrivateAsTheOldOne()
{
    QVERIFY(WriteFile(Path, "old"));
    QVERIFY(SetMode(Path, 0600));
    QVERIFY(FileReplacement::Replace(Path, "new"));
    QCOMPARE(ModeOf(Path), 0600);
    QVERIFY(QFile::remove(Path));
    mode_t const before = umask(027);
    QVERIFY(FileReplacement::Replace(Path, "new"));
    umask(before);
    QCOMPARE(ModeOf(Path), 0640);
}

void FileReplacementTest::AListThatDoesNotFitStaysAsItWas()
{
    QVERIFY(WriteFile(Path, "a\n"));
    FileSizeLimit const limit(c_Room);
    QVERIFY(!Launcher::PendingList::Write(Path, {"a", QString::fromLatin1(c_New)}));
    QCOMPARE(ReadFile(Path), QByteArray("a\n"));
}

void FileReplacementTest::AConfigurationThatDoesNotFitStaysAsItWas()
{
    QByteArray const before = "SET own \"1\"\n" + c_New + "\n";
    QVERIFY(WriteFile(Path, before));
    FileSizeLimit const limit(c_Room);
    Launcher::TextFilePatch::Apply(Path, "locale", "SET locale \"enUS\"", true);
    QCOMPARE(ReadFile(Path), before);
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::FileReplacementTest)
#include "tst_FileReplacement.moc"
