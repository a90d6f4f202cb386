#pragma once

#include "Host/Window/Main/GameController.hpp"

#include <QObject>
#include <QPointer>

#include <functional>
#include <optional>

namespace Varnholt::Host {

/// Asks a game for what a dialog wants to know, and changes its mind with it: only the latest
/// question is answered. What the game is busy with is waited for.
class Inquiry : public QObject {
    Q_OBJECT

public:
    using Answer = std::function<void(RunResult const&)>;

    explicit Inquiry(GameController& p_Game, QObject* p_Parent = nullptr);
    /// Withdraws.
    ~Inquiry() override;

    /// Answered a moment later at the soonest, unless another question comes before.
    void Ask(RunRequest const& p_Request, Answer p_Answer);
    /// Stops what is under way for the latest question, which is not answered.
    void Withdraw();
    /// Leaves it alone; it is not answered.
    void Leave();
    bool IsUnderWay() const { return Waiting.has_value(); }

Q_SIGNALS:
    /// Of what is under way for the latest question.
    void Progressed(Varnholt::Host::RunSnapshot p_Snapshot);

private:
    struct Question {
        RunRequest Request;
        Answer OnAnswer;
    };

    void StartIfIdle();
    void OnEnded(RunResult const& p_Result);

    QPointer<GameController> const Game; ///< may go before the dialogs of its window
    std::optional<Question> Waiting;     ///< for its answer, and at first for its start
    bool Running = false;                ///< it was started
};

} // namespace Varnholt::Host
