#include "Host/Window/Desktop/Notifier.hpp"
#include "Tests/Host/SecretService.hpp"
#include "Tests/Support/TestHost.hpp"
#include "Tests/Support/TestMain.hpp"
#include "Tests/Window/NotificationService.hpp"

#include <QSignalSpy>

namespace Varnholt::TestSupport {

/// Notifications, as the desktop gets them.
class NotifierTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void TheDesktopGetsThemAndTellsWhichIsChosen();
};

void NotifierTest::TheDesktopGetsThemAndTellsWhichIsChosen()
{
    SecretService const bus; // of this process from now on
    NotificationService service;
    QVERIFY(service.Register());
    Host::Notifier notifier;
    QSignalSpy const chosen(&notifier, &Host::Notifier::Chosen);
    notifier.Show("Game", "1 < 2");
    QTRY_COMPARE(service.All.size(), std::size_t(1));
    QCOMPARE(service.All[0].Title, QString("Game"));
    QCOMPARE(service.All[0].Text, QString("1 &lt; 2"));
    QCOMPARE(service.All[0].Replaced, 0u);
    // The number of the first one may still be on its way.
    QTRY_VERIFY((notifier.Show("Game", "again"), service.All.back().Replaced) ==
                NotificationService::c_Id);
    Q_EMIT service.ActionInvoked(NotificationService::c_Id + 1, "default");
    Q_EMIT service.ActionInvoked(NotificationService::c_Id, "default");
    QTRY_COMPARE(chosen.size(), 1);
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::NotifierTest)
#include "tst_Notifier.moc"
