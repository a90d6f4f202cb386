#include "Host/Core/Jobs/PlayJob.hpp"

namespace Varnholt::Host {

std::optional<Failure> PlayJob::Prepare()
{
    if (auto failure = GameFailure())
        return failure;
    if (Context.Trust.IsOn() && !Context.Trust.IsGameVerified())
        return Failure{FailureKind::GameUnverified, Folder(), {}};
    return LockFolder(Folder());
}

void PlayJob::OnBuildKnown()
{
    if (!CanUseBuild())
        return;
    // The comparison that each start-up begins ends without looking at any file.
    Settle([this] { Play(); });
}

void PlayJob::Play()
{
    Starter = std::make_unique<GameStart>(Context, Request,
                                          [this](Notice const& p_Notice) { NoticeOnce(p_Notice); });
    if (auto const failure = Starter->Begin())
        return Fail(*failure);
    Result.ProcessId = Starter->ProcessId();
    Result.OutputFile = Starter->OutputFile();
}

void PlayJob::Work()
{
    if (!Starter || !Starter->IsSettled())
        return;
    if (auto const failure = Starter->Outcome())
        return Fail(*failure);
    Context.Games.Take(Starter->TakeProcess());
    NoticeRealmList();
    Finish();
}

RunPhase PlayJob::Phase() const
{
    return Starter ? RunPhase::StartingGame : RunPhase::Connecting;
}

void PlayJob::Interrupt()
{
    if (Starter && Result.ProcessId != 0) {
        NoticeOnce({NoticeKind::GameGoesOn});
        Context.Games.Take(Starter->TakeProcess());
    }
    Job::Interrupt();
}

} // namespace Varnholt::Host
