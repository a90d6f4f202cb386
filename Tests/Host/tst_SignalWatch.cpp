#include "Host/Cli/SignalWatch.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

#include <csignal>

namespace Varnholt::TestSupport {

namespace {

constexpr int c_Watched[] = {SIGINT, SIGTERM, SIGHUP, SIGUSR1};

volatile std::sig_atomic_t g_Caught = 0;

void Catch(int p_Signal, siginfo_t*, void*)
{
    g_Caught = p_Signal;
}

} // namespace

class SignalWatchTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void WhatSignalsDidBeforeTheyDoAgain();
    void WhatWasIgnoredStaysIgnored();
};

void SignalWatchTest::WhatSignalsDidBeforeTheyDoAgain()
{
    struct sigaction own = {};
    own.sa_sigaction = Catch;
    own.sa_flags = SA_SIGINFO | SA_RESTART;
    sigaddset(&own.sa_mask, SIGALRM);
    for (int const signal : c_Watched)
        QCOMPARE(sigaction(signal, &own, nullptr), 0);
    {
        Host::SignalWatch watch;
        QSignalSpy const toggles(&watch, &Host::SignalWatch::ToggleRequested);
        raise(SIGUSR1);
        QTRY_COMPARE(toggles.size(), 1);
        QCOMPARE(int{g_Caught}, 0);
    }
    for (int const signal : c_Watched) {
        struct sigaction now = {};
        QCOMPARE(sigaction(signal, nullptr, &now), 0);
        QVERIFY(now.sa_sigaction == Catch);
        QCOMPARE(now.sa_flags & (SA_SIGINFO | SA_RESTART), own.sa_flags);
        QCOMPARE(sigismember(&now.sa_mask, SIGALRM), 1);
        raise(signal);
        QCOMPARE(int{g_Caught}, signal);
    }
}

void SignalWatchTest::WhatWasIgnoredStaysIgnored()
{
    QVERIFY(std::signal(SIGHUP, SIG_IGN) != SIG_ERR);
    {
        Host::SignalWatch watch;
        raise(SIGHUP);
        QVERIFY(!Host::SignalWatch::IsEndRequested());
    }
    QVERIFY(std::signal(SIGHUP, SIG_DFL) == SIG_IGN);
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::SignalWatchTest)
#include "tst_SignalWatch.moc"
