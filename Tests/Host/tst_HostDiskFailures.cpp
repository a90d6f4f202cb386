#include "Tests/Host/SessionGame.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/OrdinaryUser.hpp"
#include "Tests/Support/SmallVolume.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QDir>
#include <QtTest>

#include <atomic>

namespace Varnholt::TestSupport {

/// Full disks, and what stands in the way of a file.
class HostDiskFailuresTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void AGameThatDoesNotFitIsRefusedBeforeItsFirstByte();
    void WhatIsThereAlreadyMakesItFit();
    void StreamedFilesThatDoNotFitLeaveTheBaseFiles();
    void ADiskThatFillsUpStopsTheTransferAndKeepsIt();
    void ARealVolumeThatIsTooSmallIsRefused();
    void ARealVolumeThatFillsUpLosesNothing();
    void AFolderThatIsALinkHasTheRoomOfItsOwnVolume();
    void TheVolumeOfAFolderThatIsALinkIsNamedWhenItIsFull();
    void WhatStandsInAFilesPlaceIsNamedAndTheRestArrives_data();
    void WhatStandsInAFilesPlaceIsNamedAndTheRestArrives();
    void APartialFileThatCannotBeWrittenIsNamed();
    void AFolderBelowThatCannotBeWrittenIsNamed();
};

void HostDiskFailuresTest::AGameThatDoesNotFitIsRefusedBeforeItsFirstByte()
{
    SessionGame game;
    game.AddFiles().Publish();
    std::atomic<qint64> free{60000 + 30000 + 2000 + 6};
    game.Options.FreeBytes = [&](QString const&) { return free.load(); };
    QVERIFY(game.Open());
    QCOMPARE(game.Install(), QString("disk-full"));
    QCOMPARE(game.Sentence(), "the volume of " + game.Folder +
                                  " is too full (89.8 KiB are free, 89.9 KiB more are needed)");
    QCOMPARE(game.Result().Problem->ExitStatus(), 6);
    QVERIFY(!game.Has("Data/base.MPQ.part"));
    ++free;
    QCOMPARE(game.Run(RequestType::Update), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
}

void HostDiskFailuresTest::WhatIsThereAlreadyMakesItFit()
{
    SessionGame game;
    game.AddFiles().Publish();
    game.Put("ToDownload.db", "");
    game.Put("Data/base.MPQ.part", game.Content.Files[0].Bytes.left(50000));
    game.Put("Data/first build.MPQ", QByteArray(30000, 'x'));
    game.Options.FreeBytes = [](QString const&) { return 2000 + 7 + 10000 + 17000; };
    QVERIFY(game.Open());
    QCOMPARE(game.Install(), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
}

void HostDiskFailuresTest::StreamedFilesThatDoNotFitLeaveTheBaseFiles()
{
    SessionGame game;
    game.AddFiles().Publish();
    game.Options.FreeBytes = [&](QString const&) {
        return game.Has("readme.txt") ? qint64(16999) : qint64(1'000'000);
    };
    QVERIFY(game.Open());
    QCOMPARE(game.Install(), QString("disk-full"));
    QCOMPARE(game.Wrong(), QStringList({"Data/streamed 1.MPQ", "Data/streamed 2.MPQ"}));
    QVERIFY(game.IsMarkedUnfinished());
}

void HostDiskFailuresTest::ADiskThatFillsUpStopsTheTransferAndKeepsIt()
{
    SessionGame game;
    game.AddFiles().Publish();
    std::atomic<qint64> free{1'000'000};
    game.Options.FreeBytes = [&](QString const&) { return free.load(); };
    game.HoldContent("Data/first build.MPQ", 10000);
    QVERIFY(game.Open());
    game.Start(RequestType::Install, game.Folder);
    QVERIFY(game.WaitForPart("Data/first build.MPQ", 10000));
    free = 100;
    QCOMPARE(game.End(), QString("disk-full"));
    QCOMPARE(game.Read("Data/first build.MPQ.part"), game.Content.Files[1].Bytes.left(10000));
    QCOMPARE(game.Read("Data/base.MPQ"), game.Content.Files[0].Bytes);
    free = 1'000'000;
    game.ForgetRequests();
    QCOMPARE(game.Run(RequestType::Update), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
    QVERIFY(game.WasResumedAt("Data/first build.MPQ", 10000));
    QVERIFY(!game.Requested().contains("Data/base.MPQ"));
}

void HostDiskFailuresTest::ARealVolumeThatIsTooSmallIsRefused()
{
    SessionGame game;
    SmallVolume const volume(game.Folder, "64k");
    if (!volume.IsMounted())
        QSKIP("this user may not mount a small volume");
    game.AddFiles().Publish();
    QVERIFY(game.Open());
    QCOMPARE(game.Install(), QString("disk-full"));
    QVERIFY(!game.Has("Data/base.MPQ.part"));
}

void HostDiskFailuresTest::AFolderThatIsALinkHasTheRoomOfItsOwnVolume()
{
    SessionGame game;
    QStringList flushed;
    game.Options.Flush = [&](QString const& p_Folder) { flushed += p_Folder; };
    SmallVolume const volume(game.Folder, "64k");
    if (!volume.IsMounted())
        QSKIP("this user may not mount a small volume");
    QVERIFY(QDir().mkpath(game.Base + "disk/enUS"));
    QVERIFY(QFile::link(game.Base + "disk", game.Path("Data")));
    game.AddFiles().Publish();
    QVERIFY(game.Open());
    QCOMPARE(game.InstallOver(), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
    QCOMPARE(flushed, QStringList({game.Folder, game.Path("Data")}));
}

void HostDiskFailuresTest::TheVolumeOfAFolderThatIsALinkIsNamedWhenItIsFull()
{
    SessionGame game;
    SmallVolume const volume(game.Base + "disk", "64k");
    if (!volume.IsMounted())
        QSKIP("this user may not mount a small volume");
    QVERIFY(QDir().mkpath(game.Folder) && QFile::link(game.Base + "disk", game.Path("Data")));
    game.AddFiles().Publish();
    QVERIFY(game.Open());
    QCOMPARE(game.InstallOver(), QString("disk-full"));
    QVERIFY2(game.Sentence().contains(game.Path("Data")), qPrintable(game.Sentence()));
    auto const& space = game.Result().Space;
    QCOMPARE(space.size(), std::size_t(2));
    QVERIFY(space[0].Folder == game.Folder && space[0].Files == 1 && space[0].After() > 0);
    QVERIFY(space[1].Folder == game.Path("Data") && space[1].Files == 3 && space[1].After() < 0);
}

void HostDiskFailuresTest::ARealVolumeThatFillsUpLosesNothing()
{
    SessionGame game;
    SmallVolume const volume(game.Folder, "400k");
    if (!volume.IsMounted())
        QSKIP("this user may not mount a small volume");
    game.AddFiles().Publish();
    // Nothing is known of the room beforehand: the write itself fails.
    game.Options.FreeBytes = [&](QString const& p_Path) {
        qint64 const free = Host::HostOptions::VolumeFreeBytes(p_Path);
        return game.Has("other") && free > 0 ? qint64(-1) : free;
    };
    QString const path = game.HoldContent("Data/first build.MPQ", 10000);
    QVERIFY(game.Open());
    game.Start(RequestType::Install, game.Folder);
    QVERIFY(game.WaitForPart("Data/first build.MPQ", 10000));
    auto other = std::make_unique<VolumeFiller>(game.Path("other"));
    game.Server.OpenGate(path);
    QCOMPARE(game.End(), QString("disk-full"));
    QCOMPARE(game.Read("Data/base.MPQ"), game.Content.Files[0].Bytes);
    QByteArray const part = game.Read("Data/first build.MPQ.part");
    QVERIFY(part.size() >= 10000);
    QCOMPARE(part, game.Content.Files[1].Bytes.left(part.size()));
    other.reset();
    QCOMPARE(game.Run(RequestType::Update), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
}

void HostDiskFailuresTest::WhatStandsInAFilesPlaceIsNamedAndTheRestArrives_data()
{
    QTest::addColumn<QString>("file");    ///< that is put
    QTest::addColumn<QString>("blocked"); ///< of the build
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("sentence");
    QTest::newRow("a folder") << "Data/streamed 1.MPQ/x"
                              << "Data/streamed 1.MPQ"
                              << "folder-blocks-file"
                              << "a folder stands where the file %1Data/streamed 1.MPQ belongs";
    QTest::newRow("a folder at the partial file")
        << "Data/streamed 1.MPQ.part/x"
        << "Data/streamed 1.MPQ"
        << "file-unwritable"
        << "the file %1Data/streamed 1.MPQ cannot be written (a folder stands at "
           "%1Data/streamed 1.MPQ.part)";
    QTest::newRow("a file at a folder of it")
        << "Data/enUS"
        << "Data/enUS/locale.MPQ"
        << "file-unwritable"
        << "the file %1Data/enUS/locale.MPQ cannot be written (%1Data/enUS is no folder)";
}

void HostDiskFailuresTest::WhatStandsInAFilesPlaceIsNamedAndTheRestArrives()
{
    QFETCH(QString, file);
    QFETCH(QString, blocked);
    QFETCH(QString, sentence);
    SessionGame game;
    game.AddFiles().Publish().PutInstalled();
    QVERIFY(QDir(game.Path("Data/enUS")).removeRecursively());
    QVERIFY(QFile::remove(game.Path("readme.txt")));
    QVERIFY(QFile::remove(game.Path("Data/streamed 1.MPQ")));
    game.Put(file, "of the user");
    QVERIFY(game.Open());
    QTEST(game.Run(RequestType::Update), "kind");
    QCOMPARE(game.Sentence(), sentence.replace("%1", game.Folder));
    QCOMPARE(game.Result().Problem->ExitStatus(), 7);
    QCOMPARE(game.Read(file), QByteArray("of the user"));

    QFile::remove(game.Path(file));
    QDir().rmdir(QFileInfo(game.Path(file)).path());
    QCOMPARE(game.Run(RequestType::Update), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
}

void HostDiskFailuresTest::APartialFileThatCannotBeWrittenIsNamed()
{
    VARNHOLT_AS_ORDINARY_USER();
    SessionGame game;
    game.AddFiles().Publish().PutInstalled();
    QVERIFY(QFile::remove(game.Path("readme.txt")));
    QString const part = game.Path("readme.txt.part");
    game.Put("readme.txt.part", "re");
    QVERIFY(SetMode(part, 0444));
    QVERIFY(game.Open());
    QCOMPARE(game.Run(RequestType::Update), QString("file-unwritable"));
    QVERIFY2(game.Sentence().contains(part), qPrintable(game.Sentence()));
    QVERIFY(SetMode(part, 0644));
    QCOMPARE(game.Run(RequestType::Update), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
}

void HostDiskFailuresTest::AFolderBelowThatCannotBeWrittenIsNamed()
{
    VARNHOLT_AS_ORDINARY_USER();
    SessionGame game;
    game.AddFiles().Publish().PutInstalled();
    QVERIFY(QFile::remove(game.Path("Data/enUS/locale.MPQ")));
    QVERIFY(SetMode(game.Path("Data/enUS"), 0555));
    QVERIFY(game.Open());
    QCOMPARE(game.Run(RequestType::Update), QString("folder-unwritable"));
    QVERIFY2(game.Sentence().contains(game.Path("Data/enUS")), qPrintable(game.Sentence()));
    QVERIFY(SetMode(game.Path("Data/enUS"), 0755));
    QCOMPARE(game.Run(RequestType::Update), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::HostDiskFailuresTest)
#include "tst_HostDiskFailures.moc"
