#include "Host/Window/Dialogs/Dialogs.hpp"

#include "Host/Window/Main/GameController.hpp"

#include <QDir>
#include <QFileDialog>
#include <QMessageBox>

namespace Varnholt::Host {

Dialogs::Dialogs(GameController& p_Controller, QWidget& p_Window)
    : QObject(&p_Window)
    , Controller(p_Controller)
    , Window(p_Window)
{
}

void Dialogs::OpenInstall(QString const& p_Folder)
{
    QString const folder = QFileDialog::getExistingDirectory(
        &Window, tr("Where shall the game be?"), p_Folder.isEmpty() ? QDir::homePath() : p_Folder);
    if (folder.isEmpty())
        return;
    RunRequest request;
    request.Kind = RunRequest::Type::Install;
    request.Argument = folder;
    Controller.Start(request);
}

void Dialogs::OpenUninstall()
{
    if (QMessageBox::question(&Window, tr("Uninstall"), tr("Shall the game's files be deleted?")) !=
        QMessageBox::Yes)
        return;
    RunRequest request;
    request.Kind = RunRequest::Type::Uninstall;
    request.DeletesFiles = request.Confirmed = true;
    Controller.Start(request);
}

void Dialogs::OpenSettings() {}

void Dialogs::OpenLogin()
{
    Controller.Start(RunRequest::Type::Play);
}

} // namespace Varnholt::Host
