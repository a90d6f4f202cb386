#include "Tests/Files/LockingProcesses.hpp"

#include "Files/FileLock.hpp"
#include "Tests/Support/TestHost.hpp"

#include <QDeadlineTimer>
#include <QFile>
#include <QThread>

#include <csignal>
#include <fcntl.h>
#include <new>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Varnholt::TestSupport {

namespace {

constexpr unsigned c_MostMicroseconds = 2'000;
constexpr unsigned c_HeldMicroseconds = 300;

QByteArray LockPath(QString const& p_Folder)
{
    return QFile::encodeName(p_Folder + QStringLiteral("lock"));
}

/// \param p_Type F_WRLCK or F_UNLCK. \return false when another process has it
bool SetGuard(int p_File, short p_Type)
{
    struct flock guard = {};
    guard.l_type = p_Type;
    return ::fcntl(p_File, F_SETLK, &guard) == 0;
}

/// Waits for the end of one that was killed. \return false when it had ended by itself
bool WasKilled(pid_t p_Process)
{
    int status = 0;
    ::waitpid(p_Process, &status, 0);
    return WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
}

} // namespace

LockingProcesses::LockingProcesses(QString p_Folder, End p_End)
    : Folder(std::move(p_Folder))
    , WayToEnd(p_End)
{
    void* const shared = ::mmap(nullptr, sizeof(std::atomic<int>), PROT_READ | PROT_WRITE,
                                MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (shared == MAP_FAILED)
        qFatal("no memory can be shared");
    Turns = new (shared) std::atomic<int>(0);
    for (pid_t& process : Processes)
        process = Begin();
}

LockingProcesses::~LockingProcesses()
{
    for (pid_t const process : Processes) {
        ::kill(process, SIGKILL);
        WasKilled(process);
    }
    ::munmap(Turns, sizeof *Turns);
}

pid_t LockingProcesses::Begin() const
{
    pid_t const process = ::fork();
    if (process < 0)
        qFatal("no process can be started");
    if (process == 0)
        Work();
    return process;
}

void LockingProcesses::Work() const
{
    // A file of its own tells whether another is in. When this process is killed, the kernel lets
    // go of such a lock at once, and only afterwards of those by flock, in no order that it
    // promises.
    int const guard = ::open(QFile::encodeName(Folder + QStringLiteral("guard")).constData(),
                             O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    FileLock lock(QFile::decodeName(LockPath(Folder)));
    for (;;) {
        if (lock.Take() != FileLock::Outcome::Taken)
            continue;
        if (!SetGuard(guard, F_WRLCK))
            ::_exit(EXIT_FAILURE);
        ++*Turns;
        ::usleep(c_HeldMicroseconds);
        SetGuard(guard, F_UNLCK);
        if (WayToEnd == End::Removes)
            lock.Remove();
        else
            lock.Release();
    }
}

bool LockingProcesses::WaitForTurns(int p_Turns) const
{
    QDeadlineTimer const deadline(TestHost::c_Timeout);
    int const end = *Turns + p_Turns;
    while (*Turns < end) {
        if (deadline.hasExpired())
            return false;
        QThread::usleep(c_HeldMicroseconds);
    }
    return true;
}

/// As of one that was killed before it had locked the file that it had made.
void LockingProcesses::LeaveFile() const
{
    int const file =
        ::open(LockPath(Folder).constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (file >= 0)
        ::close(file);
}

void LockingProcesses::Pause()
{
    QThread::usleep(std::uniform_int_distribution<unsigned long>(0, c_MostMicroseconds)(Random));
}

QString LockingProcesses::Disturb()
{
    constexpr int c_Stops = 6;
    constexpr int c_StoppedMilliseconds = 3;

    for (int i = 0; i < c_Stops; ++i) {
        pid_t const process = Processes[Any()];
        Pause();
        ::kill(process, SIGSTOP);
        // It may be the one that has the lock: then nobody gets it meanwhile.
        QDeadlineTimer const deadline(c_StoppedMilliseconds);
        int const end = *Turns + 2;
        while (*Turns < end && !deadline.hasExpired())
            QThread::usleep(c_HeldMicroseconds);
        ::kill(process, SIGCONT);
    }
    pid_t& process = Processes[Any()];
    ::kill(process, SIGKILL);
    bool const wasKilled = WasKilled(process);
    LeaveFile();
    process = Begin();
    if (!wasKilled)
        return QStringLiteral("two had it at once");
    return WaitForTurns(c_Count) ? QString() : QStringLiteral("nobody can have it");
}

} // namespace Varnholt::TestSupport
