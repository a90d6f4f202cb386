#pragma once

#include "Tests/Faults/Belongings.hpp"
#include "Tests/Faults/Referee.hpp"
#include "Tests/Host/HostProcess.hpp"

#include <functional>
#include <memory>

namespace Varnholt::TestSupport {

/// A game that the built host program is to install, or to bring from one build to another, one
/// process after the other, under the eyes of a referee.
class ProcessGame : public HostGame {
public:
    enum class Task { Install, Update };

    /// \param p_Files few and small, or as many as a transfer can be met in
    enum class Size { Smallest, Plain };
    ProcessGame(Task p_Task, Size p_Size);

    Task Job() const { return What; }
    /// The command that a user gives, again and again until it is done.
    QStringList Command() const;
    /// Lets the files arrive in small pieces, so that a transfer takes its time.
    void SlowDown();
    /// Called when a process has died or ended: looks at what it has left.
    void Judge();
    /// Gives the command once more, undisturbed: it has to bring all, and to leave nothing else.
    void Complete();
    /// What must not be and was.
    QStringList Faults() const { return Broken + Eyes->Faults(); }

    static QString Name(Task p_Task);

private:
    void AddOld(Size p_Size);
    void MakeNewBuild();

    Task What;
    std::unique_ptr<Referee> Eyes;
    std::unique_ptr<Belongings> Before;
    QStringList Broken;
};

/// Calls p_Work with 0 to p_Count - 1, some at the same time, on threads that may run processes.
void InParallel(int p_Count, int p_Threads, std::function<void(int)> const& p_Work);

} // namespace Varnholt::TestSupport
