#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QStringList>
#include <QVariantMap>

#include <vector>

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

    /// Is there from now on.
    [[nodiscard]] bool Register()
    {
        QDBusConnection desktop =
            QDBusConnection::connectToBus(QDBusConnection::SessionBus, "desktop");
        return desktop.registerService("org.freedesktop.Notifications") &&
               desktop.registerObject("/org/freedesktop/Notifications", this,
                                      QDBusConnection::ExportAllContents);
    }

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

} // namespace Varnholt::TestSupport
