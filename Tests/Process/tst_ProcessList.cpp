#include "Launcher/Helper/Process.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

namespace Varnholt::Launcher {

using Helper::Process::IsProcessListed;
using TestSupport::AddRow;

namespace {

QStringList const c_Names{"wow.exe", "wow-64.exe", "macos/world of warcraft"};

} // namespace

class ProcessListTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void FindsAGameOfTheFolder_data();
    void FindsAGameOfTheFolder();
    void TellsTheNormalisedLine();
    void TheLineIsLeftAloneWithoutAMatch();
    void TheFirstMatchingLineIsTold();
    void ANullLineChangesNothing();
    void WithoutNamesNothingMatches();
    void NothingButTheNameAndTheIdIsForTheLog_data();
    void NothingButTheNameAndTheIdIsForTheLog();
};

void ProcessListTest::FindsAGameOfTheFolder_data()
{
    QTest::addColumn<QString>("Line");
    QTest::addColumn<QString>("Folder");
    QTest::addColumn<bool>("Expected");

    AddRow("bundle",
           "u 1 /Games/Pelmora/World of Warcraft.app/Contents/MacOS/"
           "World of Warcraft -noautolaunch64bit",
           "/Games/Pelmora/", true);
    AddRow("Windows path", R"(u 1 "C:\Games\Pelmora\Wow-64.exe" -x)", "C:/Games/Pelmora/", true);
    AddRow("32 bits", "u 1 /games/wow.exe", "/games/", true);
    AddRow("letter case", "u 1 /GAMES/WOW-64.EXE", "/games/", true);
    AddRow("folder's letter case", "u 1 /games/wow-64.exe", "/GAMES/", true);
    AddRow("folder in the environment", "u 1 wow-64.exe PWD=/games/", "/games/", true);
    AddRow("quote inside the folder", R"(u 1 /ga"mes/wow-64.exe)", "/games/", true);

    AddRow("other folder", "u 1 /elsewhere/Wow-64.exe", "/games/", false);
    AddRow("other program", "u 1 /games/editor", "/games/", false);
    AddRow("empty line", "", "/games/", false);
    AddRow("nothing but blanks", "        ", " ", false);
    // The launchers' command lines carry the folder and the game's name too.
    AddRow("first launcher", "u 1 /games/QuorvelLauncher.exe wow-64.exe", "/games/", false);
    AddRow("second launcher", R"(u 1 C:\games\TESMIDLAUNCHER.EXE wow-64.exe)", "games/", false);
    // The line is normalised, the folder is not.
    AddRow("backslashes in the folder", R"(u 1 C:\games\wow-64.exe)", R"(C:\games\)", false);
    // A folder of nothing but blanks is searched for like any other.
    AddRow("folder of blanks", "u 1   wow-64.exe", "  ", true);
    AddRow("folder of blanks, not there", "u 1 wow-64.exe", "  ", false);
    // Below four characters a line is nothing; with four it is searched.
    AddRow("three characters", " abc ", "a", false);
}

void ProcessListTest::FindsAGameOfTheFolder()
{
    QFETCH(QString, Line);
    QFETCH(QString, Folder);
    QFETCH(bool, Expected);
    QString const list = "USER PID COMMAND\nroot 1 /sbin/init\n" + Line + "\nroot 9 ps auxwwwe\n";
    QCOMPARE(IsProcessListed(list, Folder, c_Names, nullptr), Expected);
    QCOMPARE(IsProcessListed(Line, Folder, c_Names, nullptr), Expected);
}

void ProcessListTest::TellsTheNormalisedLine()
{
    QString line = "before";
    QVERIFY(
        IsProcessListed("  U 1 \"C:\\Games\\Wow-64.exe\" -X \t\n", "c:/games/", c_Names, &line));
    QCOMPARE(line, QString("u 1 c:/games/wow-64.exe -x"));
}

void ProcessListTest::TheLineIsLeftAloneWithoutAMatch()
{
    QString line = "before";
    QVERIFY(!IsProcessListed("u 1 /games/editor\n", "/games/", c_Names, &line));
    QCOMPARE(line, QString("before"));
}

void ProcessListTest::TheFirstMatchingLineIsTold()
{
    QString line;
    QVERIFY(IsProcessListed("1 /games/editor\n2 /games/wow.exe\n3 /games/wow-64.exe\n", "/games/",
                            c_Names, &line));
    QCOMPARE(line, QString("2 /games/wow.exe"));
}

void ProcessListTest::ANullLineChangesNothing()
{
    QVERIFY(IsProcessListed("abcd", "a", {"abcd"}, nullptr));
    QVERIFY(!IsProcessListed("abc", "a", {"abc"}, nullptr));
}

void ProcessListTest::WithoutNamesNothingMatches()
{
    QVERIFY(!IsProcessListed("u 1 /games/wow.exe\n", "/games/", {}, nullptr));
}

void ProcessListTest::NothingButTheNameAndTheIdIsForTheLog_data()
{
    QTest::addColumn<QString>("Line");
    QTest::addColumn<QString>("Expected");
    AddRow("line of ps", "u   12 0.0 /games/wow-64.exe -x token=1", "wow-64.exe 12");
    AddRow("bundle", "u 12 /g/x.app/contents/macos/world of warcraft token=1",
           "macos/world of warcraft 12");
    AddRow("no number", "token=1 secret /games/wow.exe", "wow.exe");
    AddRow("no match", "u 12 /games/editor", "");
    AddRow("nothing", "", "");
}

void ProcessListTest::NothingButTheNameAndTheIdIsForTheLog()
{
    QFETCH(QString, Line);
    QTEST(Helper::Process::NameAndId(Line, c_Names), "Expected");
}

} // namespace Varnholt::Launcher

VARNHOLT_TEST(Varnholt::Launcher::ProcessListTest)
#include "tst_ProcessList.moc"
