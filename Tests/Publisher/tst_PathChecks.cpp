#include "GameModules/ManifestPaths.hpp"
#include "Publisher/Source/PathChecks.hpp"
#include "Tests/Publisher/FailureOf.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

namespace Varnholt::Publisher {

using TestSupport::AddRow;
using TestSupport::FailureOf;

namespace {

BuildFile File(char const* p_Path)
{
    BuildFile file;
    file.Source.Path = QString::fromUtf8(p_Path);
    return file;
}

} // namespace

class PathChecksTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void TakesOrdinaryPaths_data();
    void TakesOrdinaryPaths();
    void RefusesWhatClientsCannotTake_data();
    void RefusesWhatClientsCannotTake();
    void RefusesWhateverTheModuleDrops_data();
    void RefusesWhateverTheModuleDrops();
    void RefusesNamesThatLeaveNoRoomForThePartFile();
    void ANameThatIsShownHoldsNoControlCharacter();
    void FindsNamesThatAreOneWithoutLetterCase_data();
    void FindsNamesThatAreOneWithoutLetterCase();
    void RefusesWhatWindowsCannotHave_data();
    void RefusesWhatWindowsCannotHave();
    void DifferentFilesDoNotCollide();
};

void PathChecksTest::TakesOrdinaryPaths_data()
{
    QTest::addColumn<QByteArray>("path");
    for (char const* const path :
         {"a", "Data/a b.mpq", "Pandaria.app/Contents/MacOS/x", "Été/日本.txt", ".hidden",
          "a.partial", "part", "Data/ToDownload.db", "ToDownload.db.bak", "a..b/c", "100%?#.txt"})
        AddRow(path, QByteArray(path));
}

void PathChecksTest::TakesOrdinaryPaths()
{
    QFETCH(QByteArray, path);
    QCOMPARE(FailureOf([&] { PathChecks::CheckPath(path); }).Sentence, QString());
}

void PathChecksTest::RefusesWhatClientsCannotTake_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QString>("cause");
    QString const list = "clients keep a list of their own under this name";
    QString const part = "clients use names that end in \".part\" for unfinished files";
    QString const control = "the name holds a control character";
    QString const utf8 = "the name is not valid UTF-8";
    AddRow("base list", QByteArray("ToDownloadBase.db"), list);
    AddRow("streamed list", QByteArray("ToDownload.db"), list);
    AddRow("other list", QByteArray("ToDownloadCASC.db"), list);
    AddRow("lock", QByteArray(".Varnholt-Host.lock"),
           "clients lock the game folder by a file of this name");
    AddRow("list in other case", QByteArray("todownload.DB"), list);
    AddRow("part", QByteArray("Data/a.part"), part);
    AddRow("part in other case", QByteArray("Data/a.PART"), part);
    AddRow("line end", QByteArray("a\nb"), control);
    AddRow("delete", QByteArray("a\x7f"), control);
    AddRow("C1 control", QByteArray("a\xc2\x9b"), control);
    AddRow("Latin-1", QByteArray("\xe9t\xe9"), utf8);
    AddRow("cut sequence", QByteArray("a\xc3"), utf8);
    AddRow("surrogate", QByteArray("a\xed\xa0\x80"), utf8);
    AddRow("overlong", QByteArray("a\xc0\xaf"), utf8);
}

void PathChecksTest::RefusesWhatClientsCannotTake()
{
    QFETCH(QByteArray, path);
    QFETCH(QString, cause);
    QString const sentence = FailureOf([&] { PathChecks::CheckPath(path); }).Sentence;
    QVERIFY2(sentence.endsWith(": " + cause), qPrintable(sentence));
}

void PathChecksTest::RefusesWhateverTheModuleDrops_data()
{
    QTest::addColumn<QByteArray>("path");
    for (char const* const path : {"C:\\a", "c:", "\\a", "a\\..\\..\\b", "..\\a"})
        AddRow(path, QByteArray(path));
}

void PathChecksTest::RefusesWhateverTheModuleDrops()
{
    QFETCH(QByteArray, path);
    QVERIFY(!Launcher::ManifestPaths::IsInsideFolder(QString::fromUtf8(path)));
    QCOMPARE(FailureOf([&] { PathChecks::CheckPath(path); }).Sentence,
             QString::fromUtf8(path) +
                 ": clients drop the path, since it may lead out of the game folder");
}

void PathChecksTest::RefusesNamesThatLeaveNoRoomForThePartFile()
{
    auto const refused = [](QByteArray const& p_Path) {
        return FailureOf([&] { PathChecks::CheckPath(p_Path); })
            .Sentence.endsWith(": the name is too long for a client that appends \".part\" to it");
    };
    QVERIFY(!refused("Data/" + QByteArray(250, 'a')));
    QVERIFY(refused("Data/" + QByteArray(251, 'a')));
    QVERIFY(!refused(QByteArray("é").repeated(125)));
    QVERIFY(refused(QByteArray("é").repeated(126)));
    QVERIFY(!refused(QByteArray(255, 'a') + "/b"));
    QVERIFY(refused(QByteArray(256, 'a') + "/b"));
    QVERIFY(!refused(QByteArray("name/").repeated(203) + "abc"));
    QVERIFY(refused(QByteArray("name/").repeated(203) + "abcd"));
}

void PathChecksTest::ANameThatIsShownHoldsNoControlCharacter()
{
    QString const sentence = FailureOf([] { PathChecks::CheckPath("a\x1b[2Jb\n"); }).Sentence;
    QCOMPARE(sentence, QString("a?[2Jb?: the name holds a control character"));
}

void PathChecksTest::FindsNamesThatAreOneWithoutLetterCase_data()
{
    QTest::addColumn<QByteArray>("one");
    QTest::addColumn<QByteArray>("two");
    QTest::addColumn<QString>("start");
    auto const add = [](char const* p_Name, char const* p_One, char const* p_Two,
                        char const* p_Start) {
        AddRow(p_Name, QByteArray(p_One), QByteArray(p_Two), QString::fromUtf8(p_Start));
    };
    add("case of the name", "Data/a", "Data/A", "Data/a and Data/A differ");
    add("case of the folder", "Data/a", "DATA/a", "Data and DATA differ");
    add("case of the folder alone", "Data/a", "DATA/b", "Data and DATA differ");
    add("case of a folder further up", "a/b/c", "A/b/d", "a and A differ");
    add("accents", "\xc3\x89", "\xc3\xa9", "É and é differ");
    add("spelling of accents", "\xc3\xa9", "e\xcc\x81", "\xc3\xa9 and e\xcc\x81 differ");
    add("a folder beside a file", "data", "Data/a", "data and Data differ");
    add("a file beside a folder", "data/a", "Data", "data and Data differ");
    add("a folder deeper down", "x/a/B", "x/A/b/c/d", "x/a and x/A differ");
}

void PathChecksTest::FindsNamesThatAreOneWithoutLetterCase()
{
    QFETCH(QByteArray, one);
    QFETCH(QByteArray, two);
    QFETCH(QString, start);
    BuildFile const first = File(one);
    BuildFile const second = File(two);
    QString const sentence = FailureOf([&] {
                                 PathChecks::CheckCollisions({File("other"), first, second});
                             }).Sentence;
    QVERIFY2(sentence.startsWith(start), qPrintable(sentence));
    QVERIFY(!FailureOf([&] { PathChecks::CheckCollisions({second, first}); }).Sentence.isEmpty());
}

void PathChecksTest::RefusesWhatWindowsCannotHave_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("cause"); // null: it can have it
    auto const add = [](char const* p_Path, QString const& p_Cause) {
        AddRow(p_Path, QString::fromUtf8(p_Path), p_Cause);
    };
    QString const end = "drops a dot or a blank at the end of a name";
    for (char const* const path : {"a.", "a./b", "Data/a ", "Data /a"})
        add(path, end);
    for (char const character : {'<', '>', ':', '"', '|', '?', '*'}) {
        QByteArray const path = QByteArray("Data/a") + character + 'b';
        add(path.constData(), QString("has no names with \"%1\"").arg(QLatin1Char(character)));
    }
    for (char const* const name :
         {"CON", "prn", "Aux.txt", "nul.tar.gz", "COM1", "lpt9.x", "CON .a"})
        add(QByteArray(QByteArray("Data/") + name + "/b").constData(),
            QString("keeps the name \"%1\" for a device").arg(name));
    for (char const* const path :
         {"CONS", "a/com", "com10", "auxiliary", "a.con", "Data/a b", ".hidden", "a..b", "Été"})
        add(path, QString());
}

void PathChecksTest::RefusesWhatWindowsCannotHave()
{
    QFETCH(QString, path);
    QFETCH(QString, cause);
    QString const sentence =
        FailureOf([&] { PathChecks::CheckPlatform(path, ContentPlatform::Windows); }).Sentence;
    QCOMPARE(sentence, cause.isNull() ? QString() : path + ": Windows " + cause);
    QCOMPARE(FailureOf([&] { PathChecks::CheckPlatform(path, ContentPlatform::Mac); }).Sentence,
             QString());
}

void PathChecksTest::DifferentFilesDoNotCollide()
{
    QCOMPARE(FailureOf([] {
                 PathChecks::CheckCollisions({File("Data/a"), File("Data/b"), File("Data2/a"),
                                              File("a"), File("Data/é"), File("Data/e"),
                                              File("Datab")});
             }).Sentence,
             QString());
}

} // namespace Varnholt::Publisher

VARNHOLT_TEST(Varnholt::Publisher::PathChecksTest)
#include "tst_PathChecks.moc"
