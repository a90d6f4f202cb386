#pragma once

#include "Host/Core/Failures/Failure.hpp"
#include "Host/Window/Pages/PageCommand.hpp"

#include <QString>

#include <vector>

namespace Varnholt::Host {

/// What a window can do about a failure.
struct Remedy {
    QString Text;                      ///< a sentence
    std::vector<PageCommand> Commands; ///< at least one, the best first

    static Remedy Of(Failure const& p_Failure);
    /// As a button beside the large one shows it: with a mnemonic of its own.
    static QString ButtonText(PageCommand p_Command);
};

} // namespace Varnholt::Host
