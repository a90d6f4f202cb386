#include "Tests/Hostile/HostileGame.hpp"
#include "Tests/Support/FileTools.hpp"

#include <QtTest>

namespace Varnholt::TestSupport {

/// A manifest whose paths lead elsewhere, or nowhere.
class HostilePathsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void PathsThatLeaveTheFolderAreLeftOutOfAWholeLife();
};

void HostilePathsTest::PathsThatLeaveTheFolderAreLeftOutOfAWholeLife()
{
    HostileGame game;
    QString const half(QChar(0xd800));
    QString const nul(QChar::Null);
    QStringList const paths{"../../outside/file",
                            "../../outside/new",
                            "Data/../../../outside/file",
                            "x/y/../../../../outside/file",
                            "..\\..\\outside\\file",
                            game.Outside.Path("file"),
                            '/' + game.Outside.Path("file"),
                            ".",
                            "Data/..",
                            "..",
                            ".." + half,
                            half,
                            "",
                            "/",
                            ".." + nul + "x",
                            "readme.txt" + nul + ".exe"};
    for (QString const& path : paths)
        game.AddEntry(path, HostileGame::c_ReadOnly)
            .AddEntry(path, HostileGame::c_Executable)
            .AddEntry(path, HostileGame::c_Executable, true);
    game.Begin();
    int const modeAbove = ModeOf(game.Base);
    QVERIFY(QDir().mkpath(game.Folder));
    int const mode = ModeOf(game.Folder);

    QCOMPARE(game.Install(), QString("done"));
    QCOMPARE(game.Log.CountContaining("Manifest entry dropped"), 3 * paths.size());
    QCOMPARE(game.Wrong(), QStringList());
    QCOMPARE(game.Run(RequestType::Update), QString("done"));
    game.Damage("readme.txt");
    QCOMPARE(game.Run(RequestType::Repair), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
    QCOMPARE(game.Play(), QString("done"));
    QCOMPARE(ModeOf(game.Folder), mode);
    QCOMPARE(game.Uninstall(), QString("done"));
    QCOMPARE(ModeOf(game.Base), modeAbove);
    QCOMPARE(game.Disturbances(), QStringList());
    QVERIFY(game.Requested().filter("hostile").isEmpty());
}

} // namespace Varnholt::TestSupport

QTEST_GUILESS_MAIN(Varnholt::TestSupport::HostilePathsTest)
#include "tst_HostilePaths.moc"
