#include "GameModules/ManifestPaths.hpp"
#include "Tests/Support/LogCapture.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

namespace Varnholt::Launcher {

class ManifestPathsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void KnowsWhatLiesInsideTheFolder_data();
    void KnowsWhatLiesInsideTheFolder();
    void KnowsWhatIsTooLong_data();
    void KnowsWhatIsTooLong();
    void DropsUnsafeEntriesOfBothListsWithOneWarningEach();
    void TheWarningTellsWhatIsWrong();
};

void ManifestPathsTest::KnowsWhatLiesInsideTheFolder_data()
{
    QTest::addColumn<QString>("Path");
    QTest::addColumn<bool>("Inside");
    for (char const* const path : {"a", "Data/a.mpq", "a/../b", "./a", "..a", "a..", "...", ".a",
                                   "a b", "a//b", "World of Warcraft.app/Contents/MacOS/x"})
        QTest::newRow(path) << QString(path) << true;
    for (char const* const path :
         {"", ".", "..", "./", "/", "/etc/passwd", "//a", "../a", "a/../../b", "a/..", "./../a",
          "\\a", "..\\a", "a\\..\\..\\b", "C:\\a", "c:/a", "C:", "Data/../../x"})
        QTest::newRow(qPrintable(QString("outside: %1").arg(path))) << QString(path) << false;
    // A file name of the system's drops the half that is last.
    QString const half(QChar(0xd800));
    QTest::newRow("half a character") << half << false;
    QTest::newRow("half a character behind dots") << ".." + half << false;
    QTest::newRow("half a character inside") << "a" + half + "b" << false;
    QTest::newRow("whole character of two halves") << QString::fromUtf8("\xf0\x9f\x8e\xae") << true;
    QTest::newRow("NUL inside") << QString("a") + QChar(QChar::Null) + "b" << false;
}

void ManifestPathsTest::KnowsWhatLiesInsideTheFolder()
{
    QFETCH(QString, Path);
    QFETCH(bool, Inside);
    QCOMPARE(ManifestPaths::IsInsideFolder(Path), Inside);
}

void ManifestPathsTest::KnowsWhatIsTooLong_data()
{
    QTest::addColumn<QString>("Path");
    QTest::addColumn<bool>("TooLong");
    QString const name(255, QChar('a'));
    QString const folders = (name + '/').repeated(3);
    QTest::newRow("name") << name << false;
    QTest::newRow("name, one more") << name + 'b' << true;
    QTest::newRow("name in between") << "x/" + name + "/y" << false;
    QTest::newRow("name in between, one more") << "x/" + name + "b/y" << true;
    // Two bytes each.
    QTest::newRow("name of letters with accents") << QString(128, QChar(0xe9)) << true;
    QTest::newRow("path") << folders + name << false;
    QTest::newRow("path, one more") << folders + name + '/' << true;
    QTest::newRow("path of letters with accents")
        << (QString(127, QChar(0xe9)) + '/').repeated(5) << true;
    QTest::newRow("nothing") << "" << false;
    // What looks at them part by part, or again from the beginning for each, would not end.
    QTest::newRow("a million slashes") << "a" + QString(1000000, QChar('/')) + "b" << true;
    QTest::newRow("half a million folders") << QString("a/").repeated(500000) << true;
    QTest::newRow("half a million steps back") << QString("a/../").repeated(500000) + "b" << true;
}

void ManifestPathsTest::KnowsWhatIsTooLong()
{
    QFETCH(QString, Path);
    QTEST(ManifestPaths::IsTooLong(Path), "TooLong");
    if (!Path.isEmpty())
        QVERIFY(ManifestPaths::IsInsideFolder(Path));
}

void ManifestPathsTest::DropsUnsafeEntriesOfBothListsWithOneWarningEach()
{
    auto const entry = [](QString const& p_Path) {
        ApplicationManifestFileEntry made;
        made.Path = p_Path;
        return made;
    };
    ApplicationManifest manifest;
    manifest.Files = {entry("/etc/x"), entry("a"), entry("../b"), entry("c")};
    manifest.StreamedFiles = {entry(""), entry("d")};

    TestSupport::LogCapture const log;
    ManifestPaths::DropUnsafeEntries(manifest);
    QCOMPARE(manifest.Files.size(), std::size_t{2});
    QCOMPARE(manifest.Files[0].Path, QString("a"));
    QCOMPARE(manifest.Files[1].Path, QString("c"));
    QCOMPARE(manifest.StreamedFiles.size(), std::size_t{1});
    QCOMPARE(log.Messages().size(), std::size_t{3});
    QCOMPARE(log.CountContaining("\"/etc/x\""), 1);
    QCOMPARE(log.CountContaining("\"../b\""), 1);
    QCOMPARE(log.Messages().front().Type, QtWarningMsg);
    QCOMPARE(log.Messages().front().Category, QString("varnholt.startup"));
}

void ManifestPathsTest::TheWarningTellsWhatIsWrong()
{
    ApplicationManifest manifest;
    manifest.Files.resize(2);
    manifest.Files[0].Path = "../a";
    manifest.Files[1].Path = QString(256, QChar('a'));
    TestSupport::LogCapture const log;
    ManifestPaths::DropUnsafeEntries(manifest);
    QString const text = "Manifest entry dropped, its path %1: \"%2\"";
    QCOMPARE(log.Texts(), QStringList({text.arg("leaves the game folder", "../a"),
                                       text.arg("is too long", QString(256, QChar('a')))}));
}

} // namespace Varnholt::Launcher

VARNHOLT_TEST(Varnholt::Launcher::ManifestPathsTest)
#include "tst_ManifestPaths.moc"
