#include "GameModules/ManifestPaths.hpp"
#include "Tests/Runs/Game.hpp"

#include <QtTest>

namespace Varnholt::TestSupport {

namespace {

Launcher::ApplicationManifestFileEntry EntryOf(QString const& p_Path)
{
    Launcher::ApplicationManifestFileEntry entry;
    entry.Path = p_Path;
    return entry;
}

} // namespace

class ComparisonUnsafePathsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void AnUnsafeEntryIsDroppedWithOneWarning();
    void UnsafeEntriesOfARemoteManifestTouchNothingOutside();
};

void ComparisonUnsafePathsTest::AnUnsafeEntryIsDroppedWithOneWarning()
{
    LogCapture log;
    Launcher::ApplicationManifest manifest;
    manifest.Files = {EntryOf("a"), EntryOf("../b"), EntryOf("c"), EntryOf("")};
    manifest.StreamedFiles = {EntryOf("/d"), EntryOf("e")};
    Launcher::ManifestPaths::DropUnsafeEntries(manifest);
    QCOMPARE(manifest.Files.size(), std::size_t{2});
    QCOMPARE(manifest.Files[0].Path, QString("a"));
    QCOMPARE(manifest.Files[1].Path, QString("c"));
    QCOMPARE(manifest.StreamedFiles.size(), std::size_t{1});
    QCOMPARE(manifest.StreamedFiles[0].Path, QString("e"));
    QCOMPARE(log.CountContaining("Manifest entry dropped"), 3);
    QCOMPARE(log.CountContaining("\"../b\""), 1);
    QCOMPARE(log.CountContaining("\"/d\""), 1);
}

void ComparisonUnsafePathsTest::UnsafeEntriesOfARemoteManifestTouchNothingOutside()
{
    Game game;
    QString const outside = game.Temporary.path() + "/outside";
    game.Add({"a", "inside"})
        .Add({"../outside", "from the server", 0x1})
        .Add({outside, "from the server", 0x2})
        .Add({"../outside", "from the server", 0, {}, true});
    game.Publish();
    game.Install();
    QFile file(outside);
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write("the user's own") > 0);
    file.close();
    QVERIFY(file.setPermissions(QFile::ReadOwner | QFile::WriteOwner));

    game.App.Init();
    QVERIFY(game.Host.RunUntil([&] { return game.Host.FinishedCount == 1 || game.Has("a"); }));
    QVERIFY(game.Finish());
    QCOMPARE(game.Read("a"), QByteArray("inside"));
    QCOMPARE(ContentOf(outside), QByteArray("the user's own"));
    QCOMPARE(game.Mode("../outside"), 0600);
    QCOMPARE(game.Requests("../outside"), 0);
    QCOMPARE(game.Log.CountContaining("Manifest entry dropped"), 3);
}

} // namespace Varnholt::TestSupport

QTEST_GUILESS_MAIN(Varnholt::TestSupport::ComparisonUnsafePathsTest)
#include "tst_ComparisonUnsafePaths.moc"
