#include "Host/Window/Pages/PrimaryAction.hpp"

#include <QCoreApplication>

namespace Varnholt::Host {

namespace {

using Type = RunRequest::Type;

struct ActionTexts {
    Q_DECLARE_TR_FUNCTIONS(Varnholt::Host::PrimaryAction)
};

PrimaryAction Pressed(PageCommand p_Command)
{
    return {CommandText(p_Command), p_Command};
}

PrimaryAction Telling(QString const& p_Text)
{
    return {p_Text, std::nullopt};
}

QString JobText(Type p_Kind)
{
    switch (p_Kind) {
    case Type::Install:
        return ActionTexts::tr("Installing");
    case Type::Update:
        return ActionTexts::tr("Updating");
    case Type::Repair:
        return ActionTexts::tr("Repairing");
    case Type::Check:
    case Type::Verify:
        return ActionTexts::tr("Checking");
    case Type::Uninstall:
        return ActionTexts::tr("Uninstalling");
    case Type::Play:
        return ActionTexts::tr("Starting");
    case Type::AskMirrors:
    case Type::PreviewInstall:
    case Type::PreviewUninstall:
    case Type::ListLocales:
    case Type::ChooseLocale:
        break;
    }
    return ActionTexts::tr("One moment");
}

/// Whether a problem is one that the same request may not have the next time.
bool IsRepeated(GameState const& p_State)
{
    if (!p_State.Problem)
        return false;
    FailureKind const kind = p_State.Problem->Kind;
    bool const isFinding = kind == FailureKind::UpdateAvailable ||
                           kind == FailureKind::FilesWrong || kind == FailureKind::Interrupted ||
                           kind == FailureKind::GameFailed || kind == FailureKind::FilesNotRemoved;
    Type const failed = p_State.Failed.Kind;
    return !isFinding && failed != Type::ListLocales && failed != Type::ChooseLocale &&
           failed != Type::Uninstall;
}

} // namespace

PrimaryAction PrimaryAction::Of(GameState const& p_State)
{
    if (p_State.Session == GameState::Stage::Failed)
        return Pressed(PageCommand::TryAgain);
    if (p_State.Job)
        return p_State.IsPaused ? Pressed(PageCommand::Resume)
                                : Telling(JobText(p_State.Job->Kind));
    if (p_State.IsGameRunning)
        return Telling(ActionTexts::tr("Playing"));
    if (p_State.Session == GameState::Stage::Opening || !p_State.Status)
        return Telling(ActionTexts::tr("One moment"));
    InstallStatus const& status = *p_State.Status;
    if (status.Download)
        return Telling(ActionTexts::tr("In use"));
    if (IsRepeated(p_State) || (status.IsInstalled && !status.FolderExists))
        return Pressed(PageCommand::TryAgain);
    if (!status.IsInstalled)
        return Pressed(PageCommand::Install);
    if (status.IsUnfinished)
        return Pressed(PageCommand::Continue);
    if (p_State.IsUpdateKnown || status.Build.isEmpty())
        return Pressed(PageCommand::Update);
    return Pressed(PageCommand::Play);
}

bool CanPause(RunRequest::Type p_Kind)
{
    return p_Kind == Type::Install || p_Kind == Type::Update || p_Kind == Type::Repair;
}

} // namespace Varnholt::Host
