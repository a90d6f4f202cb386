#pragma once

#include <QMutex>
#include <QtGlobal>

#include <atomic>

namespace Varnholt::Launcher {

/// Tells which of the starts and resumes that were asked for still hold. Each carries a ticket; a
/// suspension, like a new run, voids all that were given out before. One resume at most waits for
/// host and game, by a poll on the worker. Any thread.
class ResumeGate {
public:
    using Ticket = quint64;

    /// The ticket of what is asked for now.
    Ticket Now() const { return Newest; }
    bool Holds(Ticket p_Ticket) const { return Newest == p_Ticket; }
    void VoidAll() { ++Newest; }

    /// False when a poll with this ticket is under way: one is enough, however often a resume is
    /// asked for.
    bool BeginPoll(Ticket p_Ticket);
    /// Called on the worker when the poll's pause is over. False when the ticket is void; else the
    /// resume that the worker calls now has this ticket as `Polled()`.
    bool EndPoll(Ticket p_Ticket);
    /// The ticket of the resume that the worker is calling: a suspension may have come since it
    /// looked.
    Ticket Polled() const { return Calling; }

private:
    std::atomic<Ticket> Newest{1};
    std::atomic<Ticket> Calling{0};
    QMutex Mutex;
    Ticket Waiting = 0;
};

} // namespace Varnholt::Launcher
