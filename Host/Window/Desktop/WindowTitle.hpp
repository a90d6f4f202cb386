#pragma once

#include "Host/Window/Main/GameState.hpp"

#include <QString>

namespace Varnholt::Host {

/// The name of the game, and before it what a user who looks elsewhere wants to see of it in a list
/// of windows: "42 % – NAME".
QString WindowTitle(QString const& p_Game, GameState const& p_State);

} // namespace Varnholt::Host
