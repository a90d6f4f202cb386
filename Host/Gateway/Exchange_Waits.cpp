#include "Host/Gateway/Exchange.hpp"

#include "Host/Gateway/HostList.hpp"

#include <algorithm>

namespace Varnholt::Gateway {

namespace {

/// A silence shorter than this is not told.
constexpr Milliseconds c_Noticeable{2'000};

bool IsSizeSettled(std::shared_ptr<FileContent> const& p_File)
{
    return p_File->Size || p_File->HasNoSize || p_File->Refusal;
}

} // namespace

void Exchange::CountBytes(Server& p_Server, std::uint64_t p_Bytes, bool p_AreNew, TimePoint p_Now)
{
    Received += p_Bytes;
    Meter.Add(p_Bytes, p_Now);
    p_Server.Received += p_Bytes;
    p_Server.Meter.Add(p_Bytes, p_Now);
    (p_AreNew ? LastByte : LastSkipped) = p_Now;
    NoteArrival(p_Now);
    for (std::shared_ptr<Server> const& server : Board.All())
        if (server.get() == &p_Server)
            LatestServer = server;
}

/// Something has come: what has failed is over, unless a server is left alone for it.
void Exchange::NoteArrival(TimePoint p_Now)
{
    if (Board.NextTrial(p_Now) == TimePoint::max())
        Latest.reset();
}

/// Whether somebody gets no further without the network.
bool Exchange::IsWaitedFor() const
{
    bool const starves =
        std::any_of(Readers.begin(), Readers.end(), [this](Reader const* p_Reader) {
            return p_Reader->Run == Run && p_Reader->Starves;
        });
    bool const lacksDocument = std::any_of(DocumentsByPath.begin(), DocumentsByPath.end(),
                                           [](auto const& p_Row) { return !p_Row.second->IsDone; });
    bool const lacksSize = PlanSizes < Planned.size() && SizesOnly;
    return IsRunning && !Paused && !CopiesProblem &&
           (starves || lacksDocument || HeadsWaited > 0 || Queries > 0 || lacksSize);
}

/// The problem that is told while nothing has failed and nothing comes.
FetchProblem Exchange::Silence() const
{
    std::string url = Options.ContentServer;
    for (auto const& row : DocumentsByPath)
        if (!row.second->IsDone)
            url = row.second->Url;
    for (Reader const* const reader : Readers)
        for (Span const& span : reader->File->Spans)
            if (reader->Run == Run && reader->Starves && span.IsUnderWay())
                url = span.By->Url;
    return {FetchProblem::Type::Silent, url, FetchProblem::Cause::NoAnswer};
}

/// Gives up when nothing has come for as long as is allowed.
void Exchange::CheckWaits(TimePoint p_Now)
{
    bool const isWaitedFor = IsWaitedFor();
    if (isWaitedFor && !WasWaitedFor)
        WaitedSince = p_Now;
    WasWaitedFor = isWaitedFor;
    if (IsRateBlocked) // that is no silence of a server's
        LastByte = p_Now;
    if (!isWaitedFor || GaveUp || Options.RetryFor == Options.RetryFor.zero())
        return;
    if (p_Now - LastSign() < Options.RetryFor)
        return;
    GiveUp(Latest.value_or(Silence()));
}

void Exchange::GiveUp(FetchProblem const& p_Problem)
{
    GaveUp = p_Problem;
    ToCancel.insert(ToCancel.end(), UnderWay.begin(), UnderWay.end());
    Loop.Wake();
    Changed.notify_all();
}

GatewaySnapshot::Wait Exchange::WaitAt(TimePoint p_Now, Milliseconds p_Silent) const
{
    GatewaySnapshot::Wait wait;
    wait.Problem = Latest.value_or(Silence());
    wait.Silent = p_Silent;
    TimePoint next = Board.NextTrial(p_Now);
    bool isUnderWay = Transfers > 0 || Queries > 0;
    for (std::shared_ptr<Server> const& server : Board.All())
        if (HostList::NameOf(wait.Problem.Url) == server->Name)
            wait.Attempt = std::max(server->Failures, Latest ? 1 : 0) + 1;
    for (auto const& row : DocumentsByPath) {
        Document const& document = *row.second;
        if (document.IsDone)
            continue;
        bool const isAsked = document.Transfer != 0;
        isUnderWay = isUnderWay || isAsked;
        if (document.NotBefore > p_Now)
            next = std::min(next, document.NotBefore);
        wait.Attempt = document.Attempts + (isAsked ? 0 : 1);
        bool const isLimited = document.RetryAfter == 0 && Document::EndsSoon(wait.Problem);
        wait.Attempts = isLimited ? Document::c_MostAttempts : 0;
    }
    if (!isUnderWay && next != TimePoint::max())
        wait.NextAttempt = MillisecondsBetween(p_Now, next);
    return wait;
}

GatewaySnapshot Exchange::Snapshot() const
{
    Lock const lock(Guard);
    TimePoint const now = Clock::now();
    GatewaySnapshot snapshot;
    snapshot.Received = Received;
    snapshot.Rate = Paused ? 0 : Meter.Rate(now);
    snapshot.Held = Held - Expected;
    snapshot.Server = LatestServer ? LatestServer->Name : std::string();
    for (std::shared_ptr<Server> const& server : Board.All())
        if (server->Received > 0 || server->Failures > 0 || server->WrongFiles > 0)
            snapshot.Servers.push_back({server->Name, server->IsDefault,
                                        server->Failures > 0 || server->IsWrong(now),
                                        server->Received, Paused ? 0 : server->Meter.Rate(now)});
    snapshot.GaveUp = GaveUp;
    snapshot.Copies = CopiesProblem;
    if (!SizesKnown)
        SizesKnown = static_cast<std::uint32_t>(
            std::count_if(Planned.begin(), Planned.end(), IsSizeSettled));
    snapshot.SizesKnown = *SizesKnown;
    Milliseconds const silent = MillisecondsBetween(LastSign(), now);
    if (WasWaitedFor && silent >= c_Noticeable)
        snapshot.Waits = WaitAt(now, silent);
    return snapshot;
}

} // namespace Varnholt::Gateway
