#pragma once

#include <QTime>

namespace Varnholt::Launcher::RateClock {

/// Sets the timer to the current wall-clock time.
void Restart(QTime& p_Timer);

/// Milliseconds since the timer was restarted, never negative; 0 for a null time. The timers of the
/// records are wall-clock times: a clock that is set back reads as a wait across midnight.
int Elapsed(QTime const& p_Timer);

/// Bytes per second for the bytes gained in the given time. A clock that jumped between two
/// readings may give a time of 0 or less: it counts as 1 ms. A shrunken file gives 0.
qint64 BytesPerSecond(qint64 p_Bytes, int p_Milliseconds);

} // namespace Varnholt::Launcher::RateClock
