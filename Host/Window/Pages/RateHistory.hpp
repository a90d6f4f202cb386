#pragma once

#include <QtGlobal>

#include <deque>

namespace Varnholt::Host {

/// The rates of the last two minutes.
class RateHistory {
public:
    struct Sample {
        qint64 Time; ///< milliseconds
        quint64 Rate;
    };
    static constexpr qint64 c_Milliseconds = 120'000;

    /// \param p_Now milliseconds of a clock that never goes back \param p_Rate bytes per second
    void Add(qint64 p_Now, quint64 p_Rate);
    void Clear() { Samples.clear(); }
    /// The oldest first.
    std::deque<Sample> const& All() const { return Samples; }
    /// 0 when there is none.
    quint64 Highest() const;

private:
    std::deque<Sample> Samples;
};

} // namespace Varnholt::Host
