#include "Benchmarks/LineProxy/Connection.hpp"

#include <algorithm>
#include <utility>

namespace Varnholt::LineProxy {

namespace {

pollfd PollFor(Socket const& p_Socket, bool p_Read, bool p_Write)
{
    int const events = (p_Read ? POLLIN : 0) | (p_Write ? POLLOUT : 0);
    // A socket that nothing is wanted from would be announced again and again once it is closed.
    return {events == 0 ? -1 : p_Socket.Descriptor(), static_cast<short>(events), 0};
}

std::optional<Clock::time_point> Earlier(std::optional<Clock::time_point> p_A,
                                         std::optional<Clock::time_point> p_B)
{
    return p_A && p_B ? std::min(*p_A, *p_B) : p_A ? p_A : p_B;
}

} // namespace

Connection::Connection(Socket p_Client, Socket p_Server, std::chrono::milliseconds p_Delay)
    : Client(std::move(p_Client))
    , Server(std::move(p_Server))
    , Down(Server.Descriptor(), Client.Descriptor())
    , Up(Client.Descriptor(), Server.Descriptor())
    , Delay(p_Delay)
    , Established(Clock::now() + 2 * p_Delay)
{
}

pollfd Connection::ClientPoll(Clock::time_point p_Now) const
{
    return PollFor(Client, Up.WantsBytes(), Down.HasDue(p_Now));
}

pollfd Connection::ServerPoll(Clock::time_point p_Now, bool p_LineFree) const
{
    return PollFor(Server, p_LineFree && Down.WantsBytes(), Up.HasDue(p_Now));
}

std::optional<Clock::time_point> Connection::NextDue() const
{
    return Earlier(Down.NextDue(), Up.NextDue());
}

void Connection::TakeRequest(Clock::time_point p_Now)
{
    Checked(Up.Read(c_LargestPortion, std::max(p_Now, Established) + Delay));
}

std::size_t Connection::TakeAnswer(std::size_t p_Most, Clock::time_point p_Now)
{
    return Checked(Down.Read(p_Most, p_Now + Delay));
}

std::size_t Connection::Deliver(Clock::time_point p_Now)
{
    Checked(Up.Write(p_Now));
    return Checked(Down.Write(p_Now));
}

std::size_t Connection::Checked(std::optional<std::size_t> p_Bytes)
{
    Broken = Broken || !p_Bytes;
    return p_Bytes.value_or(0);
}

} // namespace Varnholt::LineProxy
