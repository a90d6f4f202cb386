#pragma once

#include "Host/Window/Main/GameState.hpp"
#include "Host/Window/Pages/PageCommand.hpp"

#include <QString>

#include <optional>

namespace Varnholt::Host {

/// What the large button says, and does.
struct PrimaryAction {
    QString Text;                       ///< with its mnemonic, when it can be pressed
    std::optional<PageCommand> Command; ///< none: it only tells what happens

    /// Follows from the state alone.
    static PrimaryAction Of(GameState const& p_State);
};

/// Whether a job of that kind can be paused.
bool CanPause(RunRequest::Type p_Kind);

} // namespace Varnholt::Host
