#include "Tests/Window/LoopWatch.hpp"

#include <QFile>

#include <algorithm>
#include <utility>

namespace Varnholt::TestSupport {

namespace {

/// Nanoseconds for which this thread has waited for a processor so far; 0 when nobody tells.
qint64 WaitedForProcessor()
{
    QFile file(QStringLiteral("/proc/thread-self/schedstat"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    return file.readAll().split(' ').value(1).toLongLong();
}

} // namespace

LoopWatch::LoopWatch()
    : LatestWait(WaitedForProcessor())
{
    constexpr int c_Milliseconds = 2;

    Clock.start();
    LatestTime = Clock.nsecsElapsed();
    Timer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&Timer, &QTimer::timeout, &Timer, [this] { Tick(); });
    Timer.start(c_Milliseconds);
}

void LoopWatch::Tick()
{
    qint64 const now = Clock.nsecsElapsed();
    qint64 const waited = WaitedForProcessor();
    qint64 const gap =
        (now - std::exchange(LatestTime, now)) - (waited - std::exchange(LatestWait, waited));
    MostNanoseconds = std::max(MostNanoseconds, gap);
    ++Count;
}

} // namespace Varnholt::TestSupport
