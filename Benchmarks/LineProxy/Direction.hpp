#pragma once

#include "Benchmarks/LineProxy/LineRate.hpp"

#include <cstddef>
#include <deque>
#include <optional>
#include <vector>

namespace Varnholt::LineProxy {

/// One way through a connection: what is read from one socket is written to another one when its
/// time has come, the end of the stream as well.
class Direction {
public:
    Direction(int p_Source, int p_Sink);

    /// Not after the end, nor while the sink takes so little that much is held.
    bool WantsBytes() const;
    /// When there is something to write; none when nothing is on its way.
    std::optional<Clock::time_point> NextDue() const;
    bool HasDue(Clock::time_point p_Now) const;
    /// The end of the stream has been handed on.
    bool IsOver() const { return Over; }

    /// \param p_Due when the other side is to have them
    /// \return bytes read; none when the connection is broken
    std::optional<std::size_t> Read(std::size_t p_Most, Clock::time_point p_Due);
    /// Writes what is due. \return bytes written; none when the connection is broken
    std::optional<std::size_t> Write(Clock::time_point p_Now);

private:
    struct Piece {
        Clock::time_point Due;
        std::vector<char> Bytes; ///< empty: the end
    };
    std::optional<std::size_t> WriteFirst();

    int Source;
    int Sink;
    std::deque<Piece> Pieces;
    std::size_t Held = 0;         ///< bytes in all pieces
    std::size_t FirstWritten = 0; ///< bytes of the first piece that the sink has
    bool Ended = false;           ///< the source has no more
    bool Over = false;
};

} // namespace Varnholt::LineProxy
