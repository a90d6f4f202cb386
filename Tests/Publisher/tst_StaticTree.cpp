#include "Publisher/Serving/StaticTree.hpp"
#include "Tests/Publisher/FailureOf.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QTemporaryDir>
#include <QtTest>

namespace Varnholt::TestSupport {

using Publisher::StaticTree;

class StaticTreeTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void FindsFiles_data();
    void FindsFiles();
    void FindsNothingElse_data();
    void FindsNothingElse();
    void TheFolderMustExist();

private:
    QTemporaryDir Folder;
    QString Root;
};

void StaticTreeTest::initTestCase()
{
    Root = QFileInfo(Folder.path()).canonicalFilePath() + "/tree";
    for (char const* const path : {"tree/a", "tree/Data/b c", "tree/é", "tree/100%25", "tree/..a",
                                   "tree/.varnholt-publish.tree", "secret", "tree2/secret"})
        QVERIFY(WriteFile(Folder.filePath(QString::fromUtf8(path)), path));
    QVERIFY(QFile::link("a", Root + "/inside"));
    QVERIFY(QFile::link("../secret", Root + "/outside"));
    QVERIFY(QFile::link("../tree2", Root + "/beside"));
    QVERIFY(QFile::link("none", Root + "/nowhere"));
}

void StaticTreeTest::FindsFiles_data()
{
    QTest::addColumn<QByteArray>("request");
    QTest::addColumn<QString>("file");
    QTest::newRow("file") << QByteArray("/a") << "a";
    QTest::newRow("file in a folder") << QByteArray("/Data/b c") << "Data/b c";
    QTest::newRow("accent") << QByteArray("/é") << QString::fromUtf8("é");
    QTest::newRow("decoded once") << QByteArray("/100%25") << "100%25";
    QTest::newRow("two slashes") << QByteArray("//Data//b c") << "Data/b c";
    QTest::newRow("dots in a name") << QByteArray("/..a") << "..a";
    QTest::newRow("link inside") << QByteArray("/inside") << "a";
}

void StaticTreeTest::FindsFiles()
{
    QFETCH(QByteArray, request);
    QFETCH(QString, file);
    QCOMPARE(StaticTree(Root).FileOf(request), Root + '/' + file);
    QCOMPARE(StaticTree(Root + '/').FileOf(request), Root + '/' + file);
}

void StaticTreeTest::FindsNothingElse_data()
{
    QTest::addColumn<QByteArray>("request");
    for (char const* const request : {"",
                                      "/",
                                      "a",
                                      "/none",
                                      "/Data",
                                      "/Data/",
                                      "/A",
                                      "/..",
                                      "/../secret",
                                      "/../tree2/secret",
                                      "/Data/../a",
                                      "/Data/../../secret",
                                      "/Data/..",
                                      "/outside",
                                      "/beside/secret",
                                      "/nowhere",
                                      "/a/",
                                      "/a/b",
                                      "\\a",
                                      "/%61",
                                      "/.varnholt-publish.tree",
                                      "/./.varnholt-publish.tree"})
        QTest::newRow(qPrintable(QString("path %1").arg(request))) << QByteArray(request);
    QTest::newRow("absolute") << QByteArray("/") + Folder.filePath("secret").toUtf8();
    QTest::newRow("NUL") << QByteArray("/a\0", 3);
    QTest::newRow("not UTF-8") << QByteArray("/\xe9");
}

void StaticTreeTest::FindsNothingElse()
{
    QFETCH(QByteArray, request);
    QCOMPARE(StaticTree(Root).FileOf(request), QString());
}

void StaticTreeTest::TheFolderMustExist()
{
    for (QString const& root : {Folder.filePath("none"), Folder.filePath("secret")}) {
        QCOMPARE(FailureOf([&root] { StaticTree const tree(root); }).Sentence,
                 root + ": the folder to serve does not exist");
    }
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::StaticTreeTest)
#include "tst_StaticTree.moc"
