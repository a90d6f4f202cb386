#include "GameModules/ResumeGate.hpp"

#include <QMutexLocker>

namespace Varnholt::Launcher {

bool ResumeGate::BeginPoll(Ticket p_Ticket)
{
    QMutexLocker const lock(&Mutex);
    if (Waiting == p_Ticket)
        return false;
    Waiting = p_Ticket;
    return true;
}

bool ResumeGate::EndPoll(Ticket p_Ticket)
{
    QMutexLocker const lock(&Mutex);
    if (!Holds(p_Ticket))
        return false;
    Waiting = 0;
    Calling = p_Ticket;
    return true;
}

} // namespace Varnholt::Launcher
