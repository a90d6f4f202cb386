#include "Host/Cli/SignalWatch.hpp"

#include <atomic>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace Varnholt::Host {

namespace {

std::atomic<int> g_WriteEnd{-1};
std::atomic<bool> g_EndRequested{false};
static_assert(std::atomic<int>::is_always_lock_free && std::atomic<bool>::is_always_lock_free);

void Handle(int p_Signal)
{
    if (p_Signal != SIGUSR1 && g_EndRequested.exchange(true))
        ::_exit(SignalWatch::c_Status);
    auto const byte = static_cast<char>(p_Signal);
    // Can only fail when the pipe is full of signals that are not delivered yet.
    if (::write(g_WriteEnd, &byte, 1) != 1)
        return;
}

} // namespace

SignalWatch::SignalWatch(QObject* p_Parent)
    : QObject(p_Parent)
{
    if (::pipe(Pipe) != 0)
        return;
    for (int const end : Pipe) {
        ::fcntl(end, F_SETFD, FD_CLOEXEC);
        ::fcntl(end, F_SETFL, O_NONBLOCK);
    }
    g_WriteEnd = Pipe[1];
    g_EndRequested = false;
    Notifier = new QSocketNotifier(Pipe[0], QSocketNotifier::Read, this);
    connect(Notifier, &QSocketNotifier::activated, this, &SignalWatch::Deliver);

    struct sigaction action = {};
    action.sa_handler = Handle; // without SA_RESTART: a question to the user ends
    for (std::size_t i = 0; i < Former.size(); ++i) {
        ::sigaction(c_Signals[i], nullptr, &Former[i]);
        // What "nohup" or a shell's background job ignores stays ignored.
        if (Former[i].sa_handler != SIG_IGN)
            ::sigaction(c_Signals[i], &action, nullptr);
    }
}

SignalWatch::~SignalWatch()
{
    if (Notifier == nullptr)
        return;
    for (std::size_t i = 0; i < Former.size(); ++i)
        ::sigaction(c_Signals[i], &Former[i], nullptr);
    delete Notifier;
    for (int const end : Pipe)
        ::close(end);
}

bool SignalWatch::IsEndRequested()
{
    return g_EndRequested;
}

void SignalWatch::Deliver()
{
    char byte = 0;
    while (::read(Pipe[0], &byte, 1) == 1) {
        if (byte == SIGUSR1)
            Q_EMIT ToggleRequested();
        else
            Q_EMIT EndRequested();
    }
}

} // namespace Varnholt::Host
