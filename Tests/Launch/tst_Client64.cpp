#include "Tests/Launch/LaunchBench.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/OrdinaryUser.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

namespace Varnholt::TestSupport {

/// The 64-bit Windows client is put out of the way by every start.
class Client64Test : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void TheClientIsRenamed_data();
    void TheClientIsRenamed();
    void WithADisabledOneBothStay();
    void WithoutTheClientNothingIsMade();
    void ADisabledOneStaysDisabled();
    void OtherSpellingsAreLeftAlone();
    void AFailureDoesNotStopTheStart();
};

void Client64Test::TheClientIsRenamed_data()
{
    QTest::addColumn<bool>("running");
    QTest::addColumn<bool>("executable");
    QTest::newRow("first start") << false << true;
    QTest::newRow("game runs") << true << true;
    QTest::newRow("build without an executable") << false << false;
}

void Client64Test::TheClientIsRenamed()
{
    QFETCH(bool, running);
    QFETCH(bool, executable);
    LaunchBench bench;
    bench.Put("Wow-64.exe", "client");
    bench.App.GameRuns = running;
    if (!executable)
        bench.App.Manifest.Files.clear();
    QCOMPARE(bench.App.Start("", ""), executable);
    QVERIFY(!bench.Has("Wow-64.exe"));
    QCOMPARE(bench.Read("Wow-64.exe.disabled"), QByteArray("client"));
}

void Client64Test::WithADisabledOneBothStay()
{
    LaunchBench bench;
    bench.Put("Wow-64.exe", "new");
    bench.Put("Wow-64.exe.disabled", "old");
    QVERIFY(bench.App.Start("", ""));
    QCOMPARE(bench.Read("Wow-64.exe"), QByteArray("new"));
    QCOMPARE(bench.Read("Wow-64.exe.disabled"), QByteArray("old"));
    QVERIFY(bench.RunUntilStarted());
    QCOMPARE(bench.Host.Errors(), QStringList());
}

void Client64Test::WithoutTheClientNothingIsMade()
{
    LaunchBench bench;
    QVERIFY(bench.App.Start("", ""));
    QVERIFY(!bench.Has("Wow-64.exe"));
    QVERIFY(!bench.Has("Wow-64.exe.disabled"));
}

void Client64Test::ADisabledOneStaysDisabled()
{
    LaunchBench bench;
    bench.Put("Wow-64.exe", "client");
    QVERIFY(bench.App.Start("", ""));
    QVERIFY(bench.App.Start("", ""));
    QVERIFY(!bench.Has("Wow-64.exe"));
    QCOMPARE(bench.Read("Wow-64.exe.disabled"), QByteArray("client"));
    QVERIFY(!bench.Has("Wow-64.exe.disabled.disabled"));
}

void Client64Test::OtherSpellingsAreLeftAlone()
{
    LaunchBench bench;
    bench.Put("wow-64.exe", "lower case");
    if (bench.Has("Wow-64.exe"))
        QSKIP("this file system does not tell letter case");
    bench.Put("Wow.exe", "32 bits");
    bench.Put("Data/Wow-64.exe", "deeper");
    QVERIFY(bench.App.Start("", ""));
    QVERIFY(bench.Has("wow-64.exe"));
    QVERIFY(bench.Has("Wow.exe"));
    QVERIFY(bench.Has("Data/Wow-64.exe"));
}

void Client64Test::AFailureDoesNotStopTheStart()
{
    VARNHOLT_AS_ORDINARY_USER();
    LaunchBench bench;
    bench.PutTemplates();
    bench.Put("Wow-64.exe", "client");
    QVERIFY(SetMode(bench.Folder, 0555));
    QVERIFY(bench.App.Start("me", "secret"));
    QVERIFY(SetMode(bench.Folder, 0755));
    QCOMPARE(bench.Read("Wow-64.exe"), QByteArray("client"));
    QVERIFY(bench.HasLiveFiles());
    QVERIFY(bench.RunUntilStarted());
    QCOMPARE(bench.Host.Errors(), QStringList());
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::Client64Test)
#include "tst_Client64.moc"
