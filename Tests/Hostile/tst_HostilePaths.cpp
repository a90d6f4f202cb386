#include "Tests/Hostile/HostileGame.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

namespace Varnholt::TestSupport {

/// A manifest whose paths lead elsewhere, or nowhere.
class HostilePathsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void PathsThatLeaveTheFolderAreLeftOutOfAWholeLife();
    void PathsThatNoFileSystemTakesAreNamedAndTheOthersArrive();
    void OfTooManyOfThemTheInstallationEnds();
    void PathsThatComeTwiceAreOneFile();
    void AFileInTheWayOfAFolderIsNamedAndTheOthersArrive();
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
                            QString(5000, QChar('a')),
                            "deep/" + QString(256, QChar('a')),
                            QString("a/").repeated(512),
                            "a" + QString(100000, QChar('/')) + "b",
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

void HostilePathsTest::PathsThatNoFileSystemTakesAreNamedAndTheOthersArrive()
{
    QString const path(251, QChar('a')); // with ".part" behind it
    HostileGame game;
    game.AddEntry(path, HostileGame::c_Executable)
        .AddEntry("deep/" + path)
        .AddEntry("no folder/../file")
        .AddEntry("last")
        .AddEntry('b' + path, 0, true)
        .AddEntry("last streamed", 0, true);
    game.Begin();
    QCOMPARE(game.Install(), QString("file-unwritable"));
    QVERIFY2(game.Sentence().contains("/" + path + " cannot be written (File name too long)"),
             qPrintable(game.Sentence()));
    QCOMPARE(game.Wrong(), QStringList());
    QCOMPARE(game.WrongEntries(),
             QStringList({path, "deep/" + path, "no folder/../file", 'b' + path}));
    QVERIFY(game.IsMarkedUnfinished());
    QCOMPARE(game.Run(RequestType::Repair), QString("file-unwritable"));
    QCOMPARE(game.Uninstall(), QString("done"));
    QCOMPARE(game.Disturbances(), QStringList());
}

void HostilePathsTest::OfTooManyOfThemTheInstallationEnds()
{
    HostileGame game;
    for (int i = 0; i < 100; ++i)
        game.AddEntry(QString(250, QChar('a')) + QString::number(i));
    game.Begin();
    QCOMPARE(game.Install(), QString("file-unwritable"));
}

void HostilePathsTest::PathsThatComeTwiceAreOneFile()
{
    HostileGame game;
    game.AddEntry("twice").AddEntry("twice", HostileGame::c_ReadOnly).AddEntry("twice", 0, true);
    game.AddEntry("readme.txt").AddEntry("last");
    game.Begin();
    // Two files of one name are never both right: the later one wins each time.
    QCOMPARE(game.Install(), QString("done"));
    QCOMPARE(game.Wrong(), QStringList("readme.txt"));
    QCOMPARE(game.WrongEntries(), QStringList());
    QCOMPARE(game.Run(RequestType::Verify), QString("files-wrong"));
    QCOMPARE(game.Uninstall(), QString("done"));
    QCOMPARE(game.Disturbances(), QStringList());
}

void HostilePathsTest::AFileInTheWayOfAFolderIsNamedAndTheOthersArrive()
{
    HostileGame game;
    game.AddEntry("a").AddEntry("a/b").AddEntry("last").AddEntry("last streamed", 0, true);
    game.Begin();
    QCOMPARE(game.Install(), QString("file-unwritable"));
    QVERIFY2(game.Sentence().contains(game.Path("a/b")), qPrintable(game.Sentence()));
    QCOMPARE(game.Wrong(), QStringList());
    QCOMPARE(game.WrongEntries(), QStringList("a/b"));
    QCOMPARE(game.Uninstall(), QString("done"));
    QCOMPARE(game.Disturbances(), QStringList());
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::HostilePathsTest)
#include "tst_HostilePaths.moc"
