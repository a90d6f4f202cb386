#include "Host/Window/Dialogs/Dialogs.hpp"

#include "Host/Window/Dialogs/InstallDialog.hpp"
#include "Host/Window/Dialogs/LoginDialog.hpp"
#include "Host/Window/Dialogs/UninstallDialog.hpp"
#include "Host/Window/Main/GameController.hpp"

namespace Varnholt::Host {

Dialogs::Dialogs(GameController& p_Controller, QWidget& p_Window)
    : QObject(&p_Window)
    , Controller(p_Controller)
    , Window(p_Window)
{
}

void Dialogs::Open(QDialog& p_Dialog)
{
    p_Dialog.setAttribute(Qt::WA_DeleteOnClose);
    p_Dialog.open();
}

void Dialogs::OpenInstall(QString const& p_Folder)
{
    auto* const dialog = new InstallDialog(Controller, p_Folder, &Window);
    connect(dialog, &QDialog::accepted, this,
            [this, dialog] { Controller.Start(dialog->Request()); });
    Open(*dialog);
}

void Dialogs::OpenUninstall()
{
    Open(*new UninstallDialog(Controller, &Window));
}

void Dialogs::OpenLogin()
{
    ReadLogin(false);
}

void Dialogs::OpenAccount()
{
    ReadLogin(true);
}

/// The store stays until the window goes: it may still be remembering when the game runs.
void Dialogs::ReadLogin(bool p_Asks)
{
    auto* const store =
        new LoginStore(Controller.Info().AppId, Server, Controller.Options().SettingsFile, this);
    connect(store, &LoginStore::Noticed, &Controller, &GameController::TellNotice);
    connect(store, &LoginStore::WasRead, this, [=](LoginStore::Login const& p_Login) {
        if (!p_Login.Asks && !p_Asks) {
            RunRequest request;
            request.Kind = RunRequest::Type::Play;
            request.Argument = p_Login.Account;
            request.Password = p_Login.Password;
            return Controller.Start(request);
        }
        auto* const dialog = new LoginDialog(*store, Controller.Info().Name, p_Login, &Window);
        connect(dialog, &QDialog::accepted, this,
                [this, dialog] { Controller.Start(dialog->Request()); });
        Open(*dialog);
    });
    store->Read();
}

} // namespace Varnholt::Host
