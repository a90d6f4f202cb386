#pragma once

#include "Benchmarks/LineProxy/Direction.hpp"
#include "Benchmarks/LineProxy/Socket.hpp"

#include <chrono>
#include <cstddef>
#include <optional>
#include <poll.h>

namespace Varnholt::LineProxy {

/// A client's connection and the one to the server that belongs to it, at both ends of a line.
class Connection {
public:
    /// \param p_Delay of the line, one way
    Connection(Socket p_Client, Socket p_Server, std::chrono::milliseconds p_Delay);

    /// What to poll for. \param p_LineFree whether the server may put bytes on the line
    pollfd ClientPoll(Clock::time_point p_Now) const;
    pollfd ServerPoll(Clock::time_point p_Now, bool p_LineFree) const;
    /// When bytes arrive at either end; none when no bytes are on their way.
    std::optional<Clock::time_point> NextDue() const;

    /// Reads what the client sends.
    void TakeRequest(Clock::time_point p_Now);
    /// Reads from the server. \return bytes
    std::size_t TakeAnswer(std::size_t p_Most, Clock::time_point p_Now);
    /// Writes what is due at both ends. \return bytes that the client got
    std::size_t Deliver(Clock::time_point p_Now);

    bool WantsAnswer() const { return Down.WantsBytes(); }
    /// Ended from both sides, or broken.
    bool IsOver() const { return Broken || (Down.IsOver() && Up.IsOver()); }

private:
    std::size_t Checked(std::optional<std::size_t> p_Bytes);

    Socket Client;
    Socket Server;
    Direction Down;
    Direction Up;
    std::chrono::milliseconds Delay;
    Clock::time_point Established; ///< requests wait until then
    bool Broken = false;
};

} // namespace Varnholt::LineProxy
