#pragma once

#include "Host/Core/Settings/AsyncSettings.hpp"
#include "Host/Window/Desktop/Language.hpp"
#include "Host/Window/Desktop/Notifier.hpp"
#include "Host/Window/Desktop/TrayIcon.hpp"
#include "Host/Window/Settings/WindowSettings.hpp"

#include <QObject>

namespace Varnholt::Host {

class MainWindow;

/// The window as a part of the desktop, by the user's settings: its place, its language, its icon
/// in the tray, notifications.
class Desktop : public QObject {
    Q_OBJECT

public:
    /// \param p_Window must outlive this
    /// \param p_Language in use already
    /// \param p_DefaultServer base address of the server that is asked when none is chosen
    Desktop(MainWindow& p_Window, Language& p_Language, WindowSettings p_Settings,
            QString p_DefaultServer);

    /// Shows the window where it was, or hides it as the settings say, and begins.
    void Begin();
    /// Brings the window before the others.
    void ShowWindow();

protected:
    bool eventFilter(QObject* p_Object, QEvent* p_Event) override;

private:
    void Connect();
    void Use(WindowSettings const& p_Settings);
    bool StaysInTray() const { return Settings.StaysInTray && TrayIcon::IsAvailable(); }
    void OpenSettings(WindowSettings const& p_Settings);
    void Save(WindowSettings const& p_Settings);
    void KeepPlace();
    void Notify(RunRequest const& p_Request, RunResult const& p_Result);

    MainWindow& Window;
    Language& Texts;
    WindowSettings Settings;
    QString const DefaultServer;
    AsyncSettings File;
    TrayIcon Tray;
    Notifier Messages;
};

} // namespace Varnholt::Host
