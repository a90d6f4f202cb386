#pragma once

#include <QString>

#include <array>
#include <atomic>
#include <random>

#include <sys/types.h>

namespace Varnholt::TestSupport {

/// Processes that take one lock and let go of it for ever, stopped and killed at any moment.
class LockingProcesses {
public:
    enum class End { Releases, Removes };

    /// Starts them. \param p_Folder of the lock's file and of their own, ends in "/"
    LockingProcesses(QString p_Folder, End p_End);
    /// Kills them.
    ~LockingProcesses();
    LockingProcesses(LockingProcesses const&) = delete;
    LockingProcesses& operator=(LockingProcesses const&) = delete;

    /// Stops one, lets it go on when others have had the lock, and the same again; then kills one
    /// and starts another. \return what was wrong; empty when nothing was
    QString Disturb();

private:
    static constexpr int c_Count = 4;

    pid_t Begin() const;
    [[noreturn]] void Work() const;
    /// \return false when the lock was not taken so often in time
    bool WaitForTurns(int p_Turns) const;
    void LeaveFile() const;
    std::size_t Any() { return std::uniform_int_distribution<std::size_t>(0, c_Count - 1)(Random); }
    void Pause();

    QString const Folder;
    End const WayToEnd;
    std::atomic<int>* Turns; ///< of all of them, in memory that they share
    std::array<pid_t, c_Count> Processes{};
    std::mt19937 Random{1};
};

} // namespace Varnholt::TestSupport
