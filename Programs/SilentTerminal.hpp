#pragma once

#include <termios.h>

namespace Varnholt::Programs {

/// No echo of what is typed on the terminal of standard input for as long as it lives; without a
/// terminal nothing.
class SilentTerminal {
public:
    SilentTerminal();
    /// Ends the line too: that its end was typed was not shown.
    ~SilentTerminal();
    SilentTerminal(SilentTerminal const&) = delete;
    SilentTerminal& operator=(SilentTerminal const&) = delete;

private:
    termios Former{};
    bool Changed = false;
};

} // namespace Varnholt::Programs
