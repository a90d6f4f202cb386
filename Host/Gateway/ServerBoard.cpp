#include "Host/Gateway/ServerBoard.hpp"

#include "Host/Gateway/HostList.hpp"

#include <algorithm>

namespace Varnholt::Gateway {

namespace {

std::shared_ptr<Server> NewServer(std::string const& p_Address, bool p_IsDefault)
{
    auto server = std::make_shared<Server>();
    server->Address = p_Address;
    server->Name = HostList::NameOf(p_Address);
    server->IsDefault = p_IsDefault;
    return server;
}

void Reset(Server& p_Server)
{
    p_Server.Transfers = p_Server.Queries = 0;
    p_Server.Failures = p_Server.Refusals = 0;
    p_Server.NotBefore = {};
    p_Server.WrongFiles = 0;
    p_Server.Received = 0;
    p_Server.Meter.Clear();
    p_Server.IgnoresRanges = p_Server.RefusesHead = false;
}

/// What a further transfer can be expected to bring; who was never tried comes first.
double Promise(Server const& p_Server)
{
    constexpr double c_Unknown = 1e12;

    return (p_Server.Speed > 0 ? p_Server.Speed : c_Unknown) / (p_Server.Transfers + 1);
}

} // namespace

ServerBoard::ServerBoard(std::string const& p_ContentServer, Milliseconds p_RetryPause)
    : Servers{NewServer(p_ContentServer, true)}
    , RetryPause(p_RetryPause)
{
}

void ServerBoard::SetMirrors(std::vector<std::string> const& p_Addresses)
{
    Servers.resize(1);
    std::string const content = HostList::Canonical(Servers.front()->Address);
    for (std::string const& address : p_Addresses) {
        if (address == content)
            continue;
        std::shared_ptr<Server>& server = Known[address];
        if (!server)
            server = NewServer(address, false);
        Servers.push_back(server);
    }
}

void ServerBoard::BeginRun()
{
    Servers.resize(1);
    Reset(*Servers.front());
    for (auto const& row : Known)
        Reset(*row.second);
}

std::shared_ptr<Server> ServerBoard::ForContent(Filter const& p_May, TimePoint p_Now) const
{
    return Choose(
        p_May,
        [](Server const& p_Server) {
            return p_Server.Transfers < (p_Server.IsOnTrial() ? 1 : c_TransfersPerServer);
        },
        p_Now);
}

std::shared_ptr<Server> ServerBoard::ForSize(Filter const& p_May, TimePoint p_Now) const
{
    return Choose(
        p_May,
        [](Server const& p_Server) {
            return p_Server.Queries < (p_Server.IsOnTrial() ? 1 : c_QueriesPerServer);
        },
        p_Now);
}

/// Mirrors in order first, then the default server, then those that have given wrong files. Of the
/// first of these that can be asked at all, one that is free; when all are busy, nobody.
std::shared_ptr<Server> ServerBoard::Choose(Filter const& p_May, IsFree p_IsFree,
                                            TimePoint p_Now) const
{
    constexpr int c_Ranks = 4;

    std::shared_ptr<Server> best;
    for (int rank = 0; rank < c_Ranks; ++rank) {
        bool exists = false;
        for (std::shared_ptr<Server> const& server : Servers) {
            int const ownRank = (server->IsWrong(p_Now) ? 2 : 0) + (server->IsDefault ? 1 : 0);
            if (ownRank != rank || !server->IsAskable(p_Now) || !p_May(*server))
                continue;
            exists = exists || !server->IsOnTrial();
            if (!p_IsFree(*server))
                continue;
            bool const isBetter =
                !best || (best->IsOnTrial() && !server->IsOnTrial()) ||
                (best->IsOnTrial() == server->IsOnTrial() && Promise(*server) > Promise(*best));
            if (isBetter)
                best = server;
        }
        if (best || exists)
            return best;
    }
    return best;
}

TimePoint ServerBoard::NextTrial(TimePoint p_Now) const
{
    TimePoint next = TimePoint::max();
    for (std::shared_ptr<Server> const& server : Servers)
        if (server->NotBefore > p_Now)
            next = std::min(next, server->NotBefore);
    return next;
}

void ServerBoard::NoteFailure(Server& p_Server, int p_RetryAfterSeconds, TimePoint p_Now) const
{
    constexpr int c_MostDoublings = 6;
    constexpr Milliseconds c_LongestPause{30'000};

    TimePoint const asked = p_Now + std::chrono::seconds(p_RetryAfterSeconds);
    if (p_Server.IsAskable(p_Now)) { // else what it has failed at before is the same outage
        Milliseconds const pause = std::min(
            RetryPause * (1 << std::min(p_Server.Failures, c_MostDoublings)), c_LongestPause);
        ++p_Server.Failures;
        p_Server.NotBefore = p_Now + pause;
    }
    p_Server.NotBefore = std::max(p_Server.NotBefore, asked);
}

void ServerBoard::NoteWrongFile(Server& p_Server, TimePoint p_Now)
{
    constexpr std::chrono::minutes c_Penalty{5};

    ++p_Server.WrongFiles;
    p_Server.WrongUntil = p_Now + c_Penalty * p_Server.WrongFiles;
}

void ServerBoard::NoteSpeed(Server& p_Server, std::uint64_t p_Bytes, double p_Seconds)
{
    constexpr std::uint64_t c_FewestBytes = 128ULL * 1024;
    constexpr double c_ShortestSeconds = 0.001;
    constexpr double c_Newest = 0.5;

    if (p_Bytes < c_FewestBytes)
        return;
    double const speed = static_cast<double>(p_Bytes) / std::max(p_Seconds, c_ShortestSeconds);
    p_Server.Speed =
        p_Server.Speed > 0 ? c_Newest * speed + (1 - c_Newest) * p_Server.Speed : speed;
}

} // namespace Varnholt::Gateway
