#include "Publisher/Source/ParallelFor.hpp"
#include "Publisher/Tree/TreeMark.hpp"
#include "Publisher/Tree/TreeTransaction.hpp"
#include "Tests/Publisher/FailureOf.hpp"
#include "Tests/Publisher/PublishedGame.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QSet>
#include <QtTest>

#include <cerrno>
#include <mutex>

#ifdef Q_OS_LINUX
#include <sys/syscall.h>
#include <unistd.h>

static bool g_FlushFails = false;
static std::function<void()> g_OnFlush;

/// Takes the place of the system's.
extern "C" int syncfs(int p_File)
{
    if (g_OnFlush)
        g_OnFlush();
    if (!g_FlushFails)
        return static_cast<int>(::syscall(SYS_syncfs, p_File));
    errno = EIO;
    return -1;
}
#endif

namespace Varnholt::TestSupport {

using Publisher::TreeTransaction;

class TreeTransactionTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void CommitPutsEverythingInPlace();
    void NothingIsSeenBeforeTheCommit();
    void WithoutACommitNothingStays();
    void AFailedCommitBringsBackWhatWasReplaced();
    void AFailedCommitRemovesTheFoldersItMade();
    void ADiskThatDoesNotTakeWhatWasWrittenTakesEverythingBack();
    void NothingTakesTimeBetweenWhatGoesTogether();
    void ASecondTransactionIsRefusedAndHarmsNothing();
    void TheLockOfADeadProgramKeepsNobodyOut_data();
    void TheLockOfADeadProgramKeepsNobodyOut();
    void ATreeIsLockedByOneFileThatStays();
    void AFolderThatCannotBeLockedIsNamed();
    void NewFilesHaveNamesOfTheirOwn();

private:
    QString Path(QString const& p_Path) const { return Root + '/' + p_Path; }

    std::unique_ptr<QTemporaryDir> Folder;
    QString Root;
};

void TreeTransactionTest::init()
{
    Folder = std::make_unique<QTemporaryDir>();
    Root = Folder->filePath("deep/tree");
}

void TreeTransactionTest::CommitPutsEverythingInPlace()
{
    QVERIFY(WriteFile(Path("old"), "old"));
    TreeTransaction tree(Root);
    QString const file = tree.NewFile();
    QVERIFY(WriteFile(file, "written"));
    tree.Add(file, Path("a/b/written"));
    tree.AddText("text", Path("a/text"));
    tree.AddText("new", Path("old"));
    tree.Commit();
    Tree const expected{
        {"a/", {}}, {"a/b/", {}}, {"a/b/written", "written"}, {"a/text", "text"}, {"old", "new"}};
    QCOMPARE(ForClients(TreeOf(Root)), expected);
}

void TreeTransactionTest::NothingIsSeenBeforeTheCommit()
{
    QVERIFY(WriteFile(Path("old"), "old"));
    TreeTransaction tree(Root);
    tree.AddText("text", Path("a/text"));
    tree.AddText("new", Path("old"));
    QVERIFY(!QFileInfo::exists(Path("a")));
    QCOMPARE(ReadFile(Path("old")), QByteArray("old"));
}

void TreeTransactionTest::WithoutACommitNothingStays()
{
    {
        TreeTransaction tree(Root);
        QVERIFY(QFileInfo(Root).isDir());
        tree.AddText("text", Path("a/text"));
    }
    QCOMPARE(TreeOf(Folder->path()), Tree());
}

void TreeTransactionTest::AFailedCommitBringsBackWhatWasReplaced()
{
    QVERIFY(WriteFile(Path("old"), "old"));
    QVERIFY(WriteFile(Path("folder/inside"), "x"));
    Tree const before = TreeOf(Root);
    {
        TreeTransaction tree(Root);
        tree.AddText("new", Path("old"));
        tree.AddText("newer", Path("old"));
        tree.AddText("text", Path("new"));
        tree.AddText("in the way", Path("folder"));
        QCOMPARE(FailureOf([&] { tree.Commit(); }).Sentence,
                 Path("folder") + ": is not a file that can be replaced");
    }
    QCOMPARE(TreeOf(Root), before);
}

void TreeTransactionTest::AFailedCommitRemovesTheFoldersItMade()
{
    QVERIFY(WriteFile(Path("file"), "x"));
    Tree const before = TreeOf(Root);
    {
        TreeTransaction tree(Root);
        tree.AddText("text", Path("a/b/c/text"));
        tree.AddText("below a file", Path("file/text"));
        QCOMPARE(FailureOf([&] { tree.Commit(); }).Sentence, Path("file") + ": is not a folder");
    }
    QCOMPARE(TreeOf(Root), before);
}

void TreeTransactionTest::ADiskThatDoesNotTakeWhatWasWrittenTakesEverythingBack()
{
#ifndef Q_OS_LINUX
    QSKIP("this system's flush reports nothing");
#else
    QVERIFY(WriteFile(Path("old"), "old"));
    {
        TreeTransaction tree(Root);
        tree.AddText("new", Path("old"));
        g_FlushFails = true;
        QCOMPARE(FailureOf([&] { tree.Commit(); }).Sentence,
                 Root + ": what was written may not be on the disk: " + qt_error_string(EIO));
        g_FlushFails = false;
    }
    QCOMPARE(TreeOf(Root), (Tree{{"old", "old"}}));
#endif
}

void TreeTransactionTest::NothingTakesTimeBetweenWhatGoesTogether()
{
#ifndef Q_OS_LINUX
    QSKIP("this system's flush reports nothing");
#else
    QList<int> files; // in place whenever the disk is waited for
    g_OnFlush = [&] { files += static_cast<int>(ForClients(TreeOf(Root)).size()); };
    TreeTransaction tree(Root);
    tree.AddText("list", Path("list"));
    tree.AddTextWithNext("signature", Path("text.minisig"));
    tree.AddText("text", Path("text"));
    tree.Commit();
    g_OnFlush = {};
    QCOMPARE(files, QList<int>({0, 1, 3}));
#endif
}

void TreeTransactionTest::ASecondTransactionIsRefusedAndHarmsNothing()
{
    auto tree = std::make_unique<TreeTransaction>(Root);
    tree->AddText("text", Path("text"));
    QCOMPARE(FailureOf([this] { TreeTransaction const other(Root); }).Sentence,
             Root + QString(": another run is publishing there (tst_Publisher, process %1 on %2)")
                        .arg(QCoreApplication::applicationPid())
                        .arg(QSysInfo::machineHostName()));
    QVERIFY(QFile::exists(Path(".varnholt-publish.lock")));
    tree->Commit();
    QCOMPARE(ForClients(TreeOf(Root)), (Tree{{"text", "text"}}));
    QVERIFY(!FailureOf([this] { TreeTransaction const next(Root); }).Sentence.isNull());
    tree.reset();
    QCOMPARE(FailureOf([this] { TreeTransaction const next(Root); }).Sentence, QString());
}

void TreeTransactionTest::TheLockOfADeadProgramKeepsNobodyOut_data()
{
    QTest::addColumn<QByteArray>("lock");
    QTest::newRow("made and not written") << QByteArray("");
    QTest::newRow("of another machine") << QByteArray("varnholt-publish, process 1 on elsewhere\n");
}

void TreeTransactionTest::TheLockOfADeadProgramKeepsNobodyOut()
{
    QFETCH(QByteArray, lock);
    QVERIFY(WriteFile(Path(".varnholt-publish.lock"), lock));
    QVERIFY(WriteFile(Path(".varnholt-publish.new/0"), "remains"));
    TreeTransaction tree(Root);
    tree.AddText("text", Path("text"));
    tree.Commit();
    QCOMPARE(ForClients(TreeOf(Root)), (Tree{{"text", "text"}}));
}

void TreeTransactionTest::ATreeIsLockedByOneFileThatStays()
{
    QFileInfo const lock(Path(".varnholt-publish.lock"));
    QVERIFY(WriteFile(Publisher::TreeMark(Root).Path(), Publisher::TreeMark::Text()));
    {
        TreeTransaction const taken(Root);
        QVERIFY(lock.exists());
    }
    QVERIFY(QFile::exists(lock.filePath()));
    {
        TreeTransaction again(Root);
        again.AddText("text", Path("text"));
        again.Commit();
    }
    QVERIFY(QFile::exists(lock.filePath()));
}

void TreeTransactionTest::AFolderThatCannotBeLockedIsNamed()
{
    QVERIFY(WriteFile(Path("theirs"), "precious"));
    QVERIFY(QFile::link("theirs", Path(".varnholt-publish.lock")));
    QCOMPARE(FailureOf([this] { TreeTransaction const tree(Root); }).Sentence,
             Root + ": the output folder cannot be locked: " + qt_error_string(ELOOP));
    QCOMPARE(ReadFile(Path("theirs")), QByteArray("precious"));
}

void TreeTransactionTest::NewFilesHaveNamesOfTheirOwn()
{
    TreeTransaction tree(Root);
    std::mutex mutex;
    QSet<QString> names;
    Publisher::ParallelFor(200, [&](std::size_t) {
        QString const name = tree.NewFile();
        std::lock_guard const lock(mutex);
        names.insert(name);
    });
    QCOMPARE(names.size(), 200);
    for (QString const& name : qAsConst(names))
        QVERIFY(name.startsWith(Root + '/'));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::TreeTransactionTest)
#include "tst_TreeTransaction.moc"
