#include "Host/Gateway/Exchange.hpp"

#include "Host/Gateway/HttpStatus.hpp"
#include "Host/Gateway/TransferProblem.hpp"

#include <algorithm>

namespace Varnholt::Gateway {

using namespace HttpStatus;

namespace {

constexpr std::uint64_t c_SmallPiece = 256ULL * 1024;
constexpr std::uint64_t c_FirstPiece = 1024ULL * 1024;
constexpr std::uint64_t c_LargestPiece = 4ULL * 1024 * 1024;

/// What a server is asked for at once: as much as it brings in a moment, so that a slow one does
/// not keep the others waiting for long.
std::uint64_t PieceBytes(Server const& p_Server)
{
    constexpr double c_Seconds = 0.6;

    if (p_Server.Speed <= 0)
        return c_FirstPiece;
    double const bytes = std::min(p_Server.Speed * c_Seconds, static_cast<double>(c_LargestPiece));
    return std::max(c_SmallPiece, static_cast<std::uint64_t>(bytes) / c_SmallPiece * c_SmallPiece);
}

FileContent::Gap PieceOf(FileContent::Gap const& p_Gap, Server const& p_Server)
{
    std::uint64_t const most = PieceBytes(p_Server);
    // A small rest is not worth a request of its own.
    bool const isAll = p_Gap.End != Span::c_Open && p_Gap.End - p_Gap.Begin <= most + most / 4;
    return isAll ? p_Gap : FileContent::Gap{p_Gap.Begin, p_Gap.Begin + most};
}

std::string RangeText(FileContent::Gap const& p_Piece)
{
    return std::to_string(p_Piece.Begin) + '-' + std::to_string(p_Piece.End - 1);
}

} // namespace

/// What clients wait for first, then what the plan says that they will ask for.
void Exchange::StartFiles(TimePoint p_Now)
{
    WantsRoom = false;
    for (Reader* const reader : Readers)
        if (reader->Run == Run && reader->Starves &&
            !FetchGaps(reader->File, reader->At, true, p_Now))
            return RelieveSlowOnes(p_Now);
    for (Reader* const reader : Readers)
        if (reader->Run == Run && !reader->Starves && MayRead(*reader) &&
            !FetchGaps(reader->File, reader->At, false, p_Now))
            return RelieveSlowOnes(p_Now);
    if (!SizesOnly)
        for (; PlanAhead < Planned.size(); ++PlanAhead) {
            File const& file = Planned[PlanAhead];
            bool const isRead = file->Readers > 0 && !SizesFirst;
            if (!isRead && !file->IsDelivered && !FetchGaps(file, file->Offset, false, p_Now))
                break;
        }
    RelieveSlowOnes(p_Now);
}

/// \return false when a part of the file cannot be asked for now
bool Exchange::FetchGaps(File const& p_File, std::uint64_t p_From, bool p_IsWaitedFor,
                         TimePoint p_Now)
{
    while (auto const gap = p_File->FirstGap(p_From)) {
        if (p_File->Refusal)
            return true;
        // The first answer tells how long the file is.
        bool const isUnknown =
            gap->End == Span::c_Open && !p_File->Spans.empty() && p_File->Spans.back().IsUnderWay();
        if (isUnknown)
            return true;
        if (Transfers >= Options.Connections)
            return false;
        auto const server = Board.ForContent(Allowed(*p_File), p_Now);
        if (!server)
            return false;
        auto const piece = server->IgnoresRanges ? *gap : PieceOf(*gap, *server);
        std::uint64_t const bytes =
            server->IgnoresRanges ? Span::c_BlockBytes : piece.End - piece.Begin;
        if (!HasRoom(bytes)) {
            if (!p_IsWaitedFor || gap->Begin != p_From) {
                WantsRoom = true;
                return false;
            }
            MakeRoom(bytes);
        }
        StartTransfer(p_File, piece, server, p_Now);
    }
    return true;
}

void Exchange::StartTransfer(File const& p_File, FileContent::Gap const& p_Gap,
                             std::shared_ptr<Server> const& p_Server, TimePoint p_Now)
{
    auto const transfer = NewTransfer(p_File, p_Server);
    transfer->Begin = p_Gap.Begin;
    Span span;
    span.Begin = span.Arrived = span.FirstBlock = p_Gap.Begin;
    span.End = p_Gap.End;
    span.From = p_Server;
    span.By = transfer;
    span.Started = p_Now;
    span.IsStream = p_Server->IgnoresRanges;
    if (p_File->HasOneSource)
        p_File->OnlyFrom = p_Server;
    transfer->Part = p_File->Insert(std::move(span));

    TransferRequest request;
    request.Range = p_Server->IgnoresRanges ? std::string() : RangeText(p_Gap);
    request.BlockBytes = Limit.IsSet() ? 16UL * 1024 : static_cast<std::size_t>(c_SmallPiece);
    auto const onBytes = [this, transfer](char const* p_Data, std::size_t p_Count) {
        Lock const lock(Guard);
        return transfer->Run == Run ? OnFileBytes(*transfer, p_Data, p_Count) : Take::Stop;
    };
    Start(transfer, std::move(request), &Exchange::OnFileHead, onBytes, &Exchange::OnFileEnd);
    transfer->Part->Transfer = transfer->Id;
    ++p_Server->Transfers;
    ++Transfers;
    Recount(*p_File);
}

bool Exchange::OnFileHead(FileTransfer& p_Transfer, AnswerHead const& p_Head)
{
    p_Transfer.RetryAfter = p_Head.RetryAfter;
    p_Transfer.Part->FirstByte = Clock::now();
    switch (p_Head.Status) {
    case c_PartialContent:
        return OnPart(p_Transfer, p_Head);
    case c_Success:
        return OnWhole(p_Transfer, p_Head);
    case c_RangeNotSatisfiable:
        return OnBehindEnd(p_Transfer, p_Head);
    default:
        p_Transfer.Problem = StatusProblem(p_Head.Status, p_Transfer.Url);
        p_Transfer.IsRefused = IsOfTheFile(p_Head.Status) && p_Head.RetryAfter == 0;
        return false;
    }
}

bool Exchange::OnPart(FileTransfer& p_Transfer, AnswerHead const& p_Head)
{
    std::uint64_t const end =
        p_Head.Total ? std::min(p_Transfer.Part->End, *p_Head.Total) : p_Transfer.Part->End;
    bool const isAskedFor =
        p_Head.RangeBegin == p_Transfer.Begin && p_Head.RangeLast == end - 1 && !p_Head.IsEncoded;
    // Nothing of a head that contradicts itself is believed, not even its total.
    if (isAskedFor && p_Head.Length.value_or(end - p_Transfer.Begin) == end - p_Transfer.Begin)
        return !p_Head.Total || LearnSize(p_Transfer, *p_Head.Total);
    p_Transfer.Problem =
        FetchProblem{FetchProblem::Type::Unusable, p_Transfer.Url, FetchProblem::Cause::OtherPart};
    return false;
}

/// Called when a server ignores the range and sends the whole: what lies before is skipped.
bool Exchange::OnWhole(FileTransfer& p_Transfer, AnswerHead const& p_Head)
{
    FileContent& file = *p_Transfer.File;
    // When the file is no longer than the range, the whole is a proper answer to it.
    bool const isAll = p_Transfer.Begin == 0 && p_Head.Length <= p_Transfer.Part->End;
    p_Transfer.From->IgnoresRanges |= !isAll || !p_Head.Length;
    if (p_Head.IsEncoded && !p_Transfer.From->IsDefault) {
        p_Transfer.Problem =
            FetchProblem{FetchProblem::Type::Unusable, p_Transfer.Url, FetchProblem::Cause::Packed};
        p_Transfer.IsRefused = true;
        return false;
    }
    bool const hasLength = p_Head.Length && !p_Head.IsEncoded;
    if (hasLength && !LearnSize(p_Transfer, *p_Head.Length))
        return false;
    Span& span = *p_Transfer.Part;
    if (!hasLength && !file.Size)
        file.HasNoSize = true;
    SizesKnown.reset();
    span.IsStream = true;
    span.ToSkip = p_Transfer.Begin;
    auto const next = std::next(p_Transfer.Part);
    span.End = next != file.Spans.end() ? next->Begin : file.Size.value_or(Span::c_Open);
    Recount(file);
    Changed.notify_all();
    return true;
}

bool Exchange::OnBehindEnd(FileTransfer& p_Transfer, AnswerHead const& p_Head)
{
    if (p_Head.Total && *p_Head.Total <= p_Transfer.Begin) {
        LearnSize(p_Transfer, *p_Head.Total);
        return false;
    }
    p_Transfer.From->IgnoresRanges |= p_Transfer.Begin == 0; // perhaps it gives the whole
    p_Transfer.Problem = StatusProblem(p_Head.Status, p_Transfer.Url);
    return false;
}

Take Exchange::OnFileBytes(FileTransfer& p_Transfer, char const* p_Data, std::size_t p_Count)
{
    FileContent& file = *p_Transfer.File;
    Span& span = *p_Transfer.Part;
    TimePoint const now = Clock::now();
    if (Paused || !Limit.MayTake(now)) {
        IsRateBlocked = true;
        return Take::Later;
    }
    // A stream may exceed all memory: with none left, only what a client waits for is taken.
    bool const isStarving = span.Held() == 0;
    if (span.IsStream && span.ToSkip == 0 && !isStarving && !HasRoom(p_Count)) {
        IsRoomBlocked = true;
        return Take::Later;
    }
    Limit.Take(p_Count);
    CountBytes(*p_Transfer.From, p_Count, p_Count > span.ToSkip, now);
    std::uint64_t const skipped = std::min<std::uint64_t>(span.ToSkip, p_Count);
    span.ToSkip -= skipped;
    std::uint64_t const left = p_Count - skipped;
    std::uint64_t const wanted = std::min(left, span.End - span.Arrived);
    if (wanted > 0) {
        span.Append(p_Data + skipped, static_cast<std::size_t>(wanted));
        file.Contributors.insert(p_Transfer.From);
        p_Transfer.From->Failures = p_Transfer.From->Refusals = 0;
        Recount(file);
        if (file.Readers > 0)
            Changed.notify_all();
    }
    return wanted < left ? Take::Stop : Take::More; // more than there should be
}

void Exchange::OnFileEnd(FileTransfer& p_Transfer, std::optional<FetchProblem> const& p_Problem)
{
    FileContent& file = *p_Transfer.File;
    Server& server = *p_Transfer.From;
    Span& span = *p_Transfer.Part;
    TimePoint const now = Clock::now();
    --server.Transfers;
    --Transfers;
    span.Transfer = 0;
    span.By.reset();
    if (span.Arrived == p_Transfer.Begin)
        LastSkipped = {};
    if (!Limit.IsSet() && !span.IsStream)
        ServerBoard::NoteSpeed(server, span.Arrived - p_Transfer.Begin,
                               SecondsBetween(span.FirstByte, now));
    auto problem = p_Transfer.Problem ? p_Transfer.Problem : p_Problem;
    bool const isComplete = span.Arrived >= span.End && !p_Transfer.Problem;
    if (!problem && span.End == Span::c_Open) { // the end of what nobody knew the length of
        file.Size = span.Arrived;
        file.SizeFrom = p_Transfer.From;
    } else if (!isComplete && !problem && !file.EndsAt(span.Arrived)) {
        problem = FetchProblem{FetchProblem::Type::Dropped, p_Transfer.Url,
                               FetchProblem::Cause::EndsEarly};
    }
    span.End = span.Arrived;
    if (problem && !isComplete)
        NoteFailure(p_Transfer, *problem);
    else
        file.Problem.reset();
    if (file.PlanIndex != FileContent::c_Unplanned && file.FirstGap(file.Offset))
        PlanAhead = std::min(PlanAhead, std::max(PlanNext, file.PlanIndex));
    file.Tidy();
    Recount(file);
    Changed.notify_all();
}

} // namespace Varnholt::Gateway
