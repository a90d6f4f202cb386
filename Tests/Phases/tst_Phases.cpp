#include "Tests/Runs/Game.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

#include <algorithm>
#include <cstdlib>

namespace Varnholt::TestSupport {

namespace {

/// Makes the server wait in the body of a file, behind the answer to the size query.
void HoldFile(Game& p_Game, QString const& p_File, int p_Bytes = 0)
{
    p_Game.Server.Script(p_Game.Content.ServerPath(p_File))
        .Then(Answer::Normal())
        .Then(Answer::SilentAfter(p_Bytes));
}

/// True for a text whose characters are part of the program, so that they are never freed.
bool IsLiteral(QString p_Text)
{
    return p_Text.data_ptr()->ref.isStatic();
}

} // namespace

class PhasesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void BaseFilesAreShownAndFetchedFirst();
    void StreamedFilesAreShownAndFetchedNext();
    void RequestsComeInTheOrderOfTheRun();
    void OneFileIsInFlightAtATime();
    void TheEndIsShownAndTold();
    void APhaseWithNothingToFetchIsSkipped();
    void AnEmptyBaseListGoesOnWithTheStreamedFiles();
    void AnEmptyStreamedListEndsTheRun();
    void AMirrorIsDrawnForEveryFile();
    void TextsThatTheWorkerWritesAreLiterals();
    void TheFirstFileStartsFromTheQueue();
};

void PhasesTest::BaseFilesAreShownAndFetchedFirst()
{
    Game game;
    game.Add({"a", QByteArray(3000, 'a')}).Add({"b", "b"}).Add({"s", "s", 0, {}, true});
    HoldFile(game, "a", 1000);
    game.App.CurrentDownloadIndex = 9;
    game.App.DownloadedBytes = 9;
    game.Begin();
    QVERIFY(game.RunUntilPart("a", 1000));
    auto const& progress = game.App.UISetting.Download;
    QCOMPARE(game.App.UISetting.State, 2);
    QCOMPARE(progress.Mode, 3);
    QCOMPARE(progress.ModeFlag, true);
    QCOMPARE(progress.DetailText, QString("Downloading base files..."));
    QCOMPARE(progress.Total, quint64{3001});
    QCOMPARE(game.App.CurrentDownloadIndex, 0u);
    QCOMPARE(game.App.DownloadedBytes, quint64{0});
    QVERIFY(game.App.IsDownloadingBase);
    game.Server.OpenGate(game.Content.ServerPath("a"));
    QVERIFY(game.Finish());
}

void PhasesTest::StreamedFilesAreShownAndFetchedNext()
{
    Game game;
    game.Add({"a", "a"}).Add({"s", QByteArray(500, 's'), 0, {}, true});
    HoldFile(game, "s", 100);
    game.Begin();
    QVERIFY(game.RunUntilPart("s", 100));
    auto const& progress = game.App.UISetting.Download;
    QCOMPARE(game.Read("a"), QByteArray("a"));
    QCOMPARE(progress.Mode, 3);
    QCOMPARE(progress.ModeFlag, true);
    QCOMPARE(progress.DetailText, QString("Downloading streammed files..."));
    QCOMPARE(progress.Total, quint64{500});
    QCOMPARE(game.App.CurrentDownloadIndex, 0u);
    QCOMPARE(game.App.DownloadedBytes, quint64{0});
    QVERIFY(!game.App.IsDownloadingBase);
    QCOMPARE(game.Host.FinishedCount.load(), 0);
    game.Server.OpenGate(game.Content.ServerPath("s"));
    QVERIFY(game.Finish());
    QCOMPARE(game.Host.FinishedCount.load(), 1);
}

void PhasesTest::RequestsComeInTheOrderOfTheRun()
{
    Game game;
    game.Add({"s2", "s2", 0, {}, true}).Add({"b2", "b2"}).Add({"b1", "b1"});
    game.Add({"s1", "s1", 0, {}, true}).Begin();
    QVERIFY(game.Finish());
    QStringList const requested = game.Requested();
    QCOMPARE(requested.size(), 8);
    QStringList baseSizes = requested.mid(0, 2);
    QStringList streamedSizes = requested.mid(4, 2);
    baseSizes.sort();
    streamedSizes.sort();
    QCOMPARE(baseSizes, QStringList({"b1", "b2"}));
    QCOMPARE(requested.mid(2, 2), QStringList({"b2", "b1"}));
    QCOMPARE(streamedSizes, QStringList({"s1", "s2"}));
    QCOMPARE(requested.mid(6, 2), QStringList({"s2", "s1"}));
}

void PhasesTest::OneFileIsInFlightAtATime()
{
    Game game;
    game.Add({"a", QByteArray(100, 'a')}).Add({"b", "b"}).Add({"c", "c"});
    HoldFile(game, "a", 10);
    game.Begin();
    QVERIFY(game.RunUntilPart("a", 10));
    auto* const first = game.App.CurrentDownload;
    game.Host.RunPending();
    QCOMPARE(game.Requested().size(), 4); // three sizes and the file
    QCOMPARE(game.App.CurrentDownload, first);
    game.Server.OpenGate(game.Content.ServerPath("a"));
    QVERIFY(game.Finish());
    QCOMPARE(game.Requested().mid(3), QStringList({"a", "b", "c"}));
}

void PhasesTest::TheEndIsShownAndTold()
{
    Game game;
    game.Add({"a", "aa"}).Add({"s", "sss", 0, {}, true});
    auto const& progress = game.App.UISetting.Download;
    QString textWhenTold;
    game.Host.OnDownloadFinished = [&] {
        textWhenTold = progress.DetailText;
        game.App.UISettingChanged = false;
    };
    game.Begin();
    QVERIFY(game.Finish());
    QCOMPARE(game.Host.FinishedCount.load(), 1);
    QCOMPARE(textWhenTold, QString("Downloading streammed files..."));
    QCOMPARE(game.App.UISetting.State, 2);
    QCOMPARE(progress.StatusFlags, 0u);
    QCOMPARE(progress.StatusFlag, false);
    QCOMPARE(progress.ModeFlag, false);
    QCOMPARE(progress.DetailText, QString(""));
    QCOMPARE(progress.Current, quint64{3});
    QCOMPARE(progress.Percent, 100u);
    QVERIFY(game.App.UISettingChanged);
    QVERIFY(game.App.CurrentDownload == nullptr);
    QVERIFY(game.Listed().isEmpty());
    QCOMPARE(game.Host.Errors(), QStringList());
}

void PhasesTest::APhaseWithNothingToFetchIsSkipped()
{
    Game game;
    game.Add({"a", "a"}).Add({"s", "s", 0, {}, true});
    game.Put("a", "a");
    game.Begin();
    QVERIFY(game.Finish());
    QCOMPARE(game.Requested(), QStringList({"s", "s"}));
    QCOMPARE(game.Host.FinishedCount.load(), 1);
    QVERIFY(QFile::remove(game.Path("a")));
    game.App.Repair();
    QVERIFY(game.Finish());
    QCOMPARE(game.Requested(), QStringList({"s", "s", "a", "a"}));
    // Without streamed files to fetch the host is not told: the module only falls silent.
    QCOMPARE(game.Host.FinishedCount.load(), 1);
}

void PhasesTest::AnEmptyBaseListGoesOnWithTheStreamedFiles()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"s", "s", 0, {}, true}).Publish().Install();
    game.App.GetInstallationPath();
    game.App.IsFirstManifestBuild = true;
    game.App.UISettingChanged = false;
    game.App.ProcessContentDownload();
    QVERIFY(game.App.UISettingChanged);
    QCOMPARE(game.App.UISetting.Download.Mode, 5);
    QVERIFY(game.Host.RunNextAsync());
    QCOMPARE(game.Listed(), QStringList("s"));
}

void PhasesTest::AnEmptyStreamedListEndsTheRun()
{
    Game game(TestHost::Worker::ByHand);
    auto& progress = game.App.UISetting.Download;
    for (bool const wait : {false, true}) {
        game.App.UISetting.State = Launcher::ApplicationUISetting::StateStartingUp;
        progress.StatusFlags = 3;
        progress.StatusFlag = progress.ModeFlag = true;
        game.App.UISettingChanged = false;
        game.App.StartStreamedContentDownload(wait);
        QCOMPARE(game.App.UISetting.State, 2);
        QCOMPARE(progress.StatusFlags, 0u);
        QCOMPARE(progress.StatusFlag, false);
        QCOMPARE(progress.ModeFlag, false);
        QVERIFY(game.App.UISettingChanged);
    }
    QCOMPARE(game.Host.SyncCount() + game.Host.AsyncCount(), std::size_t{0});
    QCOMPARE(game.Host.BlockedQuestions.load(), 0);
}

void PhasesTest::AMirrorIsDrawnForEveryFile()
{
    std::srand(1);
    Game game;
    ScriptedServer mirror(QStringLiteral("127.0.0.2"));
    constexpr int c_Files = 12;
    for (int i = 0; i < c_Files; ++i)
        game.Add({QString("file %1").arg(i), QByteArray::number(i)});
    game.Publish().Install();
    game.Content.Publish(game.Server, {&mirror});
    game.App.CdnHosts = QStringList({mirror.Host(), game.Server.Host()});
    game.App.OnManifestReceived();
    QVERIFY(game.Finish());
    QStringList const here = game.Requested();
    QStringList const there = game.Requested(mirror);
    QCOMPARE(here.size() + there.size(), 2 * c_Files);
    QVERIFY2(here.size() > 3 && there.size() > 3, qPrintable(QString::number(here.size())));
    for (int i = 0; i < c_Files; ++i)
        QCOMPARE(game.Read(QString("file %1").arg(i)), QByteArray::number(i));
    // Drawn anew for the file, whoever was asked for its size.
    bool asksOneAndFetchesFromTheOther = false;
    for (QString const& file : here)
        asksOneAndFetchesFromTheOther |= here.count(file) == 1 && there.count(file) == 1;
    QVERIFY(asksOneAndFetchesFromTheOther);
}

// A reader on another thread must never meet characters that are being freed.
void PhasesTest::TextsThatTheWorkerWritesAreLiterals()
{
    Game game(TestHost::Worker::ByHand);
    auto& progress = game.App.UISetting.Download;
    game.Add({"a", "a"}).Begin();
    game.Host.DownloadBlocked = true;
    QVERIFY(!IsLiteral(QString::fromLatin1("a text made at run time")));
    progress.DetailText = QString::fromLatin1("a text made at run time");
    QVERIFY(game.Host.RunNextAsync());
    QCOMPARE(progress.DetailText, QString(""));
    QVERIFY(IsLiteral(progress.DetailText));
    game.Host.DownloadBlocked = false;
    QVERIFY(game.Host.RunNextAsync());
    QCOMPARE(progress.DetailText, QString("Requesting files size..."));
    QVERIFY(IsLiteral(progress.DetailText));
    game.App.ProcessContentDownload();
    QCOMPARE(progress.DetailText, QString("Downloading base files..."));
    QVERIFY(IsLiteral(progress.DetailText));
    game.App.UISettingChanged = false;
    game.App.StartStreamedContentDownload(false);
    QVERIFY(game.App.UISettingChanged);
    QCOMPARE(progress.DetailText, QString("Downloading streammed files..."));
    QVERIFY(IsLiteral(progress.DetailText));
}

void PhasesTest::TheFirstFileStartsFromTheQueue()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"a", "a"}).Publish().Install();
    game.App.GetInstallationPath();
    game.App.FilesToDownload = game.App.Manifest.Files;
    game.App.UISettingChanged = false;
    game.App.ProcessContentDownload();
    QVERIFY(game.App.UISettingChanged);
    QVERIFY(game.App.CurrentDownload == nullptr);
    QCOMPARE(game.Host.SyncCount(), std::size_t{1});
    QCOMPARE(game.App.ContentBaseUrl, game.Server.BaseUrl());
    QVERIFY(game.Host.RunNextSync());
    QVERIFY(game.App.CurrentDownload != nullptr);
    QCOMPARE(game.App.CurrentDownload->Url,
             game.Server.BaseUrl() + "test_app/" + game.Content.Location("a"));
    QCOMPARE(game.App.CurrentDownload->FilePath, game.Path("a.part"));
    QVERIFY(game.App.CurrentDownload->Resume);
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::PhasesTest)
#include "tst_Phases.moc"
