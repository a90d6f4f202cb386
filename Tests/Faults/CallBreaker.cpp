// Is loaded into a host before the C library and strikes at one of the calls by which it changes
// files: the process dies before the call acts, or the call fails, or a write is cut short. All
// threads count together, so that each call of a run has one number. What the variables say:
//
//   VARNHOLT_BREAK_BELOW  folder whose files count
//   VARNHOLT_BREAK_AT     number of the call, from 1; 0 strikes nowhere
//   VARNHOLT_BREAK_HOW    "kill", "tear" (half of a write, then death) or the number of an error
//   VARNHOLT_BREAK_LOG    file that is told of each call, or, with a number, of the struck one
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

namespace {

std::atomic<long> g_Count{0};

struct Plan {
    Plan()
    {
        char const* const below = std::getenv("VARNHOLT_BREAK_BELOW");
        // Programs that the host starts are not meant.
        if (below == nullptr || std::strcmp(program_invocation_short_name, "varnholt-host") != 0)
            return;
        Below = below;
        char const* const at = std::getenv("VARNHOLT_BREAK_AT");
        At = at == nullptr ? 0 : std::atol(at);
        char const* const how = std::getenv("VARNHOLT_BREAK_HOW");
        How = how == nullptr ? "kill" : how;
        Log = std::getenv("VARNHOLT_BREAK_LOG");
    }

    char const* Below = nullptr;
    long At = 0;
    char const* How = "kill";
    char const* Log = nullptr;
};

Plan const& ThePlan()
{
    static Plan const s_Plan;
    return s_Plan;
}

/// Around this library's own functions.
void Tell(long p_Number, char const* p_Call, char const* p_Path)
{
    if (ThePlan().Log == nullptr)
        return;
    char line[4'400];
    int const size = std::snprintf(line, sizeof line, "%ld %s %s\n", p_Number, p_Call, p_Path);
    long const file =
        syscall(SYS_openat, AT_FDCWD, ThePlan().Log, O_WRONLY | O_CREAT | O_APPEND, 0600);
    syscall(SYS_write, file, line, size);
    syscall(SYS_close, file);
}

enum class Verdict { GoOn, Fail, Tear };

Verdict Judge(char const* p_Call, char const* p_Path)
{
    Plan const& plan = ThePlan();
    if (plan.Below == nullptr || p_Path == nullptr ||
        std::strncmp(p_Path, plan.Below, std::strlen(plan.Below)) != 0)
        return Verdict::GoOn;
    long const number = ++g_Count;
    if (plan.At == 0)
        Tell(number, p_Call, p_Path);
    if (number != plan.At)
        return Verdict::GoOn;
    Tell(number, p_Call, p_Path);
    bool const tears = std::strcmp(plan.How, "tear") == 0;
    if (tears && std::strcmp(p_Call, "write") == 0)
        return Verdict::Tear;
    if (tears || std::strcmp(plan.How, "kill") == 0)
        kill(getpid(), SIGKILL);
    errno = std::atoi(plan.How);
    return Verdict::Fail;
}

Verdict JudgeFile(char const* p_Call, int p_File)
{
    if (ThePlan().Below == nullptr)
        return Verdict::GoOn;
    char link[64];
    char path[4'096];
    std::snprintf(link, sizeof link, "/proc/self/fd/%d", p_File);
    ssize_t const size = readlink(link, path, sizeof path - 1);
    if (size < 0)
        return Verdict::GoOn;
    path[size] = '\0';
    return Judge(p_Call, path);
}

template <typename Function>
Function Real(char const* p_Name)
{
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, p_Name));
}

bool Makes(int p_Flags)
{
    return (p_Flags & (O_CREAT | O_TRUNC)) != 0 || (p_Flags & O_TMPFILE) == O_TMPFILE;
}

} // namespace

// NOLINTBEGIN: the C library's names and parameters
#define CALL(name, kind, path, parameters, arguments)                                              \
    __attribute__((visibility("default"))) int name parameters                                     \
    {                                                                                              \
        static auto const s_Real = Real<int(*) parameters>(#name);                                 \
        return Judge(kind, path) == Verdict::GoOn ? s_Real arguments : -1;                         \
    }
#define FILE_CALL(name, kind, parameters, arguments)                                               \
    __attribute__((visibility("default"))) int name parameters                                     \
    {                                                                                              \
        static auto const s_Real = Real<int(*) parameters>(#name);                                 \
        return JudgeFile(kind, p_File) == Verdict::GoOn ? s_Real arguments : -1;                   \
    }
#define OPEN(name, parameters, arguments)                                                          \
    __attribute__((visibility("default"))) int name parameters                                     \
    {                                                                                              \
        va_list list;                                                                              \
        va_start(list, p_Flags);                                                                   \
        mode_t const mode = Makes(p_Flags) ? va_arg(list, mode_t) : 0;                             \
        va_end(list);                                                                              \
        using Function = decltype(&name);                                                          \
        static auto const s_Real = Real<Function>(#name);                                          \
        if (Makes(p_Flags) && Judge("open", p_Path) != Verdict::GoOn)                              \
            return -1;                                                                             \
        return s_Real arguments;                                                                   \
    }

extern "C" {

OPEN(open, (char const* p_Path, int p_Flags, ...), (p_Path, p_Flags, mode))
OPEN(open64, (char const* p_Path, int p_Flags, ...), (p_Path, p_Flags, mode))
OPEN(openat, (int p_At, char const* p_Path, int p_Flags, ...), (p_At, p_Path, p_Flags, mode))
OPEN(openat64, (int p_At, char const* p_Path, int p_Flags, ...), (p_At, p_Path, p_Flags, mode))

CALL(rename, "rename", p_To, (char const* p_From, char const* p_To) noexcept, (p_From, p_To))
CALL(renameat, "rename", p_To, (int p_A, char const* p_From, int p_B, char const* p_To) noexcept,
     (p_A, p_From, p_B, p_To))
CALL(renameat2, "rename", p_To,
     (int p_A, char const* p_From, int p_B, char const* p_To, unsigned p_Flags) noexcept,
     (p_A, p_From, p_B, p_To, p_Flags))
CALL(link, "link", p_To, (char const* p_From, char const* p_To) noexcept, (p_From, p_To))
CALL(linkat, "link", p_To,
     (int p_A, char const* p_From, int p_B, char const* p_To, int p_Flags) noexcept,
     (p_A, p_From, p_B, p_To, p_Flags))
CALL(symlink, "symlink", p_To, (char const* p_From, char const* p_To) noexcept, (p_From, p_To))
CALL(unlink, "unlink", p_Path, (char const* p_Path) noexcept, (p_Path))
CALL(unlinkat, "unlink", p_Path, (int p_At, char const* p_Path, int p_Flags) noexcept,
     (p_At, p_Path, p_Flags))
CALL(remove, "unlink", p_Path, (char const* p_Path) noexcept, (p_Path))
CALL(rmdir, "rmdir", p_Path, (char const* p_Path) noexcept, (p_Path))
CALL(mkdir, "mkdir", p_Path, (char const* p_Path, mode_t p_Mode) noexcept, (p_Path, p_Mode))
CALL(mkdirat, "mkdir", p_Path, (int p_At, char const* p_Path, mode_t p_Mode) noexcept,
     (p_At, p_Path, p_Mode))
CALL(chmod, "chmod", p_Path, (char const* p_Path, mode_t p_Mode) noexcept, (p_Path, p_Mode))
CALL(fchmodat, "chmod", p_Path, (int p_At, char const* p_Path, mode_t p_Mode, int p_Flags) noexcept,
     (p_At, p_Path, p_Mode, p_Flags))
CALL(truncate, "truncate", p_Path, (char const* p_Path, off_t p_Size) noexcept, (p_Path, p_Size))
FILE_CALL(fchmod, "chmod", (int p_File, mode_t p_Mode) noexcept, (p_File, p_Mode))
FILE_CALL(ftruncate, "truncate", (int p_File, off_t p_Size) noexcept, (p_File, p_Size))
FILE_CALL(ftruncate64, "truncate", (int p_File, off64_t p_Size) noexcept, (p_File, p_Size))
FILE_CALL(fsync, "sync", (int p_File), (p_File))
FILE_CALL(fdatasync, "sync", (int p_File), (p_File))

__attribute__((visibility("default"))) ssize_t write(int p_File, void const* p_Bytes, size_t p_Size)
{
    static auto const s_Real = Real<decltype(&write)>("write");
    switch (JudgeFile("write", p_File)) {
    case Verdict::GoOn:
        return s_Real(p_File, p_Bytes, p_Size);
    case Verdict::Tear:
        s_Real(p_File, p_Bytes, p_Size / 2);
        kill(getpid(), SIGKILL);
        break;
    case Verdict::Fail:
        break;
    }
    return -1;
}

__attribute__((visibility("default"))) ssize_t writev(int p_File, iovec const* p_Parts, int p_Count)
{
    static auto const s_Real = Real<decltype(&writev)>("writev");
    return JudgeFile("writev", p_File) == Verdict::GoOn ? s_Real(p_File, p_Parts, p_Count) : -1;
}

} // extern "C"
// NOLINTEND
