#include "Tests/Endurance/EnduringGame.hpp"
#include "Tests/Endurance/RandomCaller.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

#include <cstdio>

namespace Varnholt::TestSupport {

namespace {

/// A number from the environment, for a search with other draws than the usual ones.
int NumberFrom(char const* p_Variable, int p_Default)
{
    bool valid = false;
    int const number = qEnvironmentVariableIntValue(p_Variable, &valid);
    return valid ? number : p_Default;
}

/// Qt Test cuts long messages.
bool IsWell(QString const& p_Wrong)
{
    if (!p_Wrong.isEmpty())
        std::fprintf(stderr, "%s\n", qPrintable(p_Wrong));
    return p_Wrong.isEmpty();
}

} // namespace

class RandomCallsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void AlwaysEndInACompleteGame_data();
    void AlwaysEndInACompleteGame();

private:
    quint32 Seed = 0;
    int Calls = 0;
};

void RandomCallsTest::initTestCase()
{
    constexpr int c_Seed = 20240607;
    constexpr int c_Calls = 2500;
    Seed = static_cast<quint32>(NumberFrom("VARNHOLT_TEST_SEED", c_Seed));
    Calls = NumberFrom("VARNHOLT_TEST_CALLS", c_Calls);
    std::printf("VARNHOLT_TEST_SEED=%u VARNHOLT_TEST_CALLS=%d\n", Seed, Calls);
    std::fflush(stdout);
}

void RandomCallsTest::AlwaysEndInACompleteGame_data()
{
    QTest::addColumn<bool>("byHand");
    QTest::addColumn<int>("share");
    QTest::newRow("with a worker") << false << 3;
    QTest::newRow("with queues drained in any order") << true << 1;
}

void RandomCallsTest::AlwaysEndInACompleteGame()
{
    constexpr int c_Shares = 4;
    constexpr int c_CallsBetweenHealings = 150;
    QFETCH(bool, byHand);
    QFETCH(int, share);
    EnduringGame game(byHand ? TestHost::Worker::ByHand : TestHost::Worker::Running);
    RandomCaller caller(game, Seed + static_cast<quint32>(byHand));
    QVERIFY(game.Begin());
    QVERIFY(IsWell(caller.Heal()));
    ProcessUsage const before = game.SettledUsage();

    int const calls = Calls * share / c_Shares;
    for (int i = 1; i <= calls; ++i) {
        caller.Step();
        if (i % c_CallsBetweenHealings != 0 && i != calls)
            continue;
        QVERIFY(IsWell(caller.Heal()));
    }
    ProcessUsage const after = game.SettledUsage(before);
    QVERIFY2(after.IsWithin(before), qPrintable(before.Text() + "; then " + after.Text()));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::RandomCallsTest)
#include "tst_RandomCalls.moc"
