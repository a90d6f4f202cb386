#include "Tests/Host/PlayedGame.hpp"
#include "Tests/Host/SessionGame.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/OrdinaryUser.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QDir>
#include <QtTest>

#include <csignal>

namespace Varnholt::TestSupport {

class HostUninstallTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void TheInstallationIsForgottenAndItsFilesStay();
    void WithItsFilesTheirFoldersGo();
    void WhatIsNotOfTheGameStays();
    void DeletingWantsAConfirmation();
    void FilesThatCannotBeRemovedAreNamed();
    void AnAbsentFolderNeedsNoServer();
    void AGameThatRunsIsNotDeleted();
    void WithoutAServerNothingIsDeleted();
    void AStoppedRemovalGoesOnWithTheSameCommand();
};

void HostUninstallTest::TheInstallationIsForgottenAndItsFilesStay()
{
    HostGame game;
    game.AddFiles().Publish().PutInstalled();
    Outcome const outcome = HostProcess(game, {"-q", "uninstall"}).Finish();
    QCOMPARE(outcome.Err, QString());
    QCOMPARE(outcome.Out, QString("Mists of Pandaria is uninstalled; its files stayed\n"));
    QCOMPARE(outcome.Status, 0);
    QCOMPARE(game.Wrong(), QStringList());
    for (QString const& key : game.SettingKeys())
        QVERIFY2(key == "pelmora_app.ManifestBuilt" && !game.Setting(key).toBool(),
                 qPrintable(key));
    QCOMPARE(game.Server.Requests().size(), std::size_t(0));
    QCOMPARE(HostProcess(game, {"status"}).Finish().Out,
             QString("Mists of Pandaria is not installed\n"));
}

void HostUninstallTest::WithItsFilesTheirFoldersGo()
{
    HostGame game;
    game.AddFiles().Publish().PutInstalled();
    game.Put("ToDownload.db", "");
    Outcome const outcome =
        HostProcess(game, {"-q", "uninstall", "--delete-files", "--yes"}).Finish();
    QCOMPARE(outcome.Err, QString());
    QCOMPARE(outcome.Out, QString("Mists of Pandaria is uninstalled; files that are not of the "
                                  "game stayed\n"));
    QCOMPARE(outcome.Status, 0);
    QCOMPARE(game.FilesOnDisk(), QStringList("WTF/Config.wtf"));
    QCOMPARE(QDir(game.Folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList("WTF")); // the player's settings are not of the build
}

void HostUninstallTest::WhatIsNotOfTheGameStays()
{
    HostGame game;
    game.AddFiles().Publish().PutInstalled();
    QVERIFY(QFile::remove(game.Path("Data/enUS/locale.MPQ")));
    game.Put("Data/enUS/mine.txt", "mine");
    game.Put("screenshots/1.jpg", "mine");
    game.Put("Data/other.part", "mine");
    QVERIFY(QDir().mkpath(game.Path("empty of mine")));
    QCOMPARE(HostProcess(game, {"-q", "-y", "uninstall", "--delete-files"}).Finish().Status, 0);
    QCOMPARE(game.FilesOnDisk(), QStringList({"Data/enUS/mine.txt", "Data/other.part",
                                              "WTF/Config.wtf", "screenshots/1.jpg"}));
    QVERIFY(QDir(game.Path("empty of mine")).exists());
    QVERIFY(!QDir(game.Path("Data/frFR")).exists());
}

void HostUninstallTest::DeletingWantsAConfirmation()
{
    HostGame game;
    game.AddFiles().Publish().PutInstalled();
    for (QByteArray const& input : {QByteArray(), QByteArray("y\n")}) {
        Outcome const outcome =
            HostProcess(game, {"-q", "uninstall", "--delete-files"}).Finish(input);
        QCOMPARE(outcome.Err, "varnholt-host: the files in " + game.Folder +
                                  " are deleted only when that is confirmed; add --yes.\n");
        QCOMPARE(outcome.Status, 2);
    }
    QCOMPARE(game.Wrong(), QStringList());
    QVERIFY(game.Setting("pelmora_app.Installed").toBool());
    QCOMPARE(game.Server.Requests().size(), std::size_t(0));
}

void HostUninstallTest::FilesThatCannotBeRemovedAreNamed()
{
    VARNHOLT_AS_ORDINARY_USER();
    SessionGame game;
    game.AddFiles().Publish().PutInstalled();
    QVERIFY(SetMode(game.Path("Data/enUS"), 0555));
    QVERIFY(game.Open());
    Host::RunRequest request;
    request.Kind = RequestType::Uninstall;
    request.DeletesFiles = request.Confirmed = true;
    QCOMPARE(game.Run(request), QString("files-not-removed"));
    QCOMPARE(game.Sentence(), "the game is uninstalled, but files remain in " + game.Folder +
                                  ": Data/enUS/locale.MPQ");
    QCOMPARE(game.Result().Problem->ExitStatus(), 7);
    QVERIFY(!game.Status().IsInstalled);
    QVERIFY(!game.Has("readme.txt"));
    QVERIFY(SetMode(game.Path("Data/enUS"), 0755));
}

void HostUninstallTest::AnAbsentFolderNeedsNoServer()
{
    HostGame game;
    game.AddFiles().PutInstalled();
    QVERIFY(QDir(game.Folder).removeRecursively());
    Outcome const outcome = HostProcess(game, {"-q", "-y", "uninstall", "--delete-files"}).Finish();
    QCOMPARE(outcome.Err, QString());
    QCOMPARE(outcome.Status, 0);
    QVERIFY(!QFileInfo::exists(game.Folder));
    QVERIFY(!game.SettingKeys().contains("pelmora_app.InstallFolder"));
    QCOMPARE(game.Server.Requests().size(), std::size_t(0));
}

void HostUninstallTest::AGameThatRunsIsNotDeleted()
{
    PlayedGame const game;
    game.KeepRunning();
    QCOMPARE(game.Play().Status, 0);
    QVERIFY(game.WaitForStarts(1));
    Outcome const outcome = HostProcess(game, {"-q", "-y", "uninstall", "--delete-files"}).Finish();
    QCOMPARE(outcome.Err, "varnholt-host: the game in " + game.Folder +
                              " is running; quit it, then try again.\n");
    QCOMPARE(outcome.Status, 8);
    QCOMPARE(game.Wrong(), QStringList());
    game.LetGo();
    QCOMPARE(HostProcess(game, {"-q", "-y", "uninstall", "--delete-files"}).Finish().Status, 0);
    QVERIFY(!game.Has(game.Program));
}

void HostUninstallTest::WithoutAServerNothingIsDeleted()
{
    HostGame game;
    game.AddFiles().PutInstalled();
    Outcome const outcome = HostProcess(game, {"-q", "-y", "uninstall", "--delete-files"}).Finish();
    QVERIFY2(IsOneSentence(outcome.Err), qPrintable(outcome.Err));
    QCOMPARE(outcome.Status, 5);
    QCOMPARE(game.Wrong(), QStringList());
    QVERIFY(game.Setting("pelmora_app.Installed").toBool());
}

/// What gives a player's account away goes first, what is known of the game last.
void HostUninstallTest::AStoppedRemovalGoesOnWithTheSameCommand()
{
    constexpr int c_Many = 5'000;

    SessionGame game;
    game.AddFiles();
    for (int i = 0; i < c_Many; ++i)
        game.Content.Add({QStringLiteral("Data/%1/small").arg(i), "s"});
    game.Publish().PutInstalled();
    QStringList const screen{"Interface/GlueXMl/AccountLogin.xml",
                             "Interface/GlueXMl/AccountLogin.lua"};
    for (QString const& file : screen)
        game.Put(file, "secret");
    game.Put("readme.txt.part", "begun");
    QVERIFY(game.Open());
    Host::RunRequest request;
    request.Kind = RequestType::Uninstall;
    request.DeletesFiles = true;
    game.Start(request);
    QVERIFY(game.WaitUntil([&] { return !game.Has(screen[1]); }));
    game.Session().Interrupt();
    QCOMPARE(game.End(), QString("interrupted"));
    QVERIFY(!game.Has(screen[0]));
    QVERIFY(game.Status().IsInstalled && game.Status().IsUnfinished);
    QVERIFY(game.FilesOnDisk().size() > 1);

    QCOMPARE(game.Run(request), QString("done"));
    QCOMPARE(game.FilesOnDisk(), QStringList("WTF/Config.wtf"));
    QVERIFY(!game.Status().IsInstalled);
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::HostUninstallTest)
#include "tst_HostUninstall.moc"
