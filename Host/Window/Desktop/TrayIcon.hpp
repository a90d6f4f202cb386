#pragma once

#include "Host/Window/Main/GameState.hpp"

#include <QMenu>
#include <QObject>
#include <QSystemTrayIcon>

namespace Varnholt::Host {

/// The program in the desktop's tray, for a window that is hidden.
class TrayIcon : public QObject {
    Q_OBJECT

public:
    explicit TrayIcon(QObject* p_Parent = nullptr);

    static bool IsAvailable() { return QSystemTrayIcon::isSystemTrayAvailable(); }
    void SetVisible(bool p_IsVisible) { Icon.setVisible(p_IsVisible); }
    /// \param p_Title what the window's title says
    void Show(GameState const& p_State, QString const& p_Title);
    /// Once more, after a change of the language.
    void Translate();

Q_SIGNALS:
    void ShowRequested();
    void PauseRequested();
    void ContinueRequested();
    void QuitRequested();

private:
    bool IsPaused = false;
    QSystemTrayIcon Icon;
    QMenu Menu;
    QAction* Open;
    QAction* Pause;
    QAction* Quit;
};

} // namespace Varnholt::Host
