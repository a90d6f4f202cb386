#include "Host/Core/Network/OfflineCopies.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QDir>
#include <QDirIterator>
#include <QTemporaryDir>
#include <QtTest>

namespace Varnholt::TestSupport {

using Host::OfflineCopies;

namespace {

std::string const c_Version = "app/version.json";
OfflineCopies::Documents const c_First{
    {c_Version, "one"}, {"app/builds/1/info.json", "manifest one"}, {"cdns.info", "a.example"}};
OfflineCopies::Documents const c_Second{
    {c_Version, "two"}, {"app/builds/2/info.json", "manifest two"}, {"cdns.info", "b.example"}};

} // namespace

/// What is kept for runs without a server.
class OfflineCopiesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void WhatIsKeptIsReadAgain();
    void NoPathLeadsOutOfTheFolder();
    void AnotherSetReplacesTheFormer();
    void AWriteThatFailsLeavesTheFormerSet_data();
    void AWriteThatFailsLeavesTheFormerSet();
    void WhatIsForgottenIsGone();
};

void OfflineCopiesTest::WhatIsKeptIsReadAgain()
{
    QTemporaryDir const folder;
    OfflineCopies const copies(folder.filePath("my.host.ini"));
    QVERIFY(copies.Read().empty());
    OfflineCopies::Documents documents = c_First;
    documents["app/builds/1%20%C3%A4/info.json"] = std::string("\0\xff\n", 3);
    documents["empty"] = "";
    QVERIFY(copies.Keep(documents, c_Version));
    QVERIFY(copies.Read() == documents);
    QCOMPARE(QDir(folder.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
             QStringList("my.host.offline"));
}

void OfflineCopiesTest::NoPathLeadsOutOfTheFolder()
{
    QTemporaryDir const folder;
    OfflineCopies const copies(folder.filePath("a/b/c/host.ini"));
    OfflineCopies::Documents documents = c_First;
    documents["app/builds/../../../../x/info.json"] = "outside";
    documents["/etc/x"] = "outside";
    copies.Keep(documents, c_Version);
    QStringList files;
    QDirIterator every(folder.path(), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (every.hasNext())
        files += QFileInfo(every.next()).path();
    files.removeDuplicates();
    QCOMPARE(files, QStringList(QDir::cleanPath(copies.Folder())));
}

void OfflineCopiesTest::AnotherSetReplacesTheFormer()
{
    QTemporaryDir const folder;
    OfflineCopies const copies(folder.filePath("host.ini"));
    QVERIFY(copies.Keep(c_First, c_Version));
    QVERIFY(WriteFile(copies.Folder() + "cdns.info.AbCdEf", "of one that was killed"));
    QVERIFY(copies.Keep(c_Second, c_Version));
    QVERIFY(copies.Read() == c_Second);
}

void OfflineCopiesTest::AWriteThatFailsLeavesTheFormerSet_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("the manifest") << "app%2Fbuilds%2F2%2Finfo.json";
    QTest::newRow("the version file") << "app%2Fversion.json";
}

/// A kill before a write leaves what its failure leaves.
void OfflineCopiesTest::AWriteThatFailsLeavesTheFormerSet()
{
    QFETCH(QString, name);
    QTemporaryDir const folder;
    OfflineCopies const copies(folder.filePath("host.ini"));
    QVERIFY(copies.Keep(c_First, c_Version));
    bool const isVersion = name.contains("version");
    if (isVersion) // a file is not replaced by a folder's name alone
        QVERIFY(QFile::rename(copies.Folder() + name, folder.filePath("aside")));
    QVERIFY(QDir().mkpath(copies.Folder() + name + "/in the way"));
    QVERIFY(!copies.Keep(c_Second, c_Version));
    QVERIFY(QDir(copies.Folder() + name).removeRecursively());
    if (isVersion)
        QVERIFY(QFile::rename(folder.filePath("aside"), copies.Folder() + name));
    OfflineCopies::Documents const left = copies.Read();
    QCOMPARE(left.at(c_Version), std::string("one"));
    QCOMPARE(left.at("app/builds/1/info.json"), std::string("manifest one"));
    QVERIFY(copies.Keep(c_Second, c_Version));
    QVERIFY(copies.Read() == c_Second);
}

void OfflineCopiesTest::WhatIsForgottenIsGone()
{
    QTemporaryDir const folder;
    OfflineCopies const copies(folder.filePath("host.ini"));
    copies.Forget();
    QVERIFY(copies.Keep(c_First, c_Version));
    copies.Forget();
    QVERIFY(copies.Read().empty());
    QVERIFY(!QFileInfo::exists(copies.Folder()));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::OfflineCopiesTest)
#include "tst_OfflineCopies.moc"
