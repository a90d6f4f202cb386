#include "GameModules/LinkWatch.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/LogCapture.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QTemporaryDir>
#include <QtTest>

namespace Varnholt::TestSupport {

using Launcher::LinkWatch;

class LinkWatchTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void EachPathIsWarnedOfOnce();
    void ANewRunAndAnotherFolderWarnAnew();
    void LookingAgainSeesWhatIsNewAndWarnsNoMore();
    void RoomIsMadeInTheFilesOwnPlaceOnly();
    void NoFolderHasNoLinks();

private:
    int Warnings(char const* p_Path) const
    {
        return Log->CountContaining(QString("\"Game\" leaves \"%1\" alone").arg(p_Path));
    }

    std::unique_ptr<QTemporaryDir> Temporary;
    std::unique_ptr<LogCapture> Log;
    QString Folder;
};

void LinkWatchTest::init()
{
    Temporary = std::make_unique<QTemporaryDir>();
    Log.reset(); // before there is another
    Log = std::make_unique<LogCapture>();
    Folder = QDir(Temporary->path()).canonicalPath() + "/game/";
    QVERIFY(WriteFile(Folder + "file", "x"));
    QVERIFY(WriteFile(Folder + "../outside/file", "x"));
    QVERIFY(QFile::link("none", Folder + "gone"));
    QVERIFY(QFile::link("../outside", Folder + "out"));
    QVERIFY(QFile::link("../outside/file", Folder + "file-out"));
}

void LinkWatchTest::EachPathIsWarnedOfOnce()
{
    LinkWatch links("Game");
    for (int i = 0; i < 2; ++i) {
        QVERIFY(links.IsBarred(Folder, "gone/a"));
        QVERIFY(links.LeadsOut(Folder, "gone/a"));
        QVERIFY(links.LeadsOut(Folder, "out/b"));
        QVERIFY(!links.IsBarred(Folder, "out/c")); // the player's
    }
    QCOMPARE(Warnings("gone/a"), 1);
    QCOMPARE(Warnings("out/b"), 1);
    QCOMPARE(Log->CountContaining("out/c"), 0);
}

void LinkWatchTest::ANewRunAndAnotherFolderWarnAnew()
{
    LinkWatch links("Game");
    QVERIFY(links.IsBarred(Folder, "gone/a"));
    links.Begin(Folder);
    QVERIFY(links.IsBarred(Folder, "gone/a"));
    QCOMPARE(Warnings("gone/a"), 2);
    QVERIFY(!links.IsBarred(Folder + "../outside/", "gone/a"));
    QVERIFY(links.IsBarred(Folder, "gone/a"));
    QCOMPARE(Warnings("gone/a"), 3);
}

void LinkWatchTest::LookingAgainSeesWhatIsNewAndWarnsNoMore()
{
    LinkWatch links("Game");
    QVERIFY(links.IsBarred(Folder, "gone/a"));
    QVERIFY(!links.IsBarred(Folder, "new/a"));
    QVERIFY(QFile::link("none", Folder + "new"));
    QVERIFY(!links.IsBarred(Folder, "new/a"));
    links.LookAgain();
    QVERIFY(links.IsBarred(Folder, "new/a"));
    QVERIFY(links.IsBarred(Folder, "gone/a"));
    QCOMPARE(Warnings("gone/a"), 1);
}

void LinkWatchTest::RoomIsMadeInTheFilesOwnPlaceOnly()
{
    LinkWatch links("Game");
    QVERIFY(links.MakeRoom(Folder, "file-out"));
    QVERIFY(!QFile::exists(Folder + "file-out"));
    QCOMPARE(Log->CountContaining("replaces the symbolic link"), 1);
    QVERIFY(links.MakeRoom(Folder, "file"));
    QVERIFY(!links.MakeRoom(Folder, "out/file"));
    QCOMPARE(Warnings("out/file"), 1);
    QVERIFY(QFile::exists(Folder + "../outside/file"));
}

void LinkWatchTest::NoFolderHasNoLinks()
{
    LinkWatch links("Game");
    QVERIFY(!links.IsBarred({}, "gone/a"));
    QVERIFY(!links.LeadsOut({}, "gone/a"));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::LinkWatchTest)
#include "tst_LinkWatch.moc"
