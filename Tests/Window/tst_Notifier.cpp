#include "Host/Window/Desktop/Notifier.hpp"
#include "Tests/Host/SecretService.hpp"
#include "Tests/Support/TestHost.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QSignalSpy>

namespace Varnholt::TestSupport {

/// What shows notifications on a desktop.
class NotificationService : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")

public:
    struct Shown {
        uint Replaced;
        QString Title;
        QString Text;
    };
    std::vector<Shown> All;

public Q_SLOTS:
    uint Notify(QString const&, uint p_Replaced, QString const&, QString const& p_Title,
                QString const& p_Text, QStringList const&, QVariantMap const&, int)
    {
        All.push_back({p_Replaced, p_Title, p_Text});
        return c_Id;
    }

Q_SIGNALS:
    void ActionInvoked(uint p_Id, QString const& p_Action);

public:
    static constexpr uint c_Id = 42;
};

/// Notifications, as the desktop gets them.
class NotifierTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void TheDesktopGetsThemAndTellsWhichIsChosen();
};

void NotifierTest::TheDesktopGetsThemAndTellsWhichIsChosen()
{
    SecretService const bus; // of this process from now on
    QDBusConnection desktop = QDBusConnection::connectToBus(QDBusConnection::SessionBus, "desktop");
    NotificationService service;
    QVERIFY(desktop.registerService("org.freedesktop.Notifications"));
    QVERIFY(desktop.registerObject("/org/freedesktop/Notifications", &service,
                                   QDBusConnection::ExportAllContents));
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
