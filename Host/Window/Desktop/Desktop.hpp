#pragma once

#include "Host/Cli/Choice.hpp"
#include "Host/Window/Desktop/Language.hpp"
#include "Host/Window/Desktop/Notifier.hpp"
#include "Host/Window/Desktop/TrayIcon.hpp"
#include "Host/Window/Settings/SettingsWatch.hpp"
#include "Host/Window/Settings/WindowSettings.hpp"

#include <QObject>

namespace Varnholt::Host {

class MainWindow;

/// The window as a part of the desktop, by the user's settings, also those that others change while
/// it runs: its place, its language, its icon in the tray, notifications.
class Desktop : public QObject {
    Q_OBJECT

public:
    using HasTray = bool (*)();

    /// \param p_Window must outlive this
    /// \param p_Language in use already
    /// \param p_Given what stands above the settings
    /// \param p_DefaultServer base address of the server that is asked when none is chosen
    /// \param p_HasTray whether this desktop has one
    Desktop(MainWindow& p_Window, Language& p_Language, Choice p_Given, QString p_DefaultServer,
            HasTray p_HasTray = TrayIcon::IsAvailable);

    /// Shows the window where it was, or hides it as the settings say, and begins.
    /// \param p_Kept everything that the settings hold
    void Begin(SettingsFile::Values const& p_Kept);
    /// Brings the window before the others.
    void ShowWindow();

protected:
    bool eventFilter(QObject* p_Object, QEvent* p_Event) override;

private:
    void Connect();
    void OnRead(SettingsFile::Values const& p_Kept, std::optional<Failure> const& p_Failure);
    void TakeUp(SettingsFile::Values const& p_Kept);
    void TellFaults(std::vector<Failure> const& p_Faults);
    void Use(WindowSettings const& p_Settings);
    bool StaysInTray() const { return Settings.StaysInTray && IsTrayThere(); }
    void OpenSettings();
    void Change(SettingsFile::Values const& p_Changes);
    void KeepPlace();
    void Notify(RunRequest const& p_Request, RunResult const& p_Result);

    MainWindow& Window;
    Language& Texts;
    Choice const Given;
    QString const DefaultServer;
    HasTray const IsTrayThere;
    SettingsWatch File;
    SettingsFile::Values Kept;
    WindowSettings Settings;      ///< of these
    bool AsksForSettings = false; ///< the user has asked for their dialog
    QStringList ToldFaults;
    TrayIcon Tray{this};
    Notifier Messages;
};

} // namespace Varnholt::Host
