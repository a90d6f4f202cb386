#include "Programs/SilentTerminal.hpp"

#include <cstdio>
#include <unistd.h>

namespace Varnholt::Programs {

SilentTerminal::SilentTerminal()
{
    if (::tcgetattr(STDIN_FILENO, &Former) != 0)
        return;
    termios silent = Former;
    silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    Changed = ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &silent) == 0;
}

SilentTerminal::~SilentTerminal()
{
    if (!Changed)
        return;
    ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &Former);
    std::fputc('\n', stderr);
}

} // namespace Varnholt::Programs
