#include "Host/Window/Main/CommandRunner.hpp"

#include "Host/Window/Dialogs/Dialogs.hpp"
#include "Host/Window/Main/GameController.hpp"

#include <utility>

namespace Varnholt::Host {

using Type = RunRequest::Type;

CommandRunner::CommandRunner(GameController& p_Controller, Dialogs& p_Dialogs, QString p_LogFile,
                             QObject* p_Parent)
    : QObject(p_Parent)
    , Controller(p_Controller)
    , Windows(p_Dialogs)
    , LogFile(std::move(p_LogFile))
{
}

void CommandRunner::Run(PageCommand p_Command)
{
    GameState const& state = Controller.State();
    switch (p_Command) {
    case PageCommand::Install:
        return Windows.OpenInstall();
    case PageCommand::ChooseFolder:
        return Windows.OpenInstall(state.Failed.Argument);
    case PageCommand::Continue:
    case PageCommand::Update:
        return Controller.Start(Type::Update);
    case PageCommand::Play:
        return Windows.OpenLogin();
    case PageCommand::TryAgain:
        return TryAgain();
    case PageCommand::Resume:
        return Controller.Continue();
    case PageCommand::Pause:
        return Controller.Pause();
    case PageCommand::Stop:
        return Controller.Interrupt();
    case PageCommand::Check:
        return Controller.Start(Type::Verify);
    case PageCommand::Repair:
        return Controller.Start(Type::Repair);
    case PageCommand::StopRepair:
        return Controller.StopRepair();
    case PageCommand::OpenFolder:
        Q_EMIT ShowRequested(state.Status ? state.Status->Folder : QString());
        return;
    case PageCommand::ShowOutput:
        Q_EMIT ShowRequested(state.Problem ? state.Problem->Subject : QString());
        return;
    case PageCommand::ShowLog:
        Q_EMIT ShowRequested(LogFile);
        return;
    case PageCommand::Settings:
        return Windows.OpenSettings();
    case PageCommand::Uninstall:
        return Windows.OpenUninstall();
    case PageCommand::ShowHistory:
        Q_EMIT HistoryRequested();
        return;
    case PageCommand::CopyDiagnosis:
        Q_EMIT DiagnosisRequested();
        return;
    case PageCommand::ChangeAccount:
        return Windows.OpenAccount();
    case PageCommand::ChooseLanguage:
        return Controller.Start(Type::ListLocales);
    case PageCommand::ShowFiles:
        return; // the page does that itself
    }
}

void CommandRunner::TryAgain()
{
    GameState const& state = Controller.State();
    if (state.Session == GameState::Stage::Failed)
        return Controller.Reopen();
    if (!state.Problem)
        return Controller.Start(Type::Update);
    if (state.Failed.Kind == Type::Play)
        return Windows.OpenLogin();
    Controller.Start(state.Failed);
}

} // namespace Varnholt::Host
