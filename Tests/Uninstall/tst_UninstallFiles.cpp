#include "Tests/Runs/Game.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/FolderEvents.hpp"
#include "Tests/Support/OrdinaryUser.hpp"
#include "Tests/Support/ScopedCurrentFolder.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QDir>
#include <QtTest>

#include <memory>

#include <unistd.h>

namespace Varnholt::TestSupport {

/// What an uninstallation does to the disk.
class UninstallFilesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void TheFilesOfTheBuildAreRemoved();
    void FilesAreRemovedInTheOrderOfTheBuild();
    void WithoutTheFlagNoFileIsTouched();
    void WhatTheBuildDoesNotNameStays();
    void MissingFilesAreSkippedSilently();
    void OnlyWritePermissionsAreLeftBeforeTheRemoval_data();
    void OnlyWritePermissionsAreLeftBeforeTheRemoval();
    void AFileThatCannotBeRemovedIsReportedAndTheOthersGo();
    void AnEmptyFolderInAFilesPlaceIsReportedAndRemoved();
    void AFolderInAFilesPlaceStaysWithWhatIsInIt_data();
    void AFolderInAFilesPlaceStaysWithWhatIsInIt();
    void TheFolderComesFromTheSettings();
    void WithoutAFolderNothingIsTouched_data();
    void WithoutAFolderNothingIsTouched();

private:
    /// Installs and puts every file of the build down.
    void PutEverything();

    std::unique_ptr<Game> Played;
};

void UninstallFilesTest::init()
{
    Played = std::make_unique<Game>(TestHost::Worker::ByHand);
}

void UninstallFilesTest::PutEverything()
{
    Played->Publish().Install();
    for (SampleFile const& file : Played->Content.Files)
        Played->Put(file.Path, file.Bytes);
}

void UninstallFilesTest::TheFilesOfTheBuildAreRemoved()
{
    Game& game = *Played;
    game.Add({"a", "a", 0x20}).Add({"Data/b c", "b"}).Add({"Data/s", "s", 0, {}, true});
    game.Add({"exe", "x", 6}).Add({"settings", "s", 0x80}).Add({"fr", "fr", 0, "frFR"});
    PutEverything();
    game.Put("a", "changed by the player");
    game.App.Uninstall(true);
    QCOMPARE(game.FilesOnDisk(), QStringList());
    QVERIFY(game.Has("Data")); // folders stay
    QCOMPARE(game.Host.Errors(), QStringList());
}

void UninstallFilesTest::FilesAreRemovedInTheOrderOfTheBuild()
{
    if (!FolderEvents::c_Works)
        QSKIP("the order of removals is not seen on this system");
    Game& game = *Played;
    game.Add({"s2", "s", 0, {}, true}).Add({"b", "b"}).Add({"a", "a"});
    game.Add({"s1", "s", 0, {}, true}).Add({"c", "c"});
    PutEverything();
    FolderEvents removals(game.Folder);
    game.App.Uninstall(true);
    QCOMPARE(removals.Removed(), QStringList({"b", "a", "c", "s2", "s1"}));
}

void UninstallFilesTest::WithoutTheFlagNoFileIsTouched()
{
    Game& game = *Played;
    game.Add({"a", "a"}).Add({"Data/s", "s", 0, {}, true}).Add({"read only", "r", 1});
    PutEverything();
    game.Put("ToDownload.db", "Data/s\n");
    QVERIFY(SetMode(game.Path("a"), 0640));
    game.App.Uninstall(false);
    QCOMPARE(game.FilesOnDisk(), QStringList({"Data/s", "ToDownload.db", "a", "read only"}));
    QCOMPARE(game.Mode("a"), 0640);
    QCOMPARE(game.Read("Data/s"), QByteArray("s"));
    QCOMPARE(game.Read("ToDownload.db"), QByteArray("Data/s\n"));
    QVERIFY(!game.App.IsInstalled());
}

void UninstallFilesTest::WhatTheBuildDoesNotNameStays()
{
    Game& game = *Played;
    game.Add({"Data/a", "a"});
    PutEverything();
    QStringList const others{"Data/a.part",       "Data/added by the player", "ToDownload.db",
                             "ToDownloadBase.db", "ToDownloadCASC.db",        "WTF/Config.wtf"};
    for (QString const& other : others)
        game.Put(other, "content");
    game.App.Uninstall(true);
    QCOMPARE(game.FilesOnDisk(), others);
    for (QString const& other : others)
        QCOMPARE(game.Read(other), QByteArray("content"));
}

void UninstallFilesTest::MissingFilesAreSkippedSilently()
{
    Game& game = *Played;
    game.Add({"a", "a"}).Add({"no folder/b", "b"}).Add({"c", "c"});
    game.Add({"s", "s", 0, {}, true}).Publish().Install();
    game.Put("c", "c");
    game.App.Uninstall(true);
    QCOMPARE(game.FilesOnDisk(), QStringList());
    QVERIFY(!game.Has("no folder"));
    QCOMPARE(game.Host.Errors(), QStringList());
}

void UninstallFilesTest::OnlyWritePermissionsAreLeftBeforeTheRemoval_data()
{
    QTest::addColumn<unsigned>("before");
    QTest::addColumn<int>("expected");
    QTest::newRow("read-only") << 0444u << 0;
    QTest::newRow("owner writes") << 0644u << 0200;
    QTest::newRow("group writes too") << 0664u << 0220;
    QTest::newRow("everybody does everything") << 0777u << 0222;
    QTest::newRow("executable only") << 0555u << 0;
}

void UninstallFilesTest::OnlyWritePermissionsAreLeftBeforeTheRemoval()
{
    QFETCH(unsigned, before);
    QFETCH(int, expected);
    Played.reset();
    VARNHOLT_AS_ORDINARY_USER(); // the folder must be this user's
    Played = std::make_unique<Game>(TestHost::Worker::ByHand);
    Game& game = *Played;
    game.Add({"a", "a"});
    PutEverything();
    QVERIFY(SetMode(game.Path("a"), before));
    // A second name of the file shows what became of its permissions.
    QVERIFY(link(game.Path("a").toUtf8(), game.Path("second name").toUtf8()) == 0);
    game.App.Uninstall(true);
    QVERIFY(!game.Has("a"));
    QCOMPARE(game.Mode("second name"), expected);
    QCOMPARE(game.Host.Errors(), QStringList());
}

void UninstallFilesTest::AFileThatCannotBeRemovedIsReportedAndTheOthersGo()
{
    Played.reset();
    VARNHOLT_AS_ORDINARY_USER();
    Played = std::make_unique<Game>(TestHost::Worker::ByHand);
    Game& game = *Played;
    game.Add({"before", "b"}).Add({"Locked/one", "1"}).Add({"Locked/two", "2"});
    game.Add({"behind", "b"}).Add({"s", "s", 0, {}, true});
    PutEverything();
    QVERIFY(SetMode(game.Path("Locked/one"), 0444));
    QVERIFY(SetMode(game.Path("Locked/two"), 0644));
    QVERIFY(SetMode(game.Path("Locked"), 0555));
    game.App.Uninstall(true);
    QVERIFY(SetMode(game.Path("Locked"), 0755));
    QCOMPARE(game.FilesOnDisk(), QStringList({"Locked/one", "Locked/two"}));
    QCOMPARE(game.Mode("Locked/one"), 0);
    QCOMPARE(game.Mode("Locked/two"), 0200);
    QCOMPARE(game.Host.Errors(),
             QStringList({"File " + game.Path("Locked/one") + " error : Permission denied",
                          "File " + game.Path("Locked/two") + " error : Permission denied"}));
    QCOMPARE(game.Host.ErrorFlags.load(), 0);
    QVERIFY(!game.App.IsInstalled());
}

void UninstallFilesTest::AnEmptyFolderInAFilesPlaceIsReportedAndRemoved()
{
    Game& game = *Played;
    game.Add({"Data/a", "a"}).Publish().Install();
    QVERIFY(QDir().mkpath(game.Path("Data/a")));
    game.App.Uninstall(true);
    QCOMPARE(game.Host.Errors().size(), 1);
    QVERIFY(game.Host.Errors().first().startsWith("File " + game.Path("Data/a") + " error : "));
    QVERIFY(!game.Has("Data/a"));
    QVERIFY(game.Has("Data"));
}

void UninstallFilesTest::AFolderInAFilesPlaceStaysWithWhatIsInIt_data()
{
    QTest::addColumn<QString>("inside");
    QTest::newRow("file") << "file";
    QTest::newRow("hidden file") << ".hidden";
    QTest::newRow("folder") << "folder/file";
}

void UninstallFilesTest::AFolderInAFilesPlaceStaysWithWhatIsInIt()
{
    QFETCH(QString, inside);
    Game& game = *Played;
    game.Add({"a", "a"}).Publish().Install();
    game.Put("a/" + inside, "the player's");
    QVERIFY(SetMode(game.Path("a"), 0755));
    game.App.Uninstall(true);
    QVERIFY(SetMode(game.Path("a"), 0755)); // masked like a file
    QCOMPARE(game.Read("a/" + inside), QByteArray("the player's"));
    QCOMPARE(game.Host.Errors().size(), 1);
}

void UninstallFilesTest::TheFolderComesFromTheSettings()
{
    Game& game = *Played;
    game.Add({"a", "a"});
    PutEverything();
    QString const elsewhere = game.Temporary.path() + "/elsewhere/";
    QVERIFY(WriteFile(elsewhere + "a", "a"));
    game.App.InstallationPath = elsewhere;
    game.App.Uninstall(true);
    QVERIFY(!game.Has("a"));
    QVERIFY(QFile::exists(elsewhere + "a"));
}

void UninstallFilesTest::WithoutAFolderNothingIsTouched_data()
{
    QTest::addColumn<bool>("flag");
    QTest::newRow("with files") << true;
    QTest::newRow("without files") << false;
}

void UninstallFilesTest::WithoutAFolderNothingIsTouched()
{
    QFETCH(bool, flag);
    Game& game = *Played;
    game.Add({"a", "a"}).Add({"s", "s", 0, {}, true}).Publish();
    game.Put("a", "a");
    game.Put("s", "s");
    QVERIFY(SetMode(game.Path("a"), 0640));
    game.App.InstallationPath = game.Folder; // of an installation that is forgotten
    game.Host.SetSetting("test_app.Installed", true);
    ScopedCurrentFolder const current(game.Folder);
    game.App.Uninstall(flag);
    QCOMPARE(game.FilesOnDisk(), QStringList({"a", "s"}));
    QCOMPARE(game.Mode("a"), 0640);
    QCOMPARE(game.Host.Errors(), QStringList());
    QCOMPARE(game.App.InstallationPath, QString(""));
    QVERIFY(!game.App.IsInstalled());
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::UninstallFilesTest)
#include "tst_UninstallFiles.moc"
