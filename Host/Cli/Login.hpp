#pragma once

#include "Host/Cli/Choice.hpp"
#include "Host/Cli/Presenter.hpp"

#include <QString>

namespace Varnholt::Host {

/// Finds the password of the account that a game is to be started with: where it is remembered, by
/// a question otherwise. Runs the event loop. \param p_Server base address of the content server
/// \return the password; empty when there is none, or when the program is told to end
QString LoginPassword(Choice const& p_Choice, QString const& p_Server, Presenter& p_Output);

} // namespace Varnholt::Host
