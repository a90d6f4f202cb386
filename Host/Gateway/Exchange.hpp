#pragma once

#include "Host/Gateway/Document.hpp"
#include "Host/Gateway/DocumentJudge.hpp"
#include "Host/Gateway/FileContent.hpp"
#include "Host/Gateway/FileTransfer.hpp"
#include "Host/Gateway/Gateway.hpp"
#include "Host/Gateway/RateLimit.hpp"
#include "Host/Gateway/ServerBoard.hpp"
#include "Host/Gateway/TransferLoop.hpp"

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <thread>
#include <vector>

namespace Varnholt::Gateway {

/// Where what clients ask for meets what servers give. One thread runs all transfers; each client
/// waits on its own. Everything is guarded by one mutex that is never held over network or disk.
///
/// A run, in the order of its steps:
///
///   BeginRun ── FetchDocument* ── Plan ──┬─ FetchHead* ──── sizes ◄─ StartQueries ◄┐
///                                        └─ Open, Next* ─── bytes ◄─ StartFiles ◄──┼─ Turn
///                                                                      CheckWaits ◄┘
///
/// `Turn` is called by the transfer thread again and again; only there transfers begin and are
/// cancelled. What they bring comes in by the On… operations.
class Exchange : public Gateway {
public:
    /// A client that reads a file from an offset to its end.
    struct Reader {
        std::shared_ptr<FileContent> File;
        std::uint64_t At = 0;
        std::optional<std::uint64_t> Size; ///< as its client was told
        std::uint64_t Run = 0;
        bool Starves = false; ///< waits for bytes and has nothing to give to its client
        TimePoint NotBefore;  ///< that it gets any; the end of time: while sizes come first
    };
    enum class Given { Bytes, Nothing, End, Failure };
    struct DocumentAnswer {
        int Status = 0;
        std::shared_ptr<std::string const> Body; ///< null: empty
    };
    struct FileHead {
        int Status = 0;
        std::optional<std::uint64_t> Size; ///< none: it ends where it ends
    };

    explicit Exchange(GatewayOptions const& p_Options);
    ~Exchange() override;
    /// \param p_Name what clients get as the list of mirrors
    void Begin(std::string const& p_Name);
    /// Lets all that wait go, for good.
    void Close();

    // As the gateway has them.
    void BeginRun(Source p_Source, Documents p_Copies,
                  std::shared_ptr<DocumentJudge> p_Trust) override;
    void EndRun() override;
    void Want(std::string const& p_Path) override;
    Documents Fetched() const override;
    void Plan(std::vector<PlannedFile> const& p_Files, bool p_SizesFirst) override;
    void AskSizes(std::vector<PlannedFile> const& p_Files) override;
    std::optional<std::uint64_t> SizeOf(std::string const& p_Path) const override;
    std::optional<FetchProblem> ProblemOf(std::string const& p_Path) const override;
    std::optional<FetchProblem> LatestProblem() const override;
    void Reject(std::string const& p_Path) override;
    void SetRateLimit(std::uint64_t p_BytesPerSecond) override;
    GatewaySnapshot Snapshot() const override;
    std::vector<std::string> Servers() const override;
    void Ask(Question p_Question, std::function<void(Reply)> p_OnReply) override;

    // For clients of the door, on their threads.
    DocumentAnswer FetchDocument(std::string const& p_Path);
    FileHead FetchHead(std::string const& p_Path, bool p_OfDefaultServer);
    /// \param p_Size as the client was told: it may have changed since
    std::shared_ptr<Reader> Open(std::string const& p_Path, std::uint64_t p_Offset,
                                 std::optional<std::uint64_t> p_Size);
    /// Waits a moment when there is nothing.
    Given Next(Reader& p_Reader, FileContent::Bytes& p_Bytes);

protected:
    void SetPaused(bool p_Paused) override;

private:
    using Lock = std::unique_lock<std::mutex>;
    using File = std::shared_ptr<FileContent>;

    TimePoint Turn();
    void Forget();
    bool IsOver(std::uint64_t p_Run) const { return Closing || p_Run != Run || GaveUp; }
    void Fail(FetchProblem const& p_Problem)
    {
        Latest = p_Problem;
        Options.OnFailure(p_Problem);
    }
    File FileOf(std::string const& p_Path, bool p_OfDefaultServer);
    std::vector<File> FilesOf(std::vector<PlannedFile> const& p_Files);
    std::shared_ptr<FileTransfer> NewTransfer(File const& p_File,
                                              std::shared_ptr<Server> const& p_Server) const;
    /// Starts what has been filled in, and reports of it under the lock for as long as its run goes
    /// on. \param p_OnBytes called without the lock
    void Start(std::shared_ptr<FileTransfer> const& p_Transfer, TransferRequest p_Request,
               bool (Exchange::*p_OnHead)(FileTransfer&, AnswerHead const&),
               std::function<Take(char const*, std::size_t)> p_OnBytes,
               void (Exchange::*p_OnEnd)(FileTransfer&, std::optional<FetchProblem> const&));
    void SetPlan(std::vector<PlannedFile> const& p_Files, bool p_SizesFirst, bool p_SizesOnly);
    File Known(std::string const& p_Path) const;
    bool MayRead(Reader const& p_Reader) const
    {
        return !SizesFirst && Clock::now() >= p_Reader.NotBefore;
    }

    // _Documents
    std::shared_ptr<Document> NewDocument(std::string const& p_Path) const;
    void StartDocuments(TimePoint p_Now);
    void StartDocument(std::shared_ptr<Document> const& p_Document);
    Take OnDocumentBytes(Document& p_Document, char const* p_Data, std::size_t p_Count);
    void OnDocumentEnd(Document& p_Document, std::optional<FetchProblem> p_Problem);
    void Finish(Document& p_Document, std::optional<FetchProblem> const& p_Problem);
    bool UseMirrors(std::string const& p_List);
    void TurnToCopies(FetchProblem const& p_Problem);
    DocumentAnswer CopyOf(std::string const& p_Path);
    DocumentAnswer AnswerOf(Document const& p_Document) const;
    void StartQuestions();

    // _Trust
    std::optional<FetchProblem> Verdict(Document const& p_Document,
                                        std::optional<FetchProblem> const& p_Problem);
    void Doubt(Document& p_Document, FetchProblem const& p_Problem);
    bool AwaitsKey(FetchProblem const& p_Problem);
    void OnKeyEnd();
    std::string const* GoodCopy(std::string const& p_Path);

    // _Sizes
    void StartQueries(TimePoint p_Now);
    File NextToQuery();
    bool StartQuery(File const& p_File, TimePoint p_Now);
    bool OnQueryHead(FileTransfer& p_Query, AnswerHead const& p_Head);
    void OnQueryEnd(FileTransfer& p_Query, std::optional<FetchProblem> const& p_Problem);
    bool LearnSize(FileTransfer& p_Transfer, std::uint64_t p_Size);
    void AskAgain(File const& p_File);

    // _Readers
    bool IsOver(Reader const& p_Reader) const;
    bool IsServed(Reader const& p_Reader) const;
    void Release(FileContent& p_File);
    void Deliver(FileContent& p_File);

    // _Files
    void StartFiles(TimePoint p_Now);
    bool FetchGaps(File const& p_File, std::uint64_t p_From, bool p_IsWaitedFor, TimePoint p_Now);
    void StartTransfer(File const& p_File, FileContent::Gap const& p_Gap,
                       std::shared_ptr<Server> const& p_Server, TimePoint p_Now);
    bool OnFileHead(FileTransfer& p_Transfer, AnswerHead const& p_Head);
    bool OnPart(FileTransfer& p_Transfer, AnswerHead const& p_Head);
    bool OnWhole(FileTransfer& p_Transfer, AnswerHead const& p_Head);
    bool OnBehindEnd(FileTransfer& p_Transfer, AnswerHead const& p_Head);
    Take OnFileBytes(FileTransfer& p_Transfer, char const* p_Data, std::size_t p_Count);
    void OnFileEnd(FileTransfer& p_Transfer, std::optional<FetchProblem> const& p_Problem);

    // _Failures
    void NoteFailure(FileTransfer& p_Transfer, FetchProblem const& p_Problem);
    void Refuse(FileContent& p_File, Server& p_Server, FetchProblem const& p_Problem);
    ServerBoard::Filter Allowed(FileContent const& p_File) const;

    // _Room
    bool HasRoom(std::uint64_t p_Bytes) const { return Held + p_Bytes <= c_WindowBytes; }
    void MakeRoom(std::uint64_t p_Bytes);
    void Recount(FileContent& p_File);
    void Drop(FileContent& p_File);
    void CancelTransfer(Span& p_Span);
    void RelieveSlowOnes(TimePoint p_Now);

    // _Waits
    void CheckWaits(TimePoint p_Now);
    void GiveUp(FetchProblem const& p_Problem);
    bool IsWaitedFor() const;
    FetchProblem Silence() const;
    GatewaySnapshot::Wait WaitAt(TimePoint p_Now, Milliseconds p_Silent) const;
    void CountBytes(Server& p_Server, std::uint64_t p_Bytes, bool p_AreNew, TimePoint p_Now);
    void NoteArrival(TimePoint p_Now);
    TimePoint LastSign() const { return std::max({LastByte, LastSkipped, WaitedSince}); }

    static constexpr std::uint64_t c_WindowBytes = 24ULL * 1024 * 1024;

    GatewayOptions Options;
    mutable std::mutex Guard;
    std::condition_variable Changed;
    bool Closing = false;
    std::string OwnName;
    ServerBoard Board;
    RateLimit Limit;

    // Of the run.
    std::uint64_t Run = 0;
    bool IsRunning = false;
    Source From = Source::Server;
    Documents Copies;
    std::shared_ptr<DocumentJudge> Trust; ///< null: every document is believed
    std::map<std::string, std::shared_ptr<std::string const>> FetchedDocuments;
    std::optional<FetchProblem> CopiesProblem;
    TimePoint CopiesFrom; ///< when the servers have been given enough time
    std::map<std::string, std::shared_ptr<Document>> DocumentsByPath;
    std::map<std::string, File> Files; ///< by path
    std::vector<File> Planned;
    std::size_t PlanNext = 0;                        ///< the first that no client has got
    std::size_t PlanAhead = 0;                       ///< the first with a gap
    std::size_t PlanSizes = 0;                       ///< the first whose size was not asked for
    mutable std::optional<std::uint32_t> SizesKnown; ///< of the plan; none until it is counted
    bool SizesFirst = false;
    bool SizesOnly = false;
    std::deque<File> SizesWanted; ///< before those of the plan
    std::vector<Reader*> Readers;
    int HeadsWaited = 0; ///< clients that wait for headers
    int Transfers = 0;
    int Queries = 0;
    std::uint64_t Held = 0;     ///< bytes in memory and those on their way there
    std::uint64_t Expected = 0; ///< of these, those on their way
    bool Paused = false;
    bool IsRateBlocked = false; ///< some transfer waits for the limit
    bool IsRoomBlocked = false; ///< some transfer waits for room
    bool WantsRoom = false;     ///< the plan waits for room
    TimePoint WaitedSince;
    bool WasWaitedFor = false;
    TimePoint LastSkipped; ///< of bytes that are there already; none once they have led to nothing
    TimePoint LastByte;
    std::uint64_t Received = 0;
    RateMeter Meter;
    std::shared_ptr<Server> LatestServer;
    std::optional<FetchProblem> Latest;
    std::optional<FetchProblem> GaveUp;

    std::set<TransferLoop::Id> UnderWay; ///< of this run
    std::vector<TransferLoop::Id> ToCancel;
    std::deque<std::pair<Question, std::function<void(Reply)>>> Questions;
    TransferLoop Loop;
    std::thread Thread;
};

} // namespace Varnholt::Gateway
