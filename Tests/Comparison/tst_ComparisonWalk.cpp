#include "Tests/Runs/Game.hpp"
#include "Tests/Support/OrdinaryUser.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QDir>
#include <QtTest>

namespace Varnholt::TestSupport {

namespace {

/// Runs the comparison of the base files and returns what it has found.
QStringList Compare(Game& p_Game, bool p_FirstBuild = true)
{
    p_Game.App.IsFirstManifestBuild = p_FirstBuild;
    p_Game.App.OnManifestReceived();
    p_Game.Host.RunNextAsync();
    return p_Game.Listed();
}

} // namespace

class ComparisonWalkTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void MissingAndDamagedFilesAreListedInManifestOrder();
    void ALowerCaseManifestDigestNeverMatches();
    void AFileOfTheChosenLocaleIsCompared();
    void PresenceIsEnoughForAFileThatTheGameRewrites();
    void ALaterBuildLooksAtNoFirstBuildOnlyFile();
    void AFolderInPlaceOfAFileIsListed();
    void AFileThatCannotBeReadIsListed();
    void AManifestWithoutFilesGoesOnToTheStreamedFiles();
    void ProgressCountsTheFilesRoundedDown();
    void ProgressCountsSkippedFilesToo();
    void TheListHoldsCopiesOfTheEntries();
    void TheListIsNotTouchedBeforeTheComparisonHasEnded();
};

void ComparisonWalkTest::MissingAndDamagedFilesAreListedInManifestOrder()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"z missing", "z"}).Add({"good", "g"}).Add({"damaged", "d"}).Add({"a missing", "a"});
    game.Publish().Install();
    game.Put("good", "g");
    game.Put("damaged", "D");
    QCOMPARE(Compare(game), QStringList({"z missing", "damaged", "a missing"}));
}

// The computed digest is upper-case, the manifest's is compared as it stands.
void ComparisonWalkTest::ALowerCaseManifestDigestNeverMatches()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"upper", "u"}).Add({"lower", "l"}).Publish().Install();
    QCOMPARE(game.App.Manifest.Files[0].Md5, game.App.Manifest.Files[0].Md5.toUpper());
    game.App.Manifest.Files[1].Md5 = game.App.Manifest.Files[1].Md5.toLower();
    game.Put("upper", "u");
    game.Put("lower", "l");
    QCOMPARE(Compare(game), QStringList("lower"));
}

void ComparisonWalkTest::AFileOfTheChosenLocaleIsCompared()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"every", "e"}).Add({"en", "e", 0, "enUS"}).Add({"fr", "f", 0, "frFR"});
    game.Publish().Install();
    game.Put("fr", "damaged");
    QCOMPARE(Compare(game), QStringList({"every", "en"}));
    game.Host.SetSetting("test_app.InstallLocale", "frFR");
    QCOMPARE(Compare(game), QStringList({"every", "fr"}));
}

// The game rewrites such files itself: hashing them would fetch them for ever.
void ComparisonWalkTest::PresenceIsEnoughForAFileThatTheGameRewrites()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"settings", SampleContent::Bytes(50000), 0x80}).Add({"missing", "m", 0x80});
    game.Publish().Install();
    game.Put("settings", "rewritten by the game");
    game.App.IsFirstManifestBuild = true;
    game.App.OnManifestReceived();
    int questions = 0;
    game.AnswerContinue([&](int p_Question) {
        questions = p_Question;
        return true;
    });
    QVERIFY(game.Host.RunNextAsync());
    QCOMPARE(game.Listed(), QStringList("missing"));
    QCOMPARE(questions, 3); // before each file, and for one size: no block was hashed
}

// Most of a game's bytes are in such files; hashing them at every start would take minutes.
void ComparisonWalkTest::ALaterBuildLooksAtNoFirstBuildOnlyFile()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"missing", "m", 0x20}).Add({"bad", "b", 0x20}).Add({"good", "g", 0x20});
    game.Add({"plain", "p"}).Publish().Install();
    game.Put("bad", "B");
    game.Put("good", "g");
    QCOMPARE(Compare(game, false), QStringList("plain"));
    QCOMPARE(Compare(game, true), QStringList({"missing", "bad", "plain"}));
}

void ComparisonWalkTest::AFolderInPlaceOfAFileIsListed()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"a", ""}).Publish().Install();
    QVERIFY(QDir().mkpath(game.Path("a")));
    QCOMPARE(Compare(game), QStringList("a"));
}

void ComparisonWalkTest::AFileThatCannotBeReadIsListed()
{
    VARNHOLT_AS_ORDINARY_USER();
    Game game(TestHost::Worker::ByHand);
    game.Add({"a", "a"}).Publish().Install();
    game.Put("a", "a");
    QVERIFY(QFile::setPermissions(game.Path("a"), {}));
    int const messages = game.Log.Texts().size();
    game.App.IsFirstManifestBuild = true;
    game.App.OnManifestReceived();
    QVERIFY(game.Host.RunNextAsync());
    QCOMPARE(game.Listed(), QStringList("a"));
    QCOMPARE(game.Log.Texts().size(), messages);
    QCOMPARE(game.Host.Errors(), QStringList());
}

void ComparisonWalkTest::AManifestWithoutFilesGoesOnToTheStreamedFiles()
{
    Game game(TestHost::Worker::ByHand);
    game.Publish().Install();
    game.App.OnManifestReceived();
    QCOMPARE(game.App.UISetting.Download.Total, quint64{0});
    QVERIFY(game.Host.RunNextAsync());
    QCOMPARE(game.App.UISetting.Download.Current, quint64{0});
    QCOMPARE(game.App.UISetting.Download.Mode, 5);
    QCOMPARE(game.Host.AsyncCount(), std::size_t{1});
    QVERIFY(!game.App.IsDownloadingBase);
    QCOMPARE(game.Host.StartingCount.load(), 0);
}

void ComparisonWalkTest::ProgressCountsTheFilesRoundedDown()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"a", "a"}).Add({"b", "b"}).Add({"c", "c"}).Publish().Install();
    for (char const* const file : {"a", "b", "c"})
        game.Put(file, file);
    game.App.OnManifestReceived();
    QStringList seen;
    game.AnswerContinue([&](int) {
        auto const& progress = game.App.UISetting.Download;
        QString const now = QString("%1:%2").arg(progress.Current).arg(progress.Percent);
        bool const raised = game.App.UISettingChanged.exchange(false);
        if (seen.isEmpty() || !seen.last().startsWith(now))
            seen += now + (raised ? " raised" : "");
        return true;
    });
    game.App.UISettingChanged = false;
    QVERIFY(game.Host.RunNextAsync());
    // Every value is seen while the file's only block is hashed; then the streamed files begin.
    QCOMPARE(seen, QStringList({"0:0", "1:33 raised", "2:66 raised", "3:100 raised"}));
}

void ComparisonWalkTest::ProgressCountsSkippedFilesToo()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"a", "a", 0x20}).Add({"b", "b", 0, "frFR"}).Add({"c", "c"}).Add({"d", "d", 0x20});
    game.Publish().Install();
    game.Host.DownloadBlocked = true;
    game.App.OnManifestReceived();
    QVERIFY(game.Host.RunNextAsync());
    QCOMPARE(game.Listed(), QStringList("c"));
    QCOMPARE(game.App.UISetting.Download.Current, quint64{4});
    QCOMPARE(game.App.UISetting.Download.Percent, 100u);
}

void ComparisonWalkTest::TheListHoldsCopiesOfTheEntries()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"a", "a", 0x41, "enUS"}).Publish().Install();
    QCOMPARE(Compare(game), QStringList("a"));
    auto const& entry = game.App.FilesToDownload.front();
    QCOMPARE(entry.Flags, 0x41);
    QCOMPARE(entry.Location, game.Content.Location("a"));
    QCOMPARE(entry.Md5, SampleContent::Md5("a"));
    QCOMPARE(entry.Locale, QString("enUS"));
    game.App.Manifest = {};
    QCOMPARE(game.Listed(), QStringList("a"));
}

// The application thread may ask for the list at any time while the worker compares.
void ComparisonWalkTest::TheListIsNotTouchedBeforeTheComparisonHasEnded()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"a", "a"}).Add({"b", "b"}).Add({"c", "c", 0x20}).Publish().Install();
    game.Put("ToDownloadBase.db", "c\n");
    game.App.OnManifestReceived();
    bool touched = false;
    game.AnswerContinue([&](int) {
        bool const ended =
            game.App.UISetting.Download.Mode != Launcher::ApplicationUISetting::ModeComparing;
        touched = touched || (!ended && !game.App.FilesToDownload.empty());
        return true;
    });
    QVERIFY(game.Host.RunNextAsync());
    QVERIFY(!touched);
    QCOMPARE(game.Listed(), QStringList({"a", "b", "c"}));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::ComparisonWalkTest)
#include "tst_ComparisonWalk.moc"
