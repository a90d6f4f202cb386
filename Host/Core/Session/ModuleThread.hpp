#pragma once

#include "Host/Core/Module/ModuleHost.hpp"

#include <QString>
#include <QThread>

#include <functional>

namespace Varnholt::Host {

/// The thread that a session gives its module, with all that must live as long as that. It may
/// outlive the session, when the module is busy, and deletes itself in the end.
class ModuleThread : public QThread {
    Q_OBJECT

public:
    explicit ModuleThread(HostOptions const& p_Options);

    ModuleHost& Host() { return *Object; }
    RunGate& Gate() { return Object->AnyThreadGate(); }
    /// Calls p_What on this thread; not once the module host has closed.
    void Post(std::function<void(ModuleHost&)> p_What);
    /// Waits for the end, at most so long, and leaves the thread to itself.
    void LetGo(int p_Milliseconds);
    /// Whether one that was let go is still running. Any thread.
    static bool IsAnyLeft();

private:
    ~ModuleThread() override;

    QString FormerFolder; ///< the process's current one
    HostSettings Settings;
    ModuleHost* Object; ///< lives on this thread
};

} // namespace Varnholt::Host
