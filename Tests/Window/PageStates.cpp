#include "Tests/Window/PageStates.hpp"

namespace Varnholt::TestSupport::PageStates {

using Host::GameState;

GameState Complete()
{
    GameState state;
    state.Session = GameState::Stage::Open;
    Host::InstallStatus status;
    status.Name = QStringLiteral("Mists of Pandaria");
    status.IsInstalled = status.FolderExists = true;
    status.Folder = QStringLiteral("/home/anna/Games/Mists of Pandaria/");
    status.Build = QStringLiteral("18414");
    state.Status = status;
    return state;
}

GameState NotInstalled()
{
    GameState state = Complete();
    state.Status->IsInstalled = state.Status->FolderExists = false;
    state.Status->Build.clear();
    return state;
}

GameState Working(Host::RunRequest::Type p_Kind, Host::RunPhase p_Phase)
{
    GameState state = Complete();
    state.Job = Host::RunRequest();
    state.Job->Kind = p_Kind;
    Host::RunSnapshot& snapshot = state.Snapshot;
    snapshot.Phase = p_Phase;
    snapshot.FileNumber = 10'234;
    snapshot.FileCount = 12'345;
    snapshot.File =
        QStringLiteral("Data/enUS/a folder with a long name/expansion4-locale-enUS-part-2.MPQ");
    snapshot.BytesDone = 987'654'321;
    snapshot.BytesTotal = 109'876'543'210;
    snapshot.Rate = 123'456'789;
    return state;
}

GameState Failed(Host::Failure const& p_Failure)
{
    GameState state = Complete();
    state.Problem = p_Failure;
    state.Failed.Kind = Host::RunRequest::Type::Update;
    Host::FileFinding finding;
    finding.Path = QStringLiteral("Data/base.MPQ");
    state.GivenUp = {finding};
    return state;
}

Host::Failure FailureOf(Host::FailureKind p_Kind)
{
    return {p_Kind, QStringLiteral("/home/anna/Games/Mists of Pandaria"),
            QStringLiteral("a cause that is known")};
}

std::vector<std::pair<char const*, GameState>> All()
{
    GameState waiting = Working(Host::RunRequest::Type::Update, Host::RunPhase::WaitingToRetry);
    Host::ServerWait wait;
    wait.Server = "content.a-long-name.example.org:8080";
    wait.Cause = "connection refused";
    wait.Attempt = 3;
    wait.NextAttempt = 120;
    waiting.Snapshot.Wait = wait;
    return {
        {"not installed", NotInstalled()},
        {"complete", Complete()},
        {"downloading", Working(Host::RunRequest::Type::Install, Host::RunPhase::DownloadingBase)},
        {"waiting", waiting},
        {"files given up", Failed(FailureOf(Host::FailureKind::FilesGivenUp))},
        {"link", Failed(FailureOf(Host::FailureKind::LinkLeadsOut))}};
}

} // namespace Varnholt::TestSupport::PageStates
