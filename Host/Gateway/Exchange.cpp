#include "Host/Gateway/Exchange.hpp"

#include "Host/Gateway/HostList.hpp"

#include <algorithm>
#include <utility>

namespace Varnholt::Gateway {

Exchange::Exchange(GatewayOptions const& p_Options)
    : Options(p_Options)
    , Board(p_Options.ContentServer, p_Options.RetryPause)
    , Loop(Options)
{
    Limit.Set(p_Options.BytesPerSecond, Clock::now());
}

Exchange::~Exchange()
{
    Close();
    Loop.Stop();
    if (Thread.joinable())
        Thread.join();
    Lock const lock(Guard);
    Forget(); // files and what brings them hold each other
}

void Exchange::Begin(std::string const& p_Name)
{
    OwnName = p_Name;
    Thread = std::thread([this] { Loop.Run([this] { return Turn(); }); });
}

void Exchange::Close()
{
    Lock const lock(Guard);
    Closing = true;
    Changed.notify_all();
}

/// Called by the transfer thread before each wait. \return when it wants to be called again
TimePoint Exchange::Turn()
{
    constexpr Milliseconds c_Longest{1'000};

    TimePoint const now = Clock::now();
    TimePoint next = now + c_Longest;
    bool goesOn = false;
    {
        Lock const lock(Guard);
        for (TransferLoop::Id const transfer : ToCancel)
            Loop.Cancel(transfer);
        ToCancel.clear();
        StartQuestions();
        StartDocuments(now);
        for (auto const& row : DocumentsByPath)
            if (!row.second->IsDone && row.second->Transfer == 0 && !CopiesProblem && !GaveUp)
                next = std::min(next, row.second->NotBefore);
        if (IsRunning && !Paused && !GaveUp && From != Source::Copies) {
            StartFiles(now);
            StartQueries(now);
            next = std::min(next, Board.NextTrial(now));
        }
        CheckWaits(now);
        bool const rateAllows = IsRateBlocked && !Paused && Limit.MayTake(now);
        bool const roomAllows = IsRoomBlocked && HasRoom(Span::c_BlockBytes);
        goesOn = rateAllows || roomAllows;
        if (IsRateBlocked && !rateAllows && !Paused)
            next = std::min(next, Limit.Next(now));
        if (goesOn)
            IsRateBlocked = IsRoomBlocked = false;
    }
    if (goesOn) // bytes may come in at once
        Loop.ResumePaused();
    return next;
}

void Exchange::BeginRun(Source p_Source, Documents p_Copies, std::shared_ptr<DocumentJudge> p_Trust)
{
    Lock const lock(Guard);
    Forget();
    Trust = std::move(p_Trust);
    IsRunning = true;
    // Without the version file the other copies are of no use.
    bool const areUsable = std::any_of(p_Copies.begin(), p_Copies.end(), [](auto const& p_Row) {
        return p_Row.first.find("/version") != std::string::npos;
    });
    From = !areUsable && p_Source == Source::ServerOrCopies ? Source::Server : p_Source;
    Copies = std::move(p_Copies);
    CopiesFrom = {};
    if (From == Source::Copies)
        TurnToCopies(
            {FetchProblem::Type::Silent, Options.ContentServer, FetchProblem::Cause::NobodyAsked});
    Loop.Wake();
}

void Exchange::EndRun()
{
    Lock const lock(Guard);
    Forget();
    Loop.Wake();
}

/// Clears all state of a run and wakes those who wait for something of it.
void Exchange::Forget()
{
    for (auto const& row : Files)
        Drop(*row.second);
    ++Run; // what is under way reports to nobody from here on
    ToCancel.insert(ToCancel.end(), UnderWay.begin(), UnderWay.end());
    UnderWay.clear();
    IsRunning = false;
    Copies.clear();
    Trust.reset();
    FetchedDocuments.clear();
    CopiesProblem.reset();
    DocumentsByPath.clear();
    Files.clear();
    Planned.clear();
    SizesWanted.clear();
    PlanNext = PlanAhead = PlanSizes = 0;
    SizesKnown.reset();
    SizesFirst = SizesOnly = false;
    Queries = Transfers = 0;
    Board.BeginRun();
    Held = Expected = 0;
    Paused = IsRateBlocked = IsRoomBlocked = WantsRoom = WasWaitedFor = false;
    LastByte = LastSkipped = {};
    Received = 0;
    Meter.Clear();
    LatestServer.reset();
    Latest.reset();
    GaveUp.reset();
    Changed.notify_all();
}

Exchange::File Exchange::FileOf(std::string const& p_Path, bool p_OfDefaultServer)
{
    File& file = Files[p_Path];
    if (!file)
        file = std::make_shared<FileContent>(p_Path);
    file->OfDefaultServer |= p_OfDefaultServer;
    return file;
}

Exchange::File Exchange::Known(std::string const& p_Path) const
{
    auto const found = Files.find(p_Path);
    return found == Files.end() ? nullptr : found->second;
}

std::vector<Exchange::File> Exchange::FilesOf(std::vector<PlannedFile> const& p_Files)
{
    std::vector<File> files;
    files.reserve(p_Files.size());
    for (PlannedFile const& planned : p_Files) {
        files.push_back(FileOf(planned.Path, planned.OfDefaultServer));
        files.back()->Offset = planned.Offset;
    }
    return files;
}

std::shared_ptr<FileTransfer> Exchange::NewTransfer(File const& p_File,
                                                    std::shared_ptr<Server> const& p_Server) const
{
    auto transfer = std::make_shared<FileTransfer>();
    transfer->File = p_File;
    transfer->From = p_Server;
    transfer->Run = Run;
    transfer->Url = p_Server->Address + p_File->Path;
    return transfer;
}

void Exchange::Start(std::shared_ptr<FileTransfer> const& p_Transfer, TransferRequest p_Request,
                     bool (Exchange::*p_OnHead)(FileTransfer&, AnswerHead const&),
                     std::function<Take(char const*, std::size_t)> p_OnBytes,
                     void (Exchange::*p_OnEnd)(FileTransfer&, std::optional<FetchProblem> const&))
{
    p_Request.Url = p_Transfer->Url;
    p_Request.OfContentServer = p_Transfer->From->IsDefault;
    TransferEvents events;
    events.OnHead = [this, p_Transfer, p_OnHead](AnswerHead const& p_Head) {
        Lock const lock(Guard);
        return p_Transfer->Run == Run && (this->*p_OnHead)(*p_Transfer, p_Head);
    };
    events.OnBytes = std::move(p_OnBytes);
    events.OnEnd = [this, p_Transfer, p_OnEnd](std::optional<FetchProblem> const& p_Problem) {
        Lock const lock(Guard);
        UnderWay.erase(p_Transfer->Id);
        if (p_Transfer->Run == Run)
            (this->*p_OnEnd)(*p_Transfer, p_Problem);
    };
    p_Transfer->Id = Loop.Start(std::move(p_Request), std::move(events));
    UnderWay.insert(p_Transfer->Id);
}

void Exchange::Plan(std::vector<PlannedFile> const& p_Files, bool p_SizesFirst)
{
    Lock const lock(Guard);
    SetPlan(p_Files, p_SizesFirst, false);
}

void Exchange::AskSizes(std::vector<PlannedFile> const& p_Files)
{
    Lock const lock(Guard);
    SetPlan(p_Files, true, true);
}

void Exchange::SetPlan(std::vector<PlannedFile> const& p_Files, bool p_SizesFirst, bool p_SizesOnly)
{
    // A client that wanted nothing but a size has to be given the time to hang up: bytes that it is
    // handed are lost, and nobody wants those before a file's offset.
    constexpr std::chrono::seconds c_Leaving{2};

    if (!IsRunning)
        return;
    for (File const& file : std::exchange(Planned, FilesOf(p_Files)))
        file->PlanIndex = FileContent::c_Unplanned;
    for (std::size_t i = Planned.size(); i-- > 0;) {
        Planned[i]->PlanIndex = i;
        Planned[i]->IsDelivered = false; // it is wanted again
    }
    for (auto const& row : Files) // room for what is planned now
        if (row.second->PlanIndex == FileContent::c_Unplanned && row.second->Readers == 0)
            Drop(*row.second);
    PlanNext = PlanAhead = PlanSizes = 0;
    SizesKnown.reset();
    SizesFirst = p_SizesFirst;
    SizesOnly = p_SizesOnly;
    if (!SizesFirst)
        for (Reader* const reader : Readers)
            if (reader->NotBefore == TimePoint::max())
                reader->NotBefore = Clock::now() + c_Leaving;
    Changed.notify_all();
    Loop.Wake();
}

std::optional<std::uint64_t> Exchange::SizeOf(std::string const& p_Path) const
{
    Lock const lock(Guard);
    File const file = Known(p_Path);
    return file ? file->Size : std::nullopt;
}

std::optional<FetchProblem> Exchange::ProblemOf(std::string const& p_Path) const
{
    Lock const lock(Guard);
    auto const document = DocumentsByPath.find(p_Path);
    if (document != DocumentsByPath.end())
        return document->second->Problem;
    File const file = Known(p_Path);
    return file ? file->Problem : std::nullopt;
}

std::optional<FetchProblem> Exchange::LatestProblem() const
{
    Lock const lock(Guard);
    return Latest;
}

Exchange::Documents Exchange::Fetched() const
{
    Lock const lock(Guard);
    Documents documents;
    for (auto const& row : FetchedDocuments)
        documents.emplace(row.first, *row.second);
    return documents;
}

void Exchange::SetPaused(bool p_Paused)
{
    Lock const lock(Guard);
    if (Paused == p_Paused)
        return;
    Paused = p_Paused;
    Meter.Clear();
    WasWaitedFor = false;
    Loop.Wake();
}

void Exchange::SetRateLimit(std::uint64_t p_BytesPerSecond)
{
    Lock const lock(Guard);
    Limit.Set(p_BytesPerSecond, Clock::now());
    Loop.Wake();
}

std::vector<std::string> Exchange::Servers() const
{
    Lock const lock(Guard);
    std::vector<std::string> addresses;
    for (std::shared_ptr<Server> const& server : Board.All())
        addresses.push_back(server->Address);
    return addresses;
}

} // namespace Varnholt::Gateway
