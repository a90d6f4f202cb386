#pragma once

#include <QtGlobal>

#include <optional>

namespace Varnholt::Host {

/// How long a job still takes, so smoothed that it can be read: it runs down as the time does, and
/// follows a rate that has changed in the course of some seconds.
class TimeLeft {
public:
    /// Takes a look. \param p_Now milliseconds of a clock that never goes back
    /// \param p_Total 0: there is no measure
    void Add(qint64 p_Now, quint64 p_Done, quint64 p_Total);
    /// Forgets everything: what comes is another job, or another phase of it.
    void Reset() { *this = {}; }

    /// None as long as too little is known, or nothing arrives.
    std::optional<qint64> Seconds() const;

private:
    void Follow(double p_Seconds, double p_Bytes);

    bool HasBegun = false;
    qint64 Latest = 0; ///< milliseconds, when bytes were counted
    quint64 Done = 0;
    quint64 Total = 0;
    double Known = 0;  ///< seconds in which bytes were counted
    double Silent = 0; ///< seconds since the last byte
    double Rate = 0;   ///< bytes per second, smoothed
    double Left = -1;  ///< seconds, as it is told
};

} // namespace Varnholt::Host
