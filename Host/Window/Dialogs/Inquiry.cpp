#include "Host/Window/Dialogs/Inquiry.hpp"

#include <utility>

namespace Varnholt::Host {

Inquiry::Inquiry(GameController& p_Game, QObject* p_Parent)
    : QObject(p_Parent)
    , Game(&p_Game)
{
    connect(
        &p_Game, &GameController::RunEnded, this,
        [this](RunRequest const& /*p_Request*/, RunResult const& p_Result) { OnEnded(p_Result); });
    connect(&p_Game, &GameController::Changed, this, [this] {
        if (Running)
            Q_EMIT Progressed(Game->State().Snapshot);
    });
}

Inquiry::~Inquiry()
{
    Withdraw();
}

void Inquiry::Ask(RunRequest const& p_Request, Answer p_Answer)
{
    Withdraw();
    Waiting = Question{p_Request, std::move(p_Answer)};
    StartIfIdle();
}

void Inquiry::Withdraw()
{
    Waiting.reset();
    if (std::exchange(Running, false) && Game)
        Game->Interrupt();
}

void Inquiry::Leave()
{
    Waiting.reset();
    Running = false;
}

void Inquiry::StartIfIdle()
{
    if (!Waiting || Game->IsBusy())
        return; // until the other's end
    Running = true;
    Game->Start(Waiting->Request);
}

void Inquiry::OnEnded(RunResult const& p_Result)
{
    if (!std::exchange(Running, false))
        return StartIfIdle();
    auto const question = std::exchange(Waiting, std::nullopt);
    question->OnAnswer(p_Result);
}

} // namespace Varnholt::Host
