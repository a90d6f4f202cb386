#pragma once

#include "Host/Window/Main/GameState.hpp"

#include <QString>

namespace Varnholt::Host {

/// What the page tells of a game at which no job is under way: one line.
QString IdleText(GameState const& p_State);

} // namespace Varnholt::Host
