#include "Tests/Host/HostProcess.hpp"
#include "Tests/Host/SessionGame.hpp"
#include "Tests/Support/ScopedCurrentFolder.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

#include <atomic>

namespace Varnholt::TestSupport {

/// What installations, updates and repairs bring, and in which language.
class HostUpdateTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void AnUpdateBringsWhatIsMissingOrDamaged();
    void ARepairFindsWhatAnUpdateTrusts();
    void AnUpdateBringsAnotherBuildWithItsStreamedFiles();
    void TheMarkGoesWhenTheFilesAreOnTheDisk();
    void AnUpdateOfNothingIsRefused();
    void AnInstallationElsewhereWantsAConfirmation();
    void AnInstallationMayBeginAnewInItsFolder();
    void ABuildWithoutFilesIsNoGame();
    void AUserInTheGameFolderDoesNotMoveTheGame();
    void TheLanguagesOfTheBuildAreListed();
    void ALanguageIsChosenByOneRunAndBroughtByTheNext();
    void ALanguageThatIsNotOfferedIsRefused();
    void ALanguageMayBeChosenBeforeTheInstallation();
    void ABuildWithoutTheLanguageIsTold();
};

void HostUpdateTest::AnUpdateBringsWhatIsMissingOrDamaged()
{
    SessionGame game;
    game.AddFiles().Publish().PutInstalled();
    QVERIFY(QFile::remove(game.Path("Data/base.MPQ")));
    game.Put("readme.txt", "damaged");
    QVERIFY(QFile::remove(game.Path("Data/first build.MPQ"))); // trusted by the module
    QVERIFY(QFile::remove(game.Path("Data/streamed 2.MPQ")));  // as well
    QVERIFY(game.Open());
    QCOMPARE(game.Run(RequestType::Update), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
    QCOMPARE(game.Result().Transfers, 4u);
}

void HostUpdateTest::ARepairFindsWhatAnUpdateTrusts()
{
    SessionGame game;
    game.AddFiles().Publish().PutInstalled();
    QStringList const trusted{"Data/first build.MPQ", "Data/streamed 1.MPQ"};
    for (QString const& file : trusted)
        game.Put(file, "damaged");
    QVERIFY(game.Open());
    QCOMPARE(game.Run(RequestType::Update), QString("done"));
    QCOMPARE(game.Wrong(), trusted);
    QCOMPARE(game.Run(RequestType::Repair), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
    QCOMPARE(game.Result().Transfers, 2u);
}

void HostUpdateTest::AnUpdateBringsAnotherBuildWithItsStreamedFiles()
{
    SessionGame game;
    game.AddFiles().Publish().PutInstalled();
    QVERIFY(game.Open());
    QCOMPARE(game.Run(RequestType::Update), QString("done"));
    game.Content.Build = QStringLiteral("build_2");
    for (SampleFile& file : game.Content.Files)
        if (file.Path.contains("streamed 1") || file.Path.contains("first"))
            file.Bytes += "of build 2";
    game.Content.Add({"Data/new.MPQ", "new"}).Add({"Data/new streamed.MPQ", "s", 0, {}, true});
    game.Publish();
    QCOMPARE(game.Run(RequestType::Update), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
    QCOMPARE(game.Result().Transfers, 4u);
    QCOMPARE(game.Status().Build, QString("build_2"));
}

void HostUpdateTest::TheMarkGoesWhenTheFilesAreOnTheDisk()
{
    SessionGame game;
    game.AddFiles().Publish();
    std::atomic<int> flushes{0};
    std::atomic<bool> isRight{false};
    game.Options.Flush = [&](QString const& p_Folder) {
        ++flushes;
        isRight = p_Folder == game.Folder && game.Wrong().isEmpty() && game.IsMarkedUnfinished();
    };
    QVERIFY(game.Open());
    QCOMPARE(game.Install(), QString("done"));
    QCOMPARE(flushes.load(), 1);
    QVERIFY(isRight);
    QVERIFY(!game.IsMarkedUnfinished());
    QCOMPARE(game.Run(RequestType::Update), QString("done"));
    QCOMPARE(flushes.load(), 1); // there is nothing new
}

void HostUpdateTest::AnUpdateOfNothingIsRefused()
{
    SessionGame game;
    game.AddFiles().Publish();
    QVERIFY(game.Open());
    for (RequestType const kind : {RequestType::Update, RequestType::Repair, RequestType::Play,
                                   RequestType::Check, RequestType::Verify, RequestType::Uninstall})
        QCOMPARE(game.Run(kind), QString("not-installed"));
    QCOMPARE(game.Sentence(), QString("Mists of Pandaria is not installed"));
    QCOMPARE(game.Result().Problem->ExitStatus(), 1);
    QCOMPARE(game.Server.Requests().size(), std::size_t(0));
}

void HostUpdateTest::AnInstallationElsewhereWantsAConfirmation()
{
    SessionGame game;
    game.AddFiles().Publish().PutInstalled();
    QString const former = game.Folder;
    QVERIFY(game.Open());
    Host::RunRequest request;
    request.Kind = RequestType::Install;
    request.Argument = game.Base + "Other/";
    QCOMPARE(game.Run(request), QString("installed-elsewhere"));
    QVERIFY2(game.Sentence().endsWith(former), qPrintable(game.Sentence()));
    QVERIFY(!QFileInfo::exists(request.Argument));
    request.Confirmed = true;
    QCOMPARE(game.Run(request), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
    game.Folder = request.Argument;
    QCOMPARE(game.Wrong(), QStringList());
    QCOMPARE(game.Status().Folder, request.Argument);
}

void HostUpdateTest::AnInstallationMayBeginAnewInItsFolder()
{
    SessionGame game;
    game.AddFiles().Publish().PutInstalled();
    game.Put("Data/streamed 1.MPQ", "damaged");
    game.Put("readme.txt", "damaged");
    QVERIFY(game.Open());
    QCOMPARE(game.Install(), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
    QCOMPARE(game.Result().Transfers, 2u);
}

void HostUpdateTest::ABuildWithoutFilesIsNoGame()
{
    SessionGame game;
    game.Publish();
    QVERIFY(game.Open());
    QCOMPARE(game.Install(), QString("build-empty"));
    QVERIFY(!game.Status().IsInstalled);
    QVERIFY(!QFileInfo::exists(game.Folder));
}

void HostUpdateTest::AUserInTheGameFolderDoesNotMoveTheGame()
{
    SessionGame game;
    game.AddFiles().Publish().PutInstalled();
    QVERIFY(QFile::remove(game.Path("readme.txt")));
    ScopedCurrentFolder const current(game.Folder);
    QVERIFY(game.Open());
    QCOMPARE(game.Run(RequestType::Update), QString("done"));
    QCOMPARE(game.Result().Folder, game.Folder);
    QCOMPARE(game.Wrong(), QStringList());
}

void HostUpdateTest::TheLanguagesOfTheBuildAreListed()
{
    HostGame game;
    game.AddFiles().Publish();
    QCOMPARE(HostProcess(game, {"-q", "locales"}).Finish().Out,
             QString("* enUS  English\n  frFR  French\n"));
    game.PutInstalled();
    game.SetSetting("pelmora_app.InstallLocale", "frFR");
    Outcome const outcome = HostProcess(game, {"-q", "locales"}).Finish();
    QCOMPARE(outcome.Out, QString("  enUS  English\n* frFR  French\n"));
    QCOMPARE(outcome.Err, QString());
    QCOMPARE(outcome.Status, 0);
    QCOMPARE(game.Requested(), QStringList());
}

void HostUpdateTest::ALanguageIsChosenByOneRunAndBroughtByTheNext()
{
    HostGame game;
    game.AddFiles();
    game.Content.Add({"Data/frFR/streamed.MPQ", "s", 0, "frFR", true});
    game.Publish().PutInstalled();
    Outcome const outcome = HostProcess(game, {"-q", "locale", "frFR"}).Finish();
    QCOMPARE(outcome.Err, QString());
    QCOMPARE(outcome.Out, QString("The language is frFR; \"update\" fetches its files\n"));
    QCOMPARE(outcome.Status, 0);
    QCOMPARE(game.Requested(), QStringList());
    QVERIFY(game.Read("WTF/Config.wtf").contains("SET locale \"frFR\""));
    QCOMPARE(HostProcess(game, {"locale"}).Finish().Out, QString("frFR\n"));
    QCOMPARE(HostProcess(game, {"-q", "update"}).Finish().Status, 0);
    QVERIFY(game.Has("Data/frFR/locale.MPQ") && game.Has("Data/frFR/streamed.MPQ"));
}

void HostUpdateTest::ALanguageThatIsNotOfferedIsRefused()
{
    HostGame game;
    game.AddFiles().Publish().PutInstalled();
    for (QString const& code : {QString("deDE"), QString("frfr"), QString("x\ny")}) {
        Outcome const outcome = HostProcess(game, {"-q", "locale", code}).Finish();
        QCOMPARE(outcome.Err, "varnholt-host: the build does not offer the language \"" +
                                  QString(code).replace('\n', "\\n") +
                                  "\"; choose one of: enUS, frFR.\n");
        QCOMPARE(outcome.Out, QString());
        QCOMPARE(outcome.Status, 2);
    }
    QCOMPARE(HostProcess(game, {"locale"}).Finish().Out, QString("enUS\n"));
    QVERIFY(!game.IsMarkedUnfinished());
}

void HostUpdateTest::ALanguageMayBeChosenBeforeTheInstallation()
{
    SessionGame game;
    game.AddFiles().Publish();
    QVERIFY(game.Open());
    QCOMPARE(game.Run(RequestType::ChooseLocale, "frFR"), QString("done"));
    QCOMPARE(game.Result().Locale, QString("frFR"));
    QCOMPARE(game.Install(), QString("done"));
    QCOMPARE(game.Wrong("frFR"), QStringList());
}

void HostUpdateTest::ABuildWithoutTheLanguageIsTold()
{
    SessionGame game;
    game.AddFiles().Publish().PutInstalled();
    game.SetSetting("pelmora_app.InstallLocale", "esES");
    QVERIFY(game.Open());
    QCOMPARE(game.Run(RequestType::Update), QString("done"));
    QCOMPARE(game.Notices, QStringList("The build does not offer the language esES; its files are "
                                       "left out until another one is chosen."));
    QCOMPARE(game.Status().Locale, QString("esES"));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::HostUpdateTest)
#include "tst_HostUpdate.moc"
