#include "Host/Gateway/Exchange.hpp"

#include "Host/Gateway/HttpStatus.hpp"
#include "Host/Gateway/TransferProblem.hpp"

#include <algorithm>

namespace Varnholt::Gateway {

using namespace HttpStatus;

/// Waits until the status and the size of a file are known.
Exchange::FileHead Exchange::FetchHead(std::string const& p_Path, bool p_OfDefaultServer)
{
    // A client whose answer was broken off asks again within this time, and is told why.
    constexpr std::chrono::seconds c_RefusalHolds{20};

    Lock lock(Guard);
    std::uint64_t const run = Run;
    if (!IsRunning || IsOver(run) || From == Source::Copies)
        return {c_Unavailable, std::nullopt};
    File const file = FileOf(p_Path, p_OfDefaultServer);
    if (file->Refusal &&
        Clock::now() - file->RefusedAt > c_RefusalHolds) { // perhaps it is there now
        file->Refusal.reset();
        file->RefusedBy.clear();
        AskAgain(file);
    } else if (!file->Size && !file->HasNoSize && !file->IsAsked) {
        SizesWanted.push_back(file);
        Loop.Wake();
    }
    ++HeadsWaited;
    Changed.wait(lock,
                 [&] { return file->Size || file->HasNoSize || file->Refusal || IsOver(run); });
    --HeadsWaited;
    if (IsOver(run))
        return {c_Unavailable, std::nullopt};
    if (file->Refusal) {
        int const status = file->Refusal->HttpStatus;
        return {status >= c_FirstError ? status : c_BadGateway, std::nullopt};
    }
    return {c_Success, file->Size};
}

/// Called when a size is not to be trusted any more, or was not got.
void Exchange::AskAgain(File const& p_File)
{
    p_File->IsAsked = false;
    SizesWanted.push_front(p_File);
    Loop.Wake();
}

void Exchange::StartQueries(TimePoint p_Now)
{
    constexpr int c_MostQueries = 16;

    while (Queries < c_MostQueries) {
        File const file = NextToQuery();
        if (!file)
            return;
        if (StartQuery(file, p_Now))
            continue;
        SizesWanted.push_front(file); // all servers are busy, or left alone for a while
        return;
    }
}

Exchange::File Exchange::NextToQuery()
{
    auto const isWanted = [](FileContent const& p_File) {
        bool const isOpen = !p_File.Size && !p_File.HasNoSize;
        return (isOpen || p_File.IsDisputed) && !p_File.Refusal && !p_File.IsAsked;
    };
    while (!SizesWanted.empty()) {
        File file = SizesWanted.front();
        SizesWanted.pop_front();
        if (isWanted(*file))
            return file;
    }
    for (; PlanSizes < Planned.size(); ++PlanSizes)
        if (isWanted(*Planned[PlanSizes]))
            return Planned[PlanSizes++];
    return nullptr;
}

bool Exchange::StartQuery(File const& p_File, TimePoint p_Now)
{
    auto const allowed = Allowed(*p_File);
    auto const server = Board.ForSize(
        [&](Server const& p_Server) {
            return allowed(p_Server) && (!p_File->IsDisputed || p_Server.IsDefault);
        },
        p_Now);
    if (!server)
        return false;
    auto const query = NewTransfer(p_File, server);
    query->IsHeadRequest = !server->RefusesHead;
    TransferRequest request;
    request.HeadersOnly = query->IsHeadRequest;
    request.Range = query->IsHeadRequest ? "" : "0-0";
    auto const onBytes = [](char const*, std::size_t p_Count) {
        return p_Count > 1 ? Take::Stop : Take::More; // one was asked for
    };
    p_File->IsAsked = true;
    ++server->Queries;
    ++Queries;
    Start(query, std::move(request), &Exchange::OnQueryHead, onBytes, &Exchange::OnQueryEnd);
    return true;
}

bool Exchange::OnQueryHead(FileTransfer& p_Query, AnswerHead const& p_Head)
{
    FileContent& file = *p_Query.File;
    int const status = p_Head.Status;
    SizesKnown.reset();
    p_Query.IsSettled = true;
    p_Query.RetryAfter = p_Head.RetryAfter;
    bool const isEmpty = status == c_RangeNotSatisfiable && p_Head.Total == std::uint64_t{0};
    bool const isPart = status == c_PartialContent;
    if (isPart && p_Head.IsEncoded && !p_Query.From->IsDefault) {
        p_Query.Problem = FetchProblem{FetchProblem::Type::Unusable, p_Query.Url,
                                       FetchProblem::Cause::PartsPacked};
        p_Query.IsRefused = true;
    } else if (isPart &&
               (p_Head.RangeBegin != std::uint64_t{0} || p_Head.RangeLast != p_Head.RangeBegin)) {
        p_Query.Problem =
            FetchProblem{FetchProblem::Type::Unusable, p_Query.Url, FetchProblem::Cause::OtherPart};
    } else if (isPart && p_Head.Total && !p_Head.IsEncoded) {
        LearnSize(p_Query, *p_Head.Total);
    } else if (isEmpty) {
        LearnSize(p_Query, 0);
    } else if (status == c_Success && p_Head.Length && !p_Head.IsEncoded) {
        LearnSize(p_Query, *p_Head.Length);
    } else if (status == c_Success && p_Query.IsHeadRequest) {
        p_Query.From->RefusesHead = true; // what it says of the headers alone is not enough
    } else if (status == c_Success || isPart) {
        file.HasNoSize = true;
    } else {
        p_Query.Problem = StatusProblem(status, p_Query.Url);
        bool const isOfHead = p_Query.IsHeadRequest && status != c_NotFound && status != c_Gone &&
                              (status < c_FirstServerError || status == c_NotImplemented) &&
                              status >= c_FirstError && p_Head.RetryAfter == 0 &&
                              (IsOfTheFile(status) || status == c_NotImplemented);
        p_Query.From->RefusesHead |= isOfHead;
        p_Query.IsRefused = !isOfHead && IsOfTheFile(status);
        p_Query.IsSettled = !isOfHead;
    }
    return p_Query.IsHeadRequest || isPart;
}

void Exchange::OnQueryEnd(FileTransfer& p_Query, std::optional<FetchProblem> const& p_Problem)
{
    File const& file = p_Query.File;
    --Queries;
    --p_Query.From->Queries;
    file->IsAsked = false;
    bool const isDecided = p_Query.From->IsDefault && p_Query.IsSettled;
    file->IsDisputed = file->IsDisputed && !isDecided;
    if (isDecided && file->Size && !p_Query.Problem)
        file->SizeFrom = p_Query.From;
    auto const problem = p_Query.Problem ? p_Query.Problem : p_Problem;
    if (problem && (p_Query.IsSettled || !p_Query.Problem))
        NoteFailure(p_Query, *problem);
    else {
        LastByte = Clock::now();
        NoteArrival(LastByte);
        p_Query.From->Failures = p_Query.From->Refusals = 0;
    }
    if ((!file->Size && !file->HasNoSize && !file->Refusal) || file->IsDisputed)
        AskAgain(file);
    Changed.notify_all();
}

/// When servers differ in a length the default one decides. \return false when it is not the one
/// that is known: the bytes are not to be trusted then
bool Exchange::LearnSize(FileTransfer& p_Transfer, std::uint64_t p_Size)
{
    FileContent& file = *p_Transfer.File;
    Server& server = *p_Transfer.From;
    SizesKnown.reset();
    if (!file.Size) {
        file.Size = p_Size;
        file.SizeFrom = p_Transfer.From;
        for (Span& span : file.Spans)
            span.End = std::min(span.End, std::max(p_Size, span.Arrived));
        Changed.notify_all();
        return true;
    }
    if (*file.Size == p_Size)
        return true;
    // The bytes so far are of another file: both it and its clients begin anew.
    if (server.IsDefault) {
        Drop(file);
        file.Size = p_Size;
        file.SizeFrom = p_Transfer.From;
        file.RefusedBy.clear();
        Changed.notify_all();
        return false;
    }
    p_Transfer.Problem = FetchProblem{FetchProblem::Type::Unusable, p_Transfer.Url,
                                      FetchProblem::Cause::OtherLength};
    p_Transfer.IsRefused = true;
    if (file.SizeFrom->IsDefault || file.RefusedBy.count(&Board.Default()) != 0)
        return false;
    file.IsDisputed = true;
    AskAgain(p_Transfer.File);
    return false;
}

} // namespace Varnholt::Gateway
