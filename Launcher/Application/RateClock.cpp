#include "Launcher/Application/RateClock.hpp"

#include <algorithm>

namespace Varnholt::Launcher::RateClock {

void Restart(QTime& p_Timer)
{
    p_Timer = QTime::currentTime();
}

int Elapsed(QTime const& p_Timer)
{
    constexpr int c_Day = 24 * 60 * 60 * 1000;
    if (!p_Timer.isValid())
        return 0;
    int const elapsed = p_Timer.msecsTo(QTime::currentTime());
    return elapsed < 0 ? elapsed + c_Day : elapsed;
}

qint64 BytesPerSecond(qint64 p_Bytes, int p_Milliseconds)
{
    return std::max<qint64>(p_Bytes, 0) * 1000 / std::max(p_Milliseconds, 1);
}

} // namespace Varnholt::Launcher::RateClock
