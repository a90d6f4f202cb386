#pragma once

#include <QElapsedTimer>
#include <QTimer>

namespace Varnholt::TestSupport {

/// Measures how long the event loop of its thread lets a timer wait. Time in which the thread could
/// have run but the system had no processor for it does not count, where the system tells of it.
class LoopWatch {
public:
    LoopWatch();

    /// Milliseconds of the longest gap since the begin.
    qint64 Longest() const { return MostNanoseconds / 1'000'000; }
    int Ticks() const { return Count; }

private:
    void Tick();

    QTimer Timer;
    QElapsedTimer Clock;
    qint64 LatestTime;
    qint64 LatestWait;
    qint64 MostNanoseconds = 0;
    int Count = 0;
};

} // namespace Varnholt::TestSupport
