#pragma once

#include <QtGlobal>

#include <deque>

namespace Varnholt::Host {

/// Bytes per second over the last seconds, from a growing figure read at any intervals.
class RateMeter {
public:
    /// \param p_Milliseconds a monotonic clock
    /// \param p_Bytes the figure at that time; a fall begins the measurement anew
    void Add(qint64 p_Milliseconds, quint64 p_Bytes);
    void Clear() { Samples.clear(); }
    /// 0 until there are two samples.
    quint64 Rate() const;

private:
    struct Sample {
        qint64 Milliseconds;
        quint64 Bytes;
    };

    std::deque<Sample> Samples;
};

} // namespace Varnholt::Host
