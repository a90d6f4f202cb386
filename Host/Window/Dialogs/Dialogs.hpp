#pragma once

#include <QObject>
#include <QString>

class QDialog;
class QWidget;

namespace Varnholt::Host {

class GameController;
class LoginStore;

/// What opens beside a page when the user asks for it; never by itself. Each sends its request to
/// the controller once the user has agreed.
class Dialogs : public QObject {
    Q_OBJECT

public:
    /// \param p_Window that the dialogs belong to
    Dialogs(GameController& p_Controller, QWidget& p_Window);

    /// \param p_Server base address of the content server: passwords are remembered for it
    void SetServer(QString const& p_Server) { Server = p_Server; }
    /// Asks for the folder of an installation. \param p_Folder that is proposed; empty: a good one
    void OpenInstall(QString const& p_Folder = {});
    void OpenUninstall();
    /// Asks whoever keeps the settings to show them.
    void OpenSettings() { Q_EMIT SettingsRequested(); }
    /// Starts the game as is remembered, or asks for account and password.
    void OpenLogin();
    /// Asks for account and password, whatever is remembered, and starts the game; or forgets them.
    void OpenAccount();

Q_SIGNALS:
    void SettingsRequested();

private:
    void Open(QDialog& p_Dialog);
    void ReadLogin(bool p_Asks);

    GameController& Controller;
    QWidget& Window;
    QString Server;
};

} // namespace Varnholt::Host
