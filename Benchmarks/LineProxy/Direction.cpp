#include "Benchmarks/LineProxy/Direction.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <sys/socket.h>
#include <unistd.h>

namespace Varnholt::LineProxy {

namespace {

/// What a connection may have on its way: 160 MB a second at 25 ms.
constexpr std::size_t c_MostHeld = 4UL * 1024 * 1024;

bool IsPassing(int p_Error)
{
    return p_Error == EAGAIN || p_Error == EWOULDBLOCK || p_Error == EINTR;
}

} // namespace

Direction::Direction(int p_Source, int p_Sink)
    : Source(p_Source)
    , Sink(p_Sink)
{
}

bool Direction::WantsBytes() const
{
    return !Ended && Held < c_MostHeld;
}

std::optional<Clock::time_point> Direction::NextDue() const
{
    return Pieces.empty() ? std::nullopt : std::optional(Pieces.front().Due);
}

bool Direction::HasDue(Clock::time_point p_Now) const
{
    return !Pieces.empty() && Pieces.front().Due <= p_Now;
}

std::optional<std::size_t> Direction::Read(std::size_t p_Most, Clock::time_point p_Due)
{
    std::array<char, c_LargestPortion> buffer;
    ssize_t const count = read(Source, buffer.data(), std::min(p_Most, buffer.size()));
    if (count < 0)
        return IsPassing(errno) ? std::optional<std::size_t>(0) : std::nullopt;
    Ended = count == 0;
    Held += static_cast<std::size_t>(count);
    Pieces.push_back({p_Due, {buffer.data(), buffer.data() + count}});
    return static_cast<std::size_t>(count);
}

std::optional<std::size_t> Direction::Write(Clock::time_point p_Now)
{
    std::size_t written = 0;
    while (HasDue(p_Now)) {
        if (Pieces.front().Bytes.empty()) {
            shutdown(Sink, SHUT_WR);
            Over = true;
            Pieces.clear();
            break;
        }
        std::optional<std::size_t> const count = WriteFirst();
        if (!count)
            return std::nullopt;
        written += *count;
        if (*count == 0 || FirstWritten != 0) // the sink is full
            break;
    }
    return written;
}

std::optional<std::size_t> Direction::WriteFirst()
{
    std::vector<char> const& bytes = Pieces.front().Bytes;
    ssize_t const count = write(Sink, bytes.data() + FirstWritten, bytes.size() - FirstWritten);
    if (count < 0)
        return IsPassing(errno) ? std::optional<std::size_t>(0) : std::nullopt;
    FirstWritten += static_cast<std::size_t>(count);
    if (FirstWritten == bytes.size()) {
        Held -= bytes.size();
        FirstWritten = 0;
        Pieces.pop_front();
    }
    return static_cast<std::size_t>(count);
}

} // namespace Varnholt::LineProxy
