#include "GameModules/ResumeGate.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

namespace Varnholt::TestSupport {

using Launcher::ResumeGate;

class ResumeGateTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void ATicketHoldsUntilAllAreVoid();
    void OnePollPerTicketIsEnough();
    void AfterItsPauseAPollMayBeginAgain();
    void AVoidPollEndsAndCallsNothing();
    void APollCallsWithItsOwnTicket();
    void BehindAVoidPollANewTicketMayPoll();
};

void ResumeGateTest::ATicketHoldsUntilAllAreVoid()
{
    ResumeGate gate;
    auto const ticket = gate.Now();
    QVERIFY(gate.Holds(ticket));
    gate.VoidAll();
    QVERIFY(!gate.Holds(ticket));
    QVERIFY(gate.Holds(gate.Now()));
}

void ResumeGateTest::OnePollPerTicketIsEnough()
{
    ResumeGate gate;
    QVERIFY(gate.BeginPoll(gate.Now()));
    QVERIFY(!gate.BeginPoll(gate.Now()));
}

void ResumeGateTest::AfterItsPauseAPollMayBeginAgain()
{
    ResumeGate gate;
    QVERIFY(gate.BeginPoll(gate.Now()));
    QVERIFY(gate.EndPoll(gate.Now()));
    QVERIFY(gate.BeginPoll(gate.Now()));
}

void ResumeGateTest::AVoidPollEndsAndCallsNothing()
{
    ResumeGate gate;
    auto const ticket = gate.Now();
    QVERIFY(gate.BeginPoll(ticket));
    gate.VoidAll();
    QVERIFY(!gate.EndPoll(ticket));
    QVERIFY(gate.Polled() != ticket);
}

void ResumeGateTest::APollCallsWithItsOwnTicket()
{
    ResumeGate gate;
    auto const ticket = gate.Now();
    QVERIFY(!gate.Holds(gate.Polled())); // none has called yet
    QVERIFY(gate.BeginPoll(ticket) && gate.EndPoll(ticket));
    gate.VoidAll(); // while it calls
    QCOMPARE(gate.Polled(), ticket);
    QVERIFY(!gate.Holds(gate.Polled()));
}

void ResumeGateTest::BehindAVoidPollANewTicketMayPoll()
{
    ResumeGate gate;
    QVERIFY(gate.BeginPoll(gate.Now()));
    gate.VoidAll();
    QVERIFY(gate.BeginPoll(gate.Now()));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::ResumeGateTest)
#include "tst_ResumeGate.moc"
