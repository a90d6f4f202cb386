#include "Tests/Runs/Game.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QDir>
#include <QtTest>

namespace Varnholt::TestSupport {

namespace {

QString const c_List = QStringLiteral("ToDownloadBase.db");

/// Runs the comparison of the base files and returns what it has found.
QStringList Compare(Game& p_Game, bool p_FirstBuild)
{
    p_Game.App.IsFirstManifestBuild = p_FirstBuild;
    p_Game.App.OnManifestReceived();
    p_Game.Host.RunNextAsync();
    return p_Game.Listed();
}

} // namespace

class ComparisonLeftOverTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void AFirstBuildRecordsFirstBuildOnlyFilesByteForByte();
    void ALaterBuildFetchesWhatItsListNames_data();
    void ALaterBuildFetchesWhatItsListNames();
    void AFirstBuildWithNothingToRecordWritesAnEmptyList();
    void AListThatCannotBeCreatedIsSilentlyNotWritten();
    void ALaterBuildTakesItsFilesFromTheListAndLeavesItAsItIs();
    void NamesWithBlanksAndAccentsAreFound();
    void AListThatIsMissingIsSilentlyIgnored();
    void AListThatCannotBeReadIsSilentlyIgnored();
    void AFirstBuildDoesNotReadTheList();
    void ALineTakesEveryEntryOfItsPath();
};

void ComparisonLeftOverTest::AFirstBuildRecordsFirstBuildOnlyFilesByteForByte()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({QString::fromUtf8("Données/z b"), "z", 0x20}).Add({"plain", "p"});
    game.Add({"good", "g", 0x20}).Add({"Data/a", "a", 0x21}).Add({"fr", "f", 0x20, "frFR"});
    game.Publish().Install();
    game.Put("good", "g");
    game.Put(c_List, "an older and longer list\nwith two lines and more letters\n");
    Compare(game, true);
    QCOMPARE(game.Read(c_List), QByteArray("Donn\xC3\xA9"
                                           "es/z b\nData/a\n"));
}

void ComparisonLeftOverTest::ALaterBuildFetchesWhatItsListNames_data()
{
    QTest::addColumn<QByteArray>("list");
    QTest::addColumn<QStringList>("fetched");
    auto const row = [](char const* p_Name, char const* p_List, QStringList const& p_Fetched) {
        QTest::newRow(p_Name) << QByteArray(p_List) << p_Fetched;
    };
    // The list says that a file has not been placed; looking at it would cost what it saves.
    row("a good file", "good\n", {"good"});
    row("one that every build looks at", "plain\n", {"plain"});
    row("of another language", "fr\n", {"fr"});
    row("that the game rewrites, only when missing", "there\nmissing\n", {"missing"});
    row("no file", "gone\n\nGOOD\n good\nstreamed\ngood\n../good\n", {"good"});
    row("twice", "good\ngood\n", {"good"});
}

void ComparisonLeftOverTest::ALaterBuildFetchesWhatItsListNames()
{
    QFETCH(QByteArray, list);
    Game game(TestHost::Worker::ByHand);
    game.Add({"good", "g", 0x20}).Add({"plain", "p"}).Add({"fr", "f", 0x20, "frFR"});
    game.Add({"there", "t", 0xA0}).Add({"missing", "m", 0xA0}).Add({"streamed", "s", 0, {}, true});
    game.Publish().Install();
    game.Put("good", "g");
    game.Put("plain", "p");
    game.Put("there", "rewritten");
    game.Put(c_List, list);
    QTEST(Compare(game, false), "fetched");
}

void ComparisonLeftOverTest::AFirstBuildWithNothingToRecordWritesAnEmptyList()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"a", "a"}).Publish().Install();
    game.Put(c_List, "old\n");
    QCOMPARE(Compare(game, true), QStringList("a"));
    QCOMPARE(game.Read(c_List), QByteArray(""));
}

void ComparisonLeftOverTest::AListThatCannotBeCreatedIsSilentlyNotWritten()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"a", "a", 0x20}).Publish().Install();
    QVERIFY(QDir().mkpath(game.Path(c_List + "/folder in its place")));
    int const messages = game.Log.Texts().size();
    QCOMPARE(Compare(game, true), QStringList("a"));
    QCOMPARE(game.Log.Texts().size(), messages);
    QCOMPARE(game.Host.Errors(), QStringList());
    QCOMPARE(game.Host.StartingCount.load(), 1);
}

void ComparisonLeftOverTest::ALaterBuildTakesItsFilesFromTheListAndLeavesItAsItIs()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"a", "a", 0x20}).Add({"b", "b", 0x20}).Add({"c", "c", 0x20}).Publish().Install();
    game.Put(c_List, "c\na\n");
    QCOMPARE(Compare(game, false), QStringList({"c", "a"}));
    QCOMPARE(game.Read(c_List), QByteArray("c\na\n"));
}

void ComparisonLeftOverTest::NamesWithBlanksAndAccentsAreFound()
{
    Game game(TestHost::Worker::ByHand);
    QString const name = QString::fromUtf8("Données/Été 1.MPQ ");
    game.Add({name, "a", 0x20}).Publish().Install();
    QCOMPARE(Compare(game, true), QStringList(name));
    QCOMPARE(Compare(game, false), QStringList(name));
}

void ComparisonLeftOverTest::AListThatIsMissingIsSilentlyIgnored()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"a", "a", 0x20}).Add({"b", "b"}).Publish().Install();
    QCOMPARE(Compare(game, false), QStringList("b"));
    QVERIFY(!game.Has(c_List));
}

void ComparisonLeftOverTest::AListThatCannotBeReadIsSilentlyIgnored()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"a", "a", 0x20}).Add({"b", "b"}).Publish().Install();
    QVERIFY(QDir().mkpath(game.Path(c_List)));
    int const messages = game.Log.Texts().size();
    QCOMPARE(Compare(game, false), QStringList("b"));
    QCOMPARE(game.Log.Texts().size(), messages);
    QCOMPARE(game.Host.Errors(), QStringList());
}

void ComparisonLeftOverTest::AFirstBuildDoesNotReadTheList()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"good", "g", 0x20}).Publish().Install();
    game.Put("good", "g");
    game.Put(c_List, "good\n");
    QVERIFY(Compare(game, true).isEmpty());
}

void ComparisonLeftOverTest::ALineTakesEveryEntryOfItsPath()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"a", "first", 0x20, "enUS"}).Add({"b", "b", 0x20}).Add({"a", "second", 0x20, "frFR"});
    game.Publish().Install();
    game.Put(c_List, "a\na\n");
    QCOMPARE(Compare(game, false), QStringList({"a", "a"}));
    QCOMPARE(game.App.FilesToDownload[0].Locale, QString("enUS"));
    QCOMPARE(game.App.FilesToDownload[1].Locale, QString("frFR"));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::ComparisonLeftOverTest)
#include "tst_ComparisonLeftOver.moc"
