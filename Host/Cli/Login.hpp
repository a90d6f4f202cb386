#pragma once

#include "Host/Cli/Choice.hpp"
#include "Host/Cli/Presenter.hpp"
#include "Host/Core/Settings/AccountPassword.hpp"

#include <QString>

namespace Varnholt::Host {

/// Finds the password of the account that a game is to be started with: where it is remembered, by
/// a question otherwise.
class Login {
public:
    /// \param p_Server base address of the content server
    Login(Choice const& p_Choice, QString const& p_Server, Presenter& p_Output);

    /// Runs the event loop. \return the password; empty when there is none, or when the program is
    /// told to end
    QString Password();

private:
    QString Asked();
    /// Waits for the answer, or until the program is told to end. \param p_Lament the sentence that
    /// the problem belongs in
    template <typename Request>
    AccountPassword::Answer Await(Request p_Request, NoticeKind p_Lament);

    Choice const& Chosen;
    Presenter& Output;
    AccountPassword Store;
};

} // namespace Varnholt::Host
