#include "Benchmarks/LineProxy/Line.hpp"

#include <algorithm>
#include <cerrno>
#include <exception>
#include <iostream>
#include <iterator>
#include <system_error>
#include <utility>

namespace Varnholt::LineProxy {

namespace {

constexpr std::size_t c_ListenerPoll = 1;
constexpr std::size_t c_FirstPoll = 2;

/// Errors and ends are found by reading and writing.
bool IsReady(pollfd const& p_Poll, int p_Event)
{
    return (p_Poll.events & p_Event) != 0 && (p_Poll.revents & (p_Event | POLLERR | POLLHUP)) != 0;
}

} // namespace

Line::Line(LineOptions p_Options)
    : Options(std::move(p_Options))
    , Listener(Socket::Listen(Options.Port))
    , Rate(Options.BytesPerSecond)
{
}

void Line::Run(int p_StopDescriptor)
{
    while (WaitForWork(p_StopDescriptor)) {
        Serve(Clock::now());
        Connections.remove_if([](Connection const& p_One) { return p_One.IsOver(); });
        if (Polled[c_ListenerPoll].revents != 0)
            Accept();
    }
}

bool Line::WaitForWork(int p_StopDescriptor)
{
    Clock::time_point const now = Clock::now();
    Polled.assign({{p_StopDescriptor, POLLIN, 0}, {Listener.Descriptor(), POLLIN, 0}});
    for (Connection const& one : Connections) {
        Polled.push_back(one.ClientPoll(now));
        Polled.push_back(one.ServerPoll(now, Rate.FreeAt() <= now));
    }
    if (poll(Polled.data(), static_cast<nfds_t>(Polled.size()), Patience(now)) < 0) {
        if (errno != EINTR)
            throw std::system_error(errno, std::generic_category(), "cannot poll");
        for (pollfd& one : Polled)
            one.revents = 0;
    }
    return Polled.front().revents == 0;
}

/// Milliseconds until bytes arrive or the line is free; -1 when nothing is to come.
int Line::Patience(Clock::time_point p_Now) const
{
    std::vector<Clock::time_point> times;
    for (Connection const& one : Connections) {
        if (std::optional<Clock::time_point> const due = one.NextDue(); due && *due > p_Now)
            times.push_back(*due);
        if (Rate.FreeAt() > p_Now && one.WantsAnswer())
            times.push_back(Rate.FreeAt());
    }
    if (times.empty())
        return -1;
    Clock::duration const rest = *std::min_element(times.begin(), times.end()) - p_Now;
    return static_cast<int>(std::chrono::ceil<std::chrono::milliseconds>(rest).count());
}

void Line::Accept()
{
    Socket client = Listener.Accept();
    if (!client.IsOpen())
        return;
    try {
        Connections.emplace_back(std::move(client),
                                 Socket::Connect(Options.ServerHost, Options.ServerPort),
                                 Options.Delay);
        ++Counted.Connections;
    } catch (std::exception const& error) {
        std::cerr << "varnholt-line: " << error.what() << '\n'; // the client finds itself alone
    }
}

/// Does for each connection what it was announced ready for.
void Line::Serve(Clock::time_point p_Now)
{
    std::list<Connection> served;
    auto poll = std::next(Polled.cbegin(), c_FirstPoll);
    for (auto next = Connections.begin(); next != Connections.end();) {
        auto const one = next++;
        pollfd const client = *poll++;
        pollfd const server = *poll++;
        if (IsReady(client, POLLIN))
            one->TakeRequest(p_Now);
        if (IsReady(client, POLLOUT) || IsReady(server, POLLOUT))
            Count(one->Deliver(p_Now), p_Now);
        if (IsReady(server, POLLIN) && Rate.FreeAt() <= p_Now) {
            Rate.Put(one->TakeAnswer(Rate.Portion(), p_Now), p_Now);
            served.splice(served.end(), Connections, one);
        }
    }
    Connections.splice(Connections.end(), served);
}

void Line::Count(std::size_t p_Bytes, Clock::time_point p_Now)
{
    if (p_Bytes == 0)
        return;
    if (Counted.Bytes == 0)
        FirstByte = p_Now;
    Counted.Bytes += p_Bytes;
    Counted.Time = p_Now - FirstByte;
}

} // namespace Varnholt::LineProxy
