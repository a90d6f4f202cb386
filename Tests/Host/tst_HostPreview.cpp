#include "Host/Core/Folder/GameRemoval.hpp"
#include "Tests/Host/FolderListing.hpp"
#include "Tests/Host/HostProcess.hpp"
#include "Tests/Host/JsonReport.hpp"
#include "Tests/Host/SessionGame.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/OrdinaryUser.hpp"
#include "Tests/Support/ScopedVariable.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QDir>
#include <QtTest>

namespace Varnholt::TestSupport {

namespace {

constexpr qint64 c_BaseBytes = 60000 + 30000 + 2000 + 7;
constexpr qint64 c_AllBytes = c_BaseBytes + 9000 + 8000;

QStringList Kinds(std::vector<Host::Failure> const& p_Failures)
{
    QStringList kinds;
    for (Host::Failure const& failure : p_Failures)
        kinds += failure.Identifier();
    return kinds;
}

} // namespace

/// What an installation and an uninstallation would do, told before; and the room for it.
class HostPreviewTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void AnInstallationIsPreviewedAndNothingIsCreated();
    void APreviewIsToldToPeopleToo();
    void APreviewCountsWhatLiesThere();
    void WhatSpeaksAgainstAFolderIsWarnedOf_data();
    void WhatSpeaksAgainstAFolderIsWarnedOf();
    void AFolderThatCannotBeWrittenIsWarnedOf();
    void AnInstallationTellsItsRoomBeforeItsFirstByte();
    void ACheckTellsTheRoomForItsFindings();
    void AnUninstallationIsPreviewedAndNothingIsChanged();
    void ARemovalCountsFilesAndBytes();
};

void HostPreviewTest::AnInstallationIsPreviewedAndNothingIsCreated()
{
    HostGame game;
    game.AddFiles().Publish();
    HostProcess::Environment(game); // makes its home
    QStringList const before = FolderListing(game.Base);
    Outcome const outcome = HostProcess(game, {"--json", "check", "--into", game.Folder}).Finish();
    QCOMPARE(outcome.Status, 0);
    JsonReport const report(outcome.Out);
    QJsonObject const preview = report.Of("preview").at(0);
    QCOMPARE(preview["files"].toInt(), 6);
    QCOMPARE(preview["bytes"].toDouble(), double(c_AllBytes));
    QCOMPARE(preview["atLeast"].toBool(), false);
    QJsonObject const space = report.Of("space").at(0);
    QCOMPARE(space["folder"].toString() + '/', game.Base);
    QCOMPARE(space["needed"].toDouble(), double(c_AllBytes));
    QVERIFY(space["free"].toDouble() > 0);
    QCOMPARE(space["after"].toDouble(), space["free"].toDouble() - double(c_AllBytes));
    QCOMPARE(report.Of("warning").size() + report.Of("finding").size(), std::size_t(0));
    QCOMPARE(report.Last()["type"].toString(), QString("result"));
    QCOMPARE(report.Last()["folder"].toString(), game.Folder);
    QCOMPARE(FolderListing(game.Base), before);
}

void HostPreviewTest::APreviewIsToldToPeopleToo()
{
    HostGame game;
    game.AddFiles().Publish();
    game.Put("mine.txt", "mine");
    Outcome const outcome = HostProcess(game, {"-q", "check", "--into", game.Folder}).Finish();
    QStringList const lines = outcome.Out.split('\n');
    QVERIFY2(lines[0].startsWith("106.5 KiB are needed on the volume of " + game.Folder + "; "),
             qPrintable(lines[0]));
    QCOMPARE(lines[1], "warning: the folder " + game.Folder.chopped(1) +
                           " holds other files; choose an empty folder, or confirm (--yes) that "
                           "the game shall go there");
    QCOMPARE(lines[2], "an installation of Mists of Pandaria, build Sample build, into " +
                           game.Folder + " fetches 6 files (106.5 KiB)");
    QCOMPARE(outcome.Status, 0);
}

void HostPreviewTest::APreviewCountsWhatLiesThere()
{
    SessionGame game;
    game.AddFiles().Publish();
    game.Put("Data/base.MPQ", game.Content.Files[0].Bytes);
    game.Put("Data/first build.MPQ", "an older one");
    game.Put("Data/enUS/locale.MPQ.part", game.Content.Files[2].Bytes.left(1500));
    game.Options.FreeBytes = [](QString const&) { return 100'000; };
    QVERIFY(game.Open());
    QCOMPARE(game.Run(RequestType::PreviewInstall, game.Folder), QString("done"));
    Host::RunResult const& result = game.Result();
    QCOMPARE(result.Amount.Files, 5u);
    QCOMPARE(result.Amount.Bytes, quint64(c_AllBytes - 60000 - 1500));
    QCOMPARE(result.Space.size(), std::size_t(1));
    QCOMPARE(result.Space[0].Files, 5u);
    QCOMPARE(result.Space[0].Needed, c_AllBytes - 60000 - 1500 - 12); // the old one goes
    QCOMPARE(result.Space[0].After(), 100'000 - result.Space[0].Needed);
}

void HostPreviewTest::WhatSpeaksAgainstAFolderIsWarnedOf_data()
{
    QTest::addColumn<QString>("folder");
    QTest::addColumn<qint64>("free");
    QTest::addColumn<bool>("installed");
    QTest::addColumn<QStringList>("warnings");
    auto const row = [](char const* p_Name, QString const& p_Folder, qint64 p_Free,
                        bool p_Installed, QStringList const& p_Warnings) {
        QTest::newRow(p_Name) << p_Folder << p_Free << p_Installed << p_Warnings;
    };
    row("nothing", "new", c_AllBytes, false, {});
    row("a file", "file", c_AllBytes, false, {"folder-is-file"});
    row("the home folder", "home", c_AllBytes, false, {"folder-forbidden", "folder-foreign"});
    row("other files", "photos", c_AllBytes, false, {"folder-foreign"});
    row("little room", "new", c_AllBytes - 1, false, {"disk-full"});
    row("another one", "new", c_AllBytes, true, {"installed-elsewhere"});
    row("much", "photos", 1, true, {"folder-foreign", "installed-elsewhere", "disk-full"});
}

void HostPreviewTest::WhatSpeaksAgainstAFolderIsWarnedOf()
{
    QFETCH(QString, folder);
    QFETCH(qint64, free);
    QFETCH(bool, installed);
    SessionGame game;
    game.AddFiles().Publish();
    if (installed)
        game.PutInstalled();
    QVERIFY(WriteFile(game.Base + "photos/1.jpg", "") && WriteFile(game.Base + "home/.x", "") &&
            WriteFile(game.Base + "file", ""));
    ScopedVariable const home("HOME", (game.Base + "home").toUtf8());
    game.Options.FreeBytes = [free](QString const&) { return free; };
    QVERIFY(game.Open());
    QCOMPARE(game.Run(RequestType::PreviewInstall, game.Base + folder), QString("done"));
    QTEST(Kinds(game.Result().Warnings), "warnings");
    QCOMPARE(game.Result().Amount.Files, 6u);
    QVERIFY(!QFileInfo::exists(game.Base + "new"));
}

void HostPreviewTest::AFolderThatCannotBeWrittenIsWarnedOf()
{
    if (!OrdinaryUser::IsPossible())
        QSKIP("root is not stopped by permissions");
    OrdinaryUser const user;
    SessionGame game;
    game.AddFiles().Publish();
    QVERIFY(QDir().mkpath(game.Base + "fixed") && SetMode(game.Base + "fixed", 0555));
    QVERIFY(game.Open());
    QCOMPARE(game.Run(RequestType::PreviewInstall, game.Base + "fixed/new"), QString("done"));
    QCOMPARE(Kinds(game.Result().Warnings), QStringList("folder-unwritable"));
    QVERIFY(SetMode(game.Base + "fixed", 0755));
}

void HostPreviewTest::AnInstallationTellsItsRoomBeforeItsFirstByte()
{
    SessionGame game;
    game.AddFiles().Publish();
    game.Options.FreeBytes = [](QString const&) { return 1'000'000; };
    QString const base = game.Content.ServerPath("Data/base.MPQ");
    game.Server.Script("GET " + base).Then(Answer().Held());
    QVERIFY(game.Open());
    game.Start(RequestType::Install, game.Folder);
    QVERIFY(game.WaitUntil(
        [&] { return !game.Snapshots.empty() && !game.Snapshots.back().Space.empty(); }));
    Host::VolumeSpace const space = game.Snapshots.back().Space[0];
    QCOMPARE(game.Snapshots.back().BytesDone, quint64(0));
    QCOMPARE(space.Folder, game.Folder);
    QCOMPARE(space.Needed, c_BaseBytes);
    QCOMPARE(space.Free, qint64(1'000'000));
    QCOMPARE(space.After(), 1'000'000 - c_BaseBytes);
    game.Server.OpenGate(base);
    QCOMPARE(game.End(), QString("done"));
    QCOMPARE(game.Result().Space[0].Needed, c_AllBytes - c_BaseBytes);
}

void HostPreviewTest::ACheckTellsTheRoomForItsFindings()
{
    SessionGame game;
    game.AddFiles().Publish().PutInstalled();
    QVERIFY(QFile::remove(game.Path("readme.txt")));
    game.Options.FreeBytes = [](QString const&) { return 5; };
    QVERIFY(game.Open());
    QCOMPARE(game.Run(RequestType::Check), QString("update-available"));
    QCOMPARE(game.Result().Space.size(), std::size_t(1));
    QCOMPARE(game.Result().Space[0].Needed, qint64(7));
    QCOMPARE(game.Result().Space[0].After(), qint64(-2));
}

void HostPreviewTest::AnUninstallationIsPreviewedAndNothingIsChanged()
{
    SessionGame game;
    game.AddFiles().Publish().PutInstalled();
    QVERIFY(QFile::remove(game.Path("Data/base.MPQ")));
    game.Put("readme.txt.part", "begun");
    game.Put("ToDownload.db", "list");
    game.Put("Interface/GlueXMl/AccountLogin.xml", "secret");
    game.Put("Data/mine.txt", "mine");
    game.Put("shots/1.jpg", "mine");
    QStringList const before = FolderListing(game.Folder);
    QVERIFY(game.Open());
    QCOMPARE(game.Run(RequestType::PreviewUninstall), QString("done"));
    QCOMPARE(FolderListing(game.Folder), before);
    QVERIFY(game.Status().IsInstalled);
    Host::RunResult const preview = game.Result();
    QCOMPARE(preview.Amount.Files, 5u + 3u);
    QCOMPARE(preview.Amount.Bytes, quint64(c_AllBytes - 60000 + 5 + 4 + 6));

    Host::RunRequest request;
    request.Kind = RequestType::Uninstall;
    request.DeletesFiles = true;
    QCOMPARE(game.Run(request), QString("done"));
    QStringList stayed = game.FilesOnDisk();
    stayed.removeOne("WTF/Config.wtf"); // written by the module on its way out
    QStringList told = preview.Staying;
    told.sort();
    QCOMPARE(told, stayed);
}

void HostPreviewTest::ARemovalCountsFilesAndBytes()
{
    HostGame game;
    game.AddFiles().PutInstalled();
    QVERIFY(QFile::remove(game.Path("Data/base.MPQ")));
    Launcher::ApplicationManifest manifest;
    for (SampleFile const& file : game.Content.Files) {
        manifest.Files.emplace_back();
        manifest.Files.back().Path = file.Path;
    }
    Host::GameRemoval removal(manifest, game.Folder, {});
    removal.Run();
    QVERIFY(removal.IsFinished());
    QCOMPARE(removal.FileCount(), 5u);
    QCOMPARE(removal.FileNumber(), 5u);
    QCOMPARE(removal.BytesTotal(), quint64(c_AllBytes - 60000));
    QCOMPARE(removal.BytesDone(), removal.BytesTotal());
    QCOMPARE(game.FilesOnDisk(), QStringList());
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::HostPreviewTest)
#include "tst_HostPreview.moc"
