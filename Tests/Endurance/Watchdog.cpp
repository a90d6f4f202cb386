#include "Tests/Endurance/Watchdog.hpp"

#include <cstdio>
#include <cstdlib>

namespace Varnholt::TestSupport {

namespace {

constexpr int c_LongestMilliseconds = 10000;
constexpr std::chrono::milliseconds c_LookInterval{250};

} // namespace

Watchdog::Watchdog(std::function<QString()> p_Describe)
    : Describe(std::move(p_Describe))
    , Thread([this] { Look(); })
{
}

Watchdog::~Watchdog()
{
    {
        std::lock_guard const lock(Mutex);
        Ended = true;
    }
    Changed.notify_one();
    Thread.join();
}

void Watchdog::Watch(QString const& p_Name, std::function<void()> const& p_Call)
{
    {
        std::lock_guard const lock(Mutex);
        Name = p_Name;
        Since.start();
    }
    p_Call();
    std::lock_guard const lock(Mutex);
    Name = QString();
}

void Watchdog::Look()
{
    std::unique_lock lock(Mutex);
    while (!Ended) {
        Changed.wait_for(lock, c_LookInterval);
        if (Name.isNull() || Since.elapsed() < c_LongestMilliseconds)
            continue;
        std::fprintf(stderr, "%s does not return\n%s\n", qPrintable(Name), qPrintable(Describe()));
        std::abort();
    }
}

} // namespace Varnholt::TestSupport
