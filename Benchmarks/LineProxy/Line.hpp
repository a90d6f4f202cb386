#pragma once

#include "Benchmarks/LineProxy/Connection.hpp"
#include "Benchmarks/LineProxy/LineRate.hpp"
#include "Benchmarks/LineProxy/Socket.hpp"

#include <chrono>
#include <cstdint>
#include <list>
#include <poll.h>
#include <string>
#include <vector>

namespace Varnholt::LineProxy {

struct LineOptions {
    std::uint16_t Port = 0; ///< 0: one of the system's choosing
    std::string ServerHost;
    std::string ServerPort;
    std::chrono::milliseconds Delay{0}; ///< one way, in either direction
    std::uint64_t BytesPerSecond = 0;   ///< of all answers together; 0: without limit
};

/// What clients got over a line.
struct LineFigures {
    std::uint64_t Connections = 0;
    std::uint64_t Bytes = 0; ///< of answers, with their headers
    Clock::duration Time{0}; ///< from the first byte to the last one
};

/// A line between clients and a server: TCP connections to a port on 127.0.0.1 are passed on. All
/// of them share the rate in turn. A connection takes one round trip to stand; of what TCP does on
/// lines besides, nothing is imitated: neither losses nor a slow start.
///
/// Lives on one thread; there may be as many connections as poll() bears.
class Line {
public:
    /// Listens; throws std::exception when that fails.
    explicit Line(LineOptions p_Options);

    std::uint16_t Port() const { return Listener.Port(); }
    /// Runs until the descriptor becomes readable.
    void Run(int p_StopDescriptor);
    LineFigures const& Figures() const { return Counted; }

private:
    bool WaitForWork(int p_StopDescriptor);
    int Patience(Clock::time_point p_Now) const;
    void Accept();
    void Serve(Clock::time_point p_Now);
    void Count(std::size_t p_Bytes, Clock::time_point p_Now);

    LineOptions Options;
    Socket Listener;
    LineRate Rate;
    std::list<Connection> Connections; ///< who was served last is last
    std::vector<pollfd> Polled;        ///< stop, listener, then two for each connection
    LineFigures Counted;
    Clock::time_point FirstByte;
};

} // namespace Varnholt::LineProxy
