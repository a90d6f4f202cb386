#include "Host/Window/Desktop/TrayIcon.hpp"

#include <QApplication>

namespace Varnholt::Host {

TrayIcon::TrayIcon(QObject* p_Parent)
    : QObject(p_Parent)
    , Icon(QApplication::windowIcon())
    , Open(Menu.addAction(QString()))
    , Pause(Menu.addAction(QString()))
    , Quit(Menu.addAction(QString()))
{
    Menu.insertSeparator(Quit);
    Menu.setDefaultAction(Open);
    Pause->setVisible(false);
    Icon.setContextMenu(&Menu);
    connect(Open, &QAction::triggered, this, &TrayIcon::ShowRequested);
    connect(Pause, &QAction::triggered, this, [this] {
        if (IsPaused)
            Q_EMIT ContinueRequested();
        else
            Q_EMIT PauseRequested();
    });
    connect(Quit, &QAction::triggered, this, &TrayIcon::QuitRequested);
    connect(&Icon, &QSystemTrayIcon::activated, this,
            [this](QSystemTrayIcon::ActivationReason p_Reason) {
                if (p_Reason == QSystemTrayIcon::Trigger)
                    Q_EMIT ShowRequested();
            });
    Translate();
}

void TrayIcon::Show(GameState const& p_State, QString const& p_Title)
{
    IsPaused = p_State.IsPaused;
    Pause->setVisible(p_State.Job && (IsPaused || IsDownloading(p_State.Snapshot.Phase)));
    Icon.setToolTip(p_Title);
    Translate();
}

void TrayIcon::Translate()
{
    Open->setText(tr("&Show the window"));
    Pause->setText(IsPaused ? tr("&Continue") : tr("&Pause"));
    Quit->setText(tr("&Quit"));
}

} // namespace Varnholt::Host
