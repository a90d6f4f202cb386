#include "Launcher/Application/Application.hpp"
#include "Tests/Host/HostProcess.hpp"
#include "Tests/Host/SessionGame.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/OrdinaryUser.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QDir>
#include <QLibraryInfo>
#include <QtTest>

namespace Varnholt::TestSupport {

/// What a host tells of folders, settings and modules that it cannot use, before it asks a server.
class HostFolderFailuresTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void AnUnusableFolderIsNamed_data();
    void AnUnusableFolderIsNamed();
    void OtherFilesInAFolderStayWhenTheUserConfirms();
    void AFolderThatCannotBeWrittenIsNamed();
    void AGameFolderThatCannotBeWrittenIsNotUpdated();
    void AnAbsentGameFolderIsNotCreatedAgain();
    void AMovedGameIsFoundAgain_data();
    void AMovedGameIsFoundAgain();
    void WhatIsNoMovedGameIsNotTakenForOne();
    void SettingsThatCannotBeWrittenAreNamed_data();
    void SettingsThatCannotBeWrittenAreNamed();
    void AModuleThatIsNoneIsNamed_data();
    void AModuleThatIsNoneIsNamed();
};

void HostFolderFailuresTest::AnUnusableFolderIsNamed_data()
{
    QTest::addColumn<QString>("folder");
    QTest::addColumn<QString>("sentence");
    AddRow("a file", "a file", "%1a file is a file, not a folder");
    AddRow("below a file", "a file/x/y", "%1a file is a file, not a folder");
    AddRow("the root", "/", "/ is no folder for a game (it is the root)");
    AddRow("the root in disguise", "home/../../../../../../..",
           "/ is no folder for a game (it is the root)");
    AddRow("the home folder", "home", "%1home is no folder for a game (it is your home folder)");
    AddRow("a link to it", "link", "%1link is no folder for a game (it is your home folder)");
    AddRow("other files", "photos", "the folder %1photos holds other files");
    AddRow("no folder at all", "/proc/game",
           "the folder /proc cannot be written (No such file or directory)");
}

void HostFolderFailuresTest::AnUnusableFolderIsNamed()
{
    QFETCH(QString, folder);
    QFETCH(QString, sentence);
    HostGame game;
    game.AddFiles().Publish();
    QVERIFY(WriteFile(game.Base + "a file", "x"));
    QVERIFY(WriteFile(game.Base + "photos/1.jpg", "x"));
    QVERIFY(QDir().mkpath(game.Base + "home"));
    QVERIFY(QFile::link(game.Base + "home", game.Base + "link"));
    Outcome const outcome = HostProcess(game, {"-q", "install", folder}).Finish();
    QVERIFY2(IsOneSentence(outcome.Err), qPrintable(outcome.Err));
    QVERIFY2(outcome.Err.contains(sentence.replace("%1", game.Base) + "; "),
             qPrintable(outcome.Err));
    QCOMPARE(outcome.Out, QString());
    QCOMPARE(outcome.Status, 7);
    QCOMPARE(game.Server.Requests().size(), std::size_t(0));
    QVERIFY(!game.SettingKeys().contains("pelmora_app.Installed"));
}

void HostFolderFailuresTest::OtherFilesInAFolderStayWhenTheUserConfirms()
{
    HostGame game;
    game.AddFiles().Publish();
    game.Put("photos/1.jpg", "x");
    Outcome const outcome = HostProcess(game, {"-q", "--yes", "install", game.Folder}).Finish();
    QCOMPARE(outcome.Err, QString());
    QCOMPARE(outcome.Status, 0);
    QCOMPARE(game.Wrong(), QStringList());
    QCOMPARE(game.Read("photos/1.jpg"), QByteArray("x"));
}

void HostFolderFailuresTest::AFolderThatCannotBeWrittenIsNamed()
{
    VARNHOLT_AS_ORDINARY_USER();
    SessionGame game;
    game.AddFiles().Publish();
    QString const parent = game.Base + "fixed";
    QVERIFY(QDir().mkpath(parent));
    QVERIFY(SetMode(parent, 0555));
    QVERIFY(game.Open());
    for (QString const& folder : {parent, parent + "/new/game/"}) {
        QCOMPARE(game.Run(RequestType::Install, folder), QString("folder-unwritable"));
        QCOMPARE(game.Sentence(), QString("the folder %1 cannot be written (Permission denied)")
                                      .arg(QDir::cleanPath(parent)));
        QCOMPARE(game.Result().Problem->ExitStatus(), 7);
    }
    QCOMPARE(game.Server.Requests().size(), std::size_t(0));
    QVERIFY(SetMode(parent, 0755));
}

void HostFolderFailuresTest::AGameFolderThatCannotBeWrittenIsNotUpdated()
{
    VARNHOLT_AS_ORDINARY_USER();
    SessionGame game;
    game.AddFiles().Publish().PutInstalled();
    QVERIFY(QFile::remove(game.Path("readme.txt")));
    QVERIFY(SetMode(game.Folder, 0555));
    QVERIFY(game.Open());
    for (RequestType const kind : {RequestType::Update, RequestType::Repair})
        QCOMPARE(game.Run(kind), QString("folder-unwritable"));
    QVERIFY2(game.Sentence().contains(game.Folder.chopped(1)), qPrintable(game.Sentence()));
    QCOMPARE(game.Server.Requests().size(), std::size_t(0));
    QVERIFY(SetMode(game.Folder, 0755));
    QCOMPARE(game.Run(RequestType::Update), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
}

void HostFolderFailuresTest::AnAbsentGameFolderIsNotCreatedAgain()
{
    HostGame game;
    game.AddFiles().Publish().PutInstalled();
    QVERIFY(QDir(game.Folder).removeRecursively());
    for (char const* const command : {"update", "repair", "play", "check", "verify"}) {
        Outcome const outcome = HostProcess(game, {"-q", command}).Finish();
        QCOMPARE(
            outcome.Err,
            "varnholt-host: the installation folder " + game.Folder +
                " does not exist; connect its drive, or run \"install\" with the folder that it "
                "was moved to.\n");
        QCOMPARE(outcome.Status, 7);
    }
    QVERIFY(!QFileInfo::exists(game.Folder));
    QCOMPARE(game.Server.Requests().size(), std::size_t(0));
}

void HostFolderFailuresTest::AMovedGameIsFoundAgain_data()
{
    QTest::addColumn<bool>("isComplete");
    QTest::addColumn<bool>("hasLists");
    QTest::newRow("complete") << true << true;
    QTest::newRow("pending") << false << true;
    QTest::newRow("without lists") << true << false;
}

void HostFolderFailuresTest::AMovedGameIsFoundAgain()
{
    QFETCH(bool, isComplete);
    QFETCH(bool, hasLists);
    HostGame game;
    game.AddFiles().Publish();
    QCOMPARE(HostProcess(game, {"-q", "install", game.Folder}).Finish().Status, 0);
    if (!isComplete) {
        QVERIFY(QFile::remove(game.Path("readme.txt")));
        game.Put("ToDownloadBase.db", "readme.txt\n");
    }
    for (QString const& file : game.FilesOnDisk().filter("ToDownload"))
        QVERIFY(hasLists || QFile::remove(game.Path(file)));
    QString const former = game.Folder;
    game.Folder = game.Base + "moved/";
    QVERIFY(QDir().rename(former, game.Folder));
    Outcome const status = HostProcess(game, {"status"}).Finish();
    QVERIFY2(
        status.Out.contains("its folder does not exist; \"install\" with the folder that it was "
                            "moved to takes it over\n"),
        qPrintable(status.Out));
    game.ForgetRequests();
    Outcome const outcome = HostProcess(game, {"install", game.Folder}).Finish();
    QVERIFY2(outcome.Err.contains("The game was found again in " + game.Folder + "; it was in " +
                                  former + " before.\n"),
             qPrintable(outcome.Err));
    QCOMPARE(outcome.Status, 0);
    QCOMPARE(game.Requested().filter("readme").isEmpty(), isComplete);
    QCOMPARE(game.Requested().filter("Data/").size(), 0);
    QCOMPARE(game.Wrong(), QStringList());
    QVERIFY(!QFileInfo::exists(former));
    QVERIFY(HostProcess(game, {"status"}).Finish().Out.contains(game.Folder + '\n'));
}

void HostFolderFailuresTest::WhatIsNoMovedGameIsNotTakenForOne()
{
    HostGame game;
    game.AddFiles().Publish().PutInstalled();
    QString const empty = game.Base + "empty";
    QVERIFY(QDir().mkpath(empty));
    QVERIFY(WriteFile(game.Base + "copy/ToDownload.db", ""));
    QVERIFY(WriteFile(game.Base + "photos/1.jpg", ""));
    QString const there = "the game is already installed in " + game.Folder;
    for (bool const isThere : {true, false}) {
        if (!isThere)
            QVERIFY(QDir(game.Folder).removeRecursively());
        for (char const* const name : {"empty", "photos", "copy"}) {
            if (!isThere && QLatin1String(name) == "copy")
                continue;
            Outcome const outcome = HostProcess(game, {"-q", "install", name}).Finish();
            QVERIFY2(outcome.Err.contains(there), qPrintable(outcome.Err));
            QCOMPARE(outcome.Status, 7);
        }
    }
}

void HostFolderFailuresTest::SettingsThatCannotBeWrittenAreNamed_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("sentence");
    AddRow("a folder", "home",
           "cannot be read (it is no ordinary file); correct it or its "
           "permissions, or choose another file.\n");
    QString const unwritable =
        "cannot be written (%1); change its permissions or choose another file.\n";
    AddRow("below a file", "a file/host.ini", unwritable.arg("Not a directory"));
    AddRow("nowhere", "/proc/varnholt/host.ini", unwritable.arg("No such file or directory"));
}

void HostFolderFailuresTest::SettingsThatCannotBeWrittenAreNamed()
{
    QFETCH(QString, file);
    QFETCH(QString, sentence);
    HostGame game;
    game.AddFiles().Publish();
    QVERIFY(WriteFile(game.Base + "a file", "x"));
    QVERIFY(QDir().mkpath(game.Base + "home"));
    Outcome const outcome =
        HostProcess(game, {"--settings", file, "--content-url", game.Server.BaseUrl()},
                    {"install", game.Folder})
            .Finish();
    QCOMPARE(outcome.Err,
             "varnholt-host: the settings file " + QDir(game.Base).filePath(file) + ' ' + sentence);
    QCOMPARE(outcome.Status, 7);
    QCOMPARE(game.Server.Requests().size(), std::size_t(0));
    QVERIFY(!QFileInfo::exists(game.Folder));
}

void HostFolderFailuresTest::AModuleThatIsNoneIsNamed_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("sentence");
    AddRow("missing", "nothing.so", "there is no module file %1");
    AddRow("a folder", "home", "there is no module file %1");
    AddRow("a text", "text.so", "the file %1 is not a launcher module (it is no plug-in)");
    AddRow("an empty file", "empty.so", "the file %1 is not a launcher module (it is no plug-in)");
    AddRow("a cut module", "cut.so", "the file %1 is not a launcher module (it is no plug-in)");
    AddRow("another plug-in",
           QLibraryInfo::location(QLibraryInfo::PluginsPath) + "/imageformats/libqjpeg.so",
           "the file %1 is not a launcher module (its interface is \"org.qt-project.");
    QString const layout =
        "the file %1 is not a launcher module (its layout is %2, the host's is " +
        QString::number(Launcher::c_ApplicationLayout) + ')';
    AddRow("another layout", VARNHOLT_OTHER_LAYOUT_MODULE, QString(layout).replace("%2", "1000"));
    AddRow("no layout", VARNHOLT_NO_LAYOUT_MODULE, QString(layout).replace("%2", "not named"));
}

void HostFolderFailuresTest::AModuleThatIsNoneIsNamed()
{
    QFETCH(QString, file);
    QFETCH(QString, sentence);
    HostGame game;
    QVERIFY(QDir().mkpath(game.Base + "home"));
    QVERIFY(WriteFile(game.Base + "text.so", "no module"));
    QVERIFY(WriteFile(game.Base + "empty.so", ""));
    QByteArray const module = ReadFile(QString::fromUtf8(VARNHOLT_PLUGIN_FILE));
    QVERIFY(WriteFile(game.Base + "cut.so", module.left(module.size() / 2)));
    QString const path = QDir(game.Base).filePath(file);
    if (QDir::isAbsolutePath(file) && !QFileInfo::exists(file))
        QSKIP("this plug-in is not installed");
    for (char const* const command : {"info", "update"}) {
        Outcome const outcome =
            HostProcess(game, {"--settings", game.SettingsFile, "--module", file}, {command})
                .Finish();
        QVERIFY2(IsOneSentence(outcome.Err), qPrintable(outcome.Err));
        QVERIFY2(outcome.Err.contains(QString(sentence).replace("%1", path)),
                 qPrintable(outcome.Err));
        QCOMPARE(outcome.Out, QString());
        QCOMPARE(outcome.Status, 9);
    }
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::HostFolderFailuresTest)
#include "tst_HostFolderFailures.moc"
