#include "Tests/Runs/Game.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

namespace Varnholt::TestSupport {

class ComparisonUnsafePathsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void UnsafeEntriesOfARemoteManifestTouchNothingOutside();
};

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
    QCOMPARE(ReadFile(outside), QByteArray("the user's own"));
    QCOMPARE(game.Mode("../outside"), 0600);
    QCOMPARE(game.Requests("../outside"), 0);
    QCOMPARE(game.Log.CountContaining("Manifest entry dropped"), 3);
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::ComparisonUnsafePathsTest)
#include "tst_ComparisonUnsafePaths.moc"
