#pragma once

#include <QObject>
#include <QString>

class QWidget;

namespace Varnholt::Host {

class GameController;

/// What opens beside a page when the user asks for it; never by itself. Each sends its request to
/// the controller once the user has agreed.
class Dialogs : public QObject {
    Q_OBJECT

public:
    /// \param p_Window that the dialogs belong to
    Dialogs(GameController& p_Controller, QWidget& p_Window);

    /// Asks for the folder of an installation. \param p_Folder that is proposed; empty: a good one
    void OpenInstall(QString const& p_Folder = {});
    void OpenUninstall();
    void OpenSettings();
    /// Asks for account and password, and starts the game.
    void OpenLogin();

private:
    GameController& Controller;
    QWidget& Window;
};

} // namespace Varnholt::Host
