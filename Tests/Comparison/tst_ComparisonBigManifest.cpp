#include "GameModules/ManifestComparison.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QTemporaryDir>
#include <QtTest>

namespace Varnholt::TestSupport {

namespace {

using Launcher::ApplicationManifestFileEntry;
using Launcher::ManifestComparison;

constexpr int c_Entries = 200000;

} // namespace

/// What grows with the manifest grows no faster than it. Counted, not timed: a comparison asks
/// whether to go on before each piece of work.
class ComparisonBigManifestTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void EachEntryIsExaminedOnce();
    void AListThatNamesOneFileAgainAndAgainIsLinear_data();
    void AListThatNamesOneFileAgainAndAgainIsLinear();
    void ALongListIsLinear();

private:
    /// So many entries of so many paths.
    static ManifestComparison::Entries Entries(int p_Paths);

    std::unique_ptr<QTemporaryDir> Temporary;
    ManifestComparison Comparison;
    int Work = 0;
    int LooksAtLinks = 0;
};

void ComparisonBigManifestTest::init()
{
    Temporary = std::make_unique<QTemporaryDir>();
    QVERIFY(WriteFile(Temporary->filePath("0"), "there"));
    Work = LooksAtLinks = 0;
    Comparison.Folder = Temporary->path() + '/';
    Comparison.Continue = [this] { return ++Work <= 10 * c_Entries; }; // no test for hours
    Comparison.OnEntry = [](std::size_t) {};
    Comparison.IsBarred = [this](QString const&) { return ++LooksAtLinks < 0; };
}

ManifestComparison::Entries ComparisonBigManifestTest::Entries(int p_Paths)
{
    ManifestComparison::Entries entries(c_Entries);
    for (int i = 0; i < c_Entries; ++i) {
        entries[static_cast<std::size_t>(i)].Path = QString::number(i % p_Paths);
        entries[static_cast<std::size_t>(i)].Flags = ApplicationManifestFileEntry::KeepIfPresent;
    }
    return entries;
}

void ComparisonBigManifestTest::EachEntryIsExaminedOnce()
{
    QCOMPARE(Comparison.Examine(Entries(2)).Files.size(), std::size_t(c_Entries / 2));
    QVERIFY2(Work <= 2 * c_Entries, qPrintable(QString::number(Work)));
    QVERIFY2(LooksAtLinks <= c_Entries, qPrintable(QString::number(LooksAtLinks)));
}

void ComparisonBigManifestTest::AListThatNamesOneFileAgainAndAgainIsLinear_data()
{
    QTest::addColumn<QString>("Name");
    QTest::addColumn<int>("Found");
    QTest::newRow("that is there") << "0" << 0;
    QTest::newRow("that is missing") << "1" << c_Entries / 2;
    QTest::newRow("that is unknown") << "2" << 0;
}

void ComparisonBigManifestTest::AListThatNamesOneFileAgainAndAgainIsLinear()
{
    QFETCH(QString, Name);
    QFETCH(int, Found);
    QStringList paths;
    for (int i = 0; i < c_Entries; ++i)
        paths += Name;
    QCOMPARE(Comparison.LeftOver(Entries(2), paths, {}).size(), std::size_t(Found));
    QVERIFY2(Work <= 2 * c_Entries, qPrintable(QString::number(Work)));
}

void ComparisonBigManifestTest::ALongListIsLinear()
{
    QStringList paths;
    for (int i = 0; i < c_Entries; ++i)
        paths += QString::number(i);
    auto const entries = Entries(c_Entries);
    QCOMPARE(Comparison.LeftOver(entries, paths, {}).size(), std::size_t(c_Entries - 1));
    QCOMPARE(Comparison.Named(entries, paths).size(), std::size_t(c_Entries));
    QVERIFY2(Work <= 2 * c_Entries, qPrintable(QString::number(Work)));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::ComparisonBigManifestTest)
#include "tst_ComparisonBigManifest.moc"
