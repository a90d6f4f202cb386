#include "Publisher/Rules/GlobPattern.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

namespace Varnholt::Publisher {

using TestSupport::AddRow;

class GlobPatternTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void Matches_data();
    void Matches();
    void ManyStarsTakeNoExponentialTime();
    void NamesWhatNeverMatches_data();
    void NamesWhatNeverMatches();
};

void GlobPatternTest::Matches_data()
{
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("matches");
    auto const add = [](char const* p_Pattern, char const* p_Path, bool p_Matches) {
        QTest::addRow("%s on %s", p_Pattern, p_Path)
            << QString::fromUtf8(p_Pattern) << QString::fromUtf8(p_Path) << p_Matches;
    };
    add("Data/a", "Data/a", true);
    add("Data/a", "data/a", false);
    add("Data/a", "Data/ab", false);
    add("Data/a", "x/Data/a", false);
    add("Data", "Data/a", false);
    add("a?c", "abc", true);
    add("a?c", "ac", false);
    add("a?c", "a/c", false);
    add("?", "é", true);
    add("?", "😀", true);
    add("*.mpq", "a.mpq", true);
    add("*.mpq", ".mpq", true);
    add("*.mpq", "Data/a.mpq", false);
    add("*.mpq", "a.mpq.bak", false);
    add("Data/*/x", "Data/a/x", true);
    add("Data/*/x", "Data/x", false);
    add("Data/*/x", "Data/a/b/x", false);
    add("a*b*c", "a--b--b-c", true);
    add("a*b*c", "a--c--b", false);
    add("**", "a/b/c", true);
    add("Data/**", "Data/a", true);
    add("Data/**", "Data/a/b", true);
    add("Data/**", "Data", false);
    add("Data/**", "Database/a", false);
    add("**/name", "name", true);
    add("**/name", "a/name", true);
    add("**/name", "a/b/name", true);
    add("**/name", "aname", false);
    add("**/name", "a/bname", false);
    add("a/**/b", "a/b", true);
    add("a/**/b", "a/x/b", true);
    add("a/**/b", "a/x/y/b", true);
    add("a/**/b", "a/xb", false);
    add("a/**/b", "ab", false);
    add("a/**/**/b", "a/b", true);
    add("a**b", "ab", true);
    add("a**b", "a/x/b", true);
    add("***", "a/b", true);
    add("**/a/*b", "a/c/a/xb", true);
    add("**/a*/b/c", "a1/b/a2/b/c", true);
    add("**/a*/b/c", "a1/b/a2/bc", false);
    add("a**/b", "ax/y/b", true);
    add("a**/b", "b", false);
    add("*?b", "😀b", true);
    add("*??b", "😀b", false);
    add("a*", "a", true);
    add("a*", "a/b", false);
    add("a/**/*.x/c", "a/1.x/2.x/c", true);
    add("**x**y", "a/x/b/xy/y", true);
    add("**x**y", "a/x/b/x", false);
    add("**/*.mpq", "Data/x/a.mpq", true);
    add("**/*.mpq", "Data/x.mpq/a", false);
    add("[ab].txt", "[ab].txt", true);
    add("[ab].txt", "a.txt", false);
    add("a.c", "abc", false);
    add("a\\*", "a\\b", true);
}

void GlobPatternTest::Matches()
{
    QFETCH(QString, pattern);
    QFETCH(QString, path);
    QFETCH(bool, matches);
    QCOMPARE(GlobPattern(pattern).Matches(path), matches);
}

/// Ends for good only when the time does not double with each star.
void GlobPatternTest::ManyStarsTakeNoExponentialTime()
{
    QString const path(5000, 'a');
    QVERIFY(!GlobPattern(QString("*a").repeated(60) + "b").Matches(path));
    QVERIFY(!GlobPattern(QString("**/").repeated(60) + "b").Matches(QString("a/").repeated(2500)));
    QVERIFY(GlobPattern(QString("*a").repeated(60)).Matches(path));
}

void GlobPatternTest::NamesWhatNeverMatches_data()
{
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<QString>("start");
    AddRow("empty", "", "is empty");
    AddRow("absolute", "/Data/a", "starts with \"/\"");
    AddRow("a folder", "Data/", "ends with \"/\"");
    AddRow("usable", "Data/**", "");
}

void GlobPatternTest::NamesWhatNeverMatches()
{
    QFETCH(QString, pattern);
    QFETCH(QString, start);
    QString const problem = GlobPattern::Problem(pattern);
    QCOMPARE(problem.isEmpty(), start.isEmpty());
    QCOMPARE(problem.left(start.size()), start);
}

} // namespace Varnholt::Publisher

VARNHOLT_TEST(Varnholt::Publisher::GlobPatternTest)
#include "tst_GlobPattern.moc"
