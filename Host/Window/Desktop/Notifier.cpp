#include "Host/Window/Desktop/Notifier.hpp"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QVariantMap>

namespace Varnholt::Host {

namespace {

QString const c_Service = QStringLiteral("org.freedesktop.Notifications");
QString const c_Path = QStringLiteral("/org/freedesktop/Notifications");

} // namespace

Notifier::Notifier(QObject* p_Parent)
    : QObject(p_Parent)
{
    QDBusConnection::sessionBus().connect(c_Service, c_Path, c_Service,
                                          QStringLiteral("ActionInvoked"), this,
                                          SLOT(OnAction(uint, QString)));
}

void Notifier::Show(QString const& p_Title, QString const& p_Text)
{
    constexpr int c_AsTheDesktopLikes = -1;

    QDBusMessage message =
        QDBusMessage::createMethodCall(c_Service, c_Path, c_Service, QStringLiteral("Notify"));
    QVariantMap const hints{{QStringLiteral("desktop-entry"), QStringLiteral("varnholt-window")}};
    message << QStringLiteral("Varnholt") << Id << QStringLiteral("varnholt-window") << p_Title
            << p_Text.toHtmlEscaped() << QStringList{QStringLiteral("default"), QString()} << hints
            << c_AsTheDesktopLikes;
    auto* const watcher =
        new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(message), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        QDBusPendingReply<uint> const reply = *watcher;
        if (!reply.isError())
            Id = reply.value();
        watcher->deleteLater();
    });
}

void Notifier::OnAction(uint p_Id, QString const& p_Action)
{
    if (p_Id == Id && Id != 0 && p_Action == QLatin1String("default"))
        Q_EMIT Chosen();
}

} // namespace Varnholt::Host
