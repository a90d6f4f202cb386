#include "Host/Core/Jobs/GameProcess.hpp"

#include <QCoreApplication>
#include <QFile>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

extern char** environ; // NOLINT(readability-redundant-declaration): not everywhere in <unistd.h>

namespace Varnholt::Host {

namespace {

/// What the new program does before it begins.
class SpawnSetup {
public:
    explicit SpawnSetup(int p_Output)
    {
        posix_spawn_file_actions_init(&Files);
        posix_spawn_file_actions_adddup2(&Files, p_Output, STDOUT_FILENO);
        posix_spawn_file_actions_adddup2(&Files, p_Output, STDERR_FILENO);
        posix_spawn_file_actions_addopen(&Files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawnattr_init(&Attributes);
        sigset_t signals;
        sigemptyset(&signals);
        posix_spawnattr_setsigmask(&Attributes, &signals);
        sigfillset(&signals);
        posix_spawnattr_setsigdefault(&Attributes, &signals);
        short flags = POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF;
#ifdef POSIX_SPAWN_CLOEXEC_DEFAULT
        flags |= POSIX_SPAWN_CLOEXEC_DEFAULT;
#else
        posix_spawn_file_actions_addclosefrom_np(&Files, STDERR_FILENO + 1);
#endif
        posix_spawnattr_setflags(&Attributes, flags);
    }
    ~SpawnSetup()
    {
        posix_spawn_file_actions_destroy(&Files);
        posix_spawnattr_destroy(&Attributes);
    }
    SpawnSetup(SpawnSetup const&) = delete;
    SpawnSetup& operator=(SpawnSetup const&) = delete;

    posix_spawn_file_actions_t Files;
    posix_spawnattr_t Attributes;
};

} // namespace

QString GameEnd::ErrorText() const
{
    if (Signal != 0)
        return QCoreApplication::translate("Varnholt::Host::GameProcess", "signal %1, %2")
            .arg(Signal)
            .arg(QString::fromLocal8Bit(::strsignal(Signal)));
    return ExitStatus.value_or(0) == 0
               ? QString()
               : QCoreApplication::translate("Varnholt::Host::GameProcess", "exit status %1")
                     .arg(*ExitStatus);
}

GameProcess::~GameProcess()
{
    if (Process == 0 || Ending())
        return;
    std::thread([process = Process] {
        while (::waitpid(process, nullptr, 0) < 0 && errno == EINTR)
            continue;
    }).detach();
}

int GameProcess::Start(QString const& p_Program, QStringList const& p_Arguments, int p_Output)
{
    std::vector<QByteArray> words{QFile::encodeName(p_Program)};
    for (QString const& argument : p_Arguments)
        words.push_back(QFile::encodeName(argument));
    std::vector<char*> pointers;
    pointers.reserve(words.size() + 1);
    for (QByteArray& word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);

    SpawnSetup const setup(p_Output);
    pid_t process = 0;
    int const error = ::posix_spawn(&process, words[0].constData(), &setup.Files, &setup.Attributes,
                                    pointers.data(), environ);
    if (error == 0)
        Process = process;
    return error;
}

std::optional<GameEnd> GameProcess::Ending()
{
    int status = 0;
    pid_t const ended = Ended ? 0 : ::waitpid(Process, &status, WNOHANG);
    if (ended == 0)
        return Ended;
    Ended.emplace();
    Ended->ProcessId = Process;
    Ended->Time = QDateTime::currentDateTimeUtc();
    if (ended == Process && WIFSIGNALED(status))
        Ended->Signal = WTERMSIG(status);
    else if (ended == Process)
        Ended->ExitStatus = WEXITSTATUS(status);
    return Ended;
}

} // namespace Varnholt::Host
