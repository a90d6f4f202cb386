#include "Tests/Hostile/OutsideTree.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QTemporaryDir>
#include <QtTest>

Q_DECLARE_METATYPE(std::function<bool(Varnholt::TestSupport::OutsideTree const&)>)

namespace Varnholt::TestSupport {

/// What the others rely on: nothing that is done to the tree goes unseen.
class OutsideTreeTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void NothingDoneIsNothingSeen();
    void AReadIsSeen_data();
    void AReadIsSeen();
    void AChangeIsSeen_data();
    void AChangeIsSeen();
};

void OutsideTreeTest::NothingDoneIsNothingSeen()
{
    QTemporaryDir folder;
    OutsideTree tree(folder.filePath("tree"));
    tree.Watch();
    QVERIFY(QFile::exists(tree.Path("file")));
    QVERIFY(!QFileInfo(tree.Path("deep")).canonicalFilePath().isEmpty());
    QCOMPARE(tree.Disturbances(), QStringList());
}

void OutsideTreeTest::AReadIsSeen_data()
{
    QTest::addColumn<QString>("Name");
    QTest::newRow("file") << "file";
    QTest::newRow("file of a folder") << "deep/below/file";
    QTest::newRow("folder") << "deep";
}

void OutsideTreeTest::AReadIsSeen()
{
    if (!AccessWatch::IsAble())
        QSKIP("this system does not tell of reads");
    QFETCH(QString, Name);
    QTemporaryDir folder;
    OutsideTree tree(folder.filePath("tree"));
    tree.Watch();
    if (QFileInfo(tree.Path(Name)).isDir())
        QVERIFY(!QDir(tree.Path(Name)).entryList().isEmpty());
    else
        QVERIFY(!ReadFile(tree.Path(Name)).isEmpty());
    QVERIFY(!tree.Disturbances().isEmpty());
}

void OutsideTreeTest::AChangeIsSeen_data()
{
    QTest::addColumn<std::function<bool(OutsideTree const&)>>("Do");
    using Change = std::function<bool(OutsideTree const&)>;
    QTest::newRow("bytes") << Change(
        [](OutsideTree const& p_Tree) { return WriteFile(p_Tree.Path("file"), "other"); });
    QTest::newRow("new file") << Change(
        [](OutsideTree const& p_Tree) { return WriteFile(p_Tree.Path("empty/new"), "new"); });
    QTest::newRow("mode") << Change(
        [](OutsideTree const& p_Tree) { return SetMode(p_Tree.Path("deep/below/file"), 0777); });
    QTest::newRow("mode of the folder itself")
        << Change([](OutsideTree const& p_Tree) { return SetMode(p_Tree.Path(), 0711); });
    QTest::newRow("removal") << Change(
        [](OutsideTree const& p_Tree) { return QFile::remove(p_Tree.Path("Config.wtf")); });
    QTest::newRow("removal of a folder")
        << Change([](OutsideTree const& p_Tree) { return QDir().rmdir(p_Tree.Path("empty")); });
    QTest::newRow("other name") << Change([](OutsideTree const& p_Tree) {
        return QFile::rename(p_Tree.Path("file"), p_Tree.Path("other"));
    });
}

void OutsideTreeTest::AChangeIsSeen()
{
    using Change = std::function<bool(OutsideTree const&)>;
    QFETCH(Change, Do);
    QTemporaryDir folder;
    OutsideTree tree(folder.filePath("tree"));
    tree.Watch();
    QVERIFY(Do(tree));
    QStringList const seen = tree.Disturbances();
    QVERIFY(!seen.isEmpty());
    // By looking alone, too.
    QVERIFY(seen.last().startsWith("so now: ") || seen.last().startsWith("not so any more: "));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::OutsideTreeTest)
#include "tst_OutsideTree.moc"
