#include "Publisher/Cli/Interruption.hpp"

#include <atomic>
#include <csignal>

namespace Varnholt::Publisher::Interruption {

namespace {

std::atomic<int> g_Signal{0};
static_assert(std::atomic<int>::is_always_lock_free);

void Remember(int p_Signal)
{
    g_Signal = p_Signal;
}

} // namespace

void Watch()
{
    struct sigaction action = {};
    action.sa_handler = Remember;
    action.sa_flags = static_cast<int>(SA_RESETHAND | SA_RESTART);
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

int Signal()
{
    return g_Signal;
}

} // namespace Varnholt::Publisher::Interruption
