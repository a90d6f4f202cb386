#include "Host/Core/Jobs/GameStart.hpp"
#include "Host/Core/Jobs/JobTable.hpp"

namespace Varnholt::Host {

namespace {

/// Starts the game, logged in when account and password are given.
class PlayJob : public Job {
public:
    using Job::Job;

    void Interrupt() override
    {
        if (Starter && Result.ProcessId != 0) {
            NoticeOnce({NoticeKind::GameGoesOn});
            Context.Games.Take(Starter->TakeProcess());
        }
        Job::Interrupt();
    }

protected:
    std::optional<Failure> Prepare() override
    {
        if (auto failure = GameFailure())
            return failure;
        if (Context.Trust.IsOn() && !Context.Trust.IsGameVerified())
            return Failure{FailureKind::GameUnverified, Folder(), {}};
        return LockFolder(Folder());
    }

    void OnBuildKnown() override
    {
        if (!CanUseBuild())
            return;
        // The module begins a comparison at each start-up; with its gate closed it ends at once.
        Settle([this] { Play(); });
    }

    void Work() override
    {
        if (!Starter || !Starter->IsSettled())
            return;
        if (auto const failure = Starter->Outcome())
            return Fail(*failure);
        Context.Games.Take(Starter->TakeProcess());
        NoticeRealmList();
        Finish();
    }

    RunPhase Phase() const override
    {
        return Starter ? RunPhase::StartingGame : RunPhase::Connecting;
    }

    void Release() override { Starter.reset(); }

private:
    void Play()
    {
        Starter = std::make_unique<GameStart>(
            Context, Request, [this](Notice const& p_Notice) { NoticeOnce(p_Notice); });
        if (auto const failure = Starter->Begin())
            return Fail(*failure);
        Result.ProcessId = Starter->ProcessId();
        Result.OutputFile = Starter->OutputFile();
    }

    std::unique_ptr<GameStart> Starter;
};

} // namespace

JobMaker const MakePlayJob = MakeJob<PlayJob>;

} // namespace Varnholt::Host
