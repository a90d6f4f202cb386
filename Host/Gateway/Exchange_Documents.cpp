#include "Host/Gateway/Exchange.hpp"

#include "Host/Gateway/HostList.hpp"
#include "Host/Gateway/HttpStatus.hpp"
#include "Host/Gateway/TransferProblem.hpp"

#include <algorithm>

namespace Varnholt::Gateway {

using namespace HttpStatus;

/// Waits for the document that a client asks for, which is fetched anew each time unless it has
/// been verified.
Exchange::DocumentAnswer Exchange::FetchDocument(std::string const& p_Path)
{
    Lock lock(Guard);
    std::uint64_t const run = Run;
    if (!IsRunning || IsOver(run))
        return {c_Unavailable, {}};
    if (CopiesProblem)
        return CopyOf(p_Path);
    if (From == Source::ServerOrCopies && CopiesFrom == TimePoint{})
        CopiesFrom = Clock::now() + Options.CopyDelay;
    std::shared_ptr<Document>& known = DocumentsByPath[p_Path];
    bool const isVerified = Trust && known && known->IsDone && !known->Problem;
    if (!known || (known->IsDone && !isVerified))
        known = NewDocument(p_Path);
    std::shared_ptr<Document> const document = known;
    Loop.Wake();
    auto const isOver = [&] { return document->IsDone || CopiesProblem || IsOver(run); };
    if (From != Source::ServerOrCopies)
        Changed.wait(lock, isOver);
    else if (!Changed.wait_until(lock, CopiesFrom, isOver))
        Finish(*document,
               document->Problem.value_or(FetchProblem{FetchProblem::Type::Silent, document->Url,
                                                       FetchProblem::Cause::NoAnswer}));
    if (run != Run || Closing)
        return {c_Unavailable, {}};
    if (document->Problem && document->Problem->IsDistrust()) {
        GiveUp(*document->Problem);
        return {c_Unavailable, {}};
    }
    bool const isMissed = From == Source::ServerOrCopies && document->Problem;
    if (isMissed && document->IsHostList() && Copies.count(p_Path) != 0)
        return CopyOf(p_Path);
    if (isMissed && !document->IsOptional() && !CopiesProblem)
        TurnToCopies(*document->Problem);
    return CopiesProblem ? CopyOf(p_Path) : AnswerOf(*document);
}

void Exchange::Want(std::string const& p_Path)
{
    Lock const lock(Guard);
    DocumentsByPath[p_Path] = NewDocument(p_Path);
    Loop.Wake();
}

Exchange::DocumentAnswer Exchange::AnswerOf(Document const& p_Document) const
{
    // Clients are told of one mirror only, the door, whatever the server's list says.
    if (p_Document.IsHostList())
        return {c_Success, std::make_shared<std::string const>(OwnName)};
    if (!p_Document.Problem && p_Document.IsDone)
        return {c_Success, p_Document.Body};
    int const status = p_Document.Problem ? p_Document.Problem->HttpStatus : 0;
    return {status >= c_FirstError ? status : c_BadGateway, {}};
}

Exchange::DocumentAnswer Exchange::CopyOf(std::string const& p_Path)
{
    std::string const* const copy = GoodCopy(p_Path);
    if (p_Path == "cdns.info") {
        UseMirrors(copy == nullptr ? std::string() : *copy);
        return {c_Success, std::make_shared<std::string const>(OwnName)};
    }
    if (copy == nullptr)
        return {c_Unavailable, {}};
    return {c_Success, std::make_shared<std::string const>(*copy)};
}

/// From here on documents come from the copies of an earlier run.
void Exchange::TurnToCopies(FetchProblem const& p_Problem)
{
    CopiesProblem = p_Problem;
    Changed.notify_all();
}

std::shared_ptr<Document> Exchange::NewDocument(std::string const& p_Path) const
{
    auto document = std::make_shared<Document>();
    document->Path = p_Path;
    document->Url = Options.ContentServer + p_Path;
    document->Run = Run;
    return document;
}

void Exchange::StartDocuments(TimePoint p_Now)
{
    if (CopiesProblem || GaveUp)
        return;
    for (auto const& row : DocumentsByPath) {
        Document const& document = *row.second;
        if (!document.IsDone && document.Transfer == 0 && document.NotBefore <= p_Now)
            StartDocument(row.second);
    }
}

void Exchange::StartDocument(std::shared_ptr<Document> const& p_Document)
{
    p_Document->Part() = std::make_shared<std::string>();
    p_Document->RetryAfter = 0;
    ++p_Document->Attempts;
    TransferRequest request;
    request.Url = p_Document->PartUrl();
    request.OfContentServer = true;
    TransferEvents events;
    events.OnHead = [this, p_Document](AnswerHead const& p_Head) {
        Lock const lock(Guard);
        p_Document->RetryAfter = p_Head.RetryAfter;
        if (p_Head.Status != c_Success)
            p_Document->Problem = StatusProblem(p_Head.Status, p_Document->PartUrl());
        else
            p_Document->Problem.reset();
        return p_Head.Status == c_Success && p_Document->Run == Run;
    };
    events.OnBytes = [this, p_Document](char const* p_Data, std::size_t p_Count) {
        Lock const lock(Guard);
        return OnDocumentBytes(*p_Document, p_Data, p_Count);
    };
    events.OnEnd = [this, p_Document](std::optional<FetchProblem> const& p_Problem) {
        Lock const lock(Guard);
        OnDocumentEnd(*p_Document, p_Problem);
    };
    p_Document->Transfer = Loop.Start(std::move(request), std::move(events));
    UnderWay.insert(p_Document->Transfer);
}

Take Exchange::OnDocumentBytes(Document& p_Document, char const* p_Data, std::size_t p_Count)
{
    TimePoint const now = Clock::now();
    if (!Limit.MayTake(now)) {
        IsRateBlocked = true;
        return Take::Later;
    }
    Limit.Take(p_Count);
    LastByte = now;
    if (p_Document.Run != Run || p_Document.Part()->size() + p_Count > p_Document.MostBytes()) {
        p_Document.Problem = FetchProblem{FetchProblem::Type::Unusable, p_Document.PartUrl(),
                                          FetchProblem::Cause::TooLarge};
        return Take::Stop;
    }
    p_Document.Part()->append(p_Data, p_Count);
    return Take::More;
}

void Exchange::OnDocumentEnd(Document& p_Document, std::optional<FetchProblem> p_Problem)
{
    constexpr Milliseconds c_ShortPause{200};

    UnderWay.erase(p_Document.Transfer);
    p_Document.Transfer = 0;
    if (p_Document.Run != Run)
        return;
    auto problem = p_Problem ? p_Problem : p_Document.Problem;
    if (Trust && !problem && !p_Document.HasBody)
        return p_Document.Fetch(true);
    if (Trust)
        problem = Verdict(p_Document, problem);
    if (!problem)
        return Finish(p_Document, std::nullopt);
    Fail(*problem);
    p_Document.Problem = problem;
    if (problem->IsDistrust())
        return Doubt(p_Document, *problem);
    TimePoint const now = Clock::now();
    bool const isAskedToWait =
        p_Document.RetryAfter > 0 || problem->HttpStatus == c_TooManyRequests;
    if (isAskedToWait && !p_Document.IsOptional()) {
        p_Document.NotBefore =
            now +
            std::max<Milliseconds>(std::chrono::seconds(p_Document.RetryAfter), Options.RetryPause);
    } else if (problem->Kind == FetchProblem::Type::Silent && !p_Document.IsOptional()) {
        p_Document.NotBefore = now + Options.RetryPause;
    } else if (Document::EndsSoon(*problem) && p_Document.Attempts < Document::c_MostAttempts) {
        p_Document.NotBefore = now + c_ShortPause * p_Document.Attempts;
    } else {
        Finish(p_Document, problem);
    }
}

void Exchange::Finish(Document& p_Document, std::optional<FetchProblem> const& p_Problem)
{
    p_Document.Problem = p_Problem;
    p_Document.IsDone = true;
    if (!p_Problem) {
        LastByte = Clock::now();
        Latest.reset();
        FetchedDocuments[p_Document.Path] = p_Document.Body;
        if (Trust)
            FetchedDocuments[p_Document.Path + DocumentJudge::c_SignatureSuffix] =
                p_Document.Signature;
    }
    if (p_Document.IsHostList() && !p_Problem && !UseMirrors(*p_Document.Body)) {
        p_Document.Problem = FetchProblem{FetchProblem::Type::Unusable, p_Document.Url,
                                          FetchProblem::Cause::NoHostList};
        FetchedDocuments.erase(p_Document.Path);
    }
    if (Trust && p_Document.Path == Trust->KeyPath())
        OnKeyEnd();
    Changed.notify_all();
}

/// \return false when it is no list of hosts: those that are known stay
bool Exchange::UseMirrors(std::string const& p_List)
{
    std::vector<std::string> addresses;
    if (!HostList::Read(p_List, Options.HttpsMirrors, addresses))
        return false;
    Board.SetMirrors(addresses);
    return true;
}

void Exchange::StartQuestions()
{
    while (!Questions.empty()) {
        auto [question, onReply] = std::move(Questions.front());
        Questions.pop_front();
        auto const reply = std::make_shared<Reply>();
        TimePoint const begin = Clock::now();
        TransferRequest request;
        request.Url = question.Server + question.Path;
        request.Range = question.Range;
        request.OfContentServer = question.Server == Options.ContentServer;
        TransferEvents events;
        events.OnHead = [reply](AnswerHead const& p_Head) {
            reply->HttpStatus = p_Head.Status;
            return true;
        };
        events.OnBytes = [reply, most = question.MostBytes,
                          url = request.Url](char const* p_Data, std::size_t p_Count) {
            if (reply->Body.size() + p_Count > most) {
                reply->Problem =
                    FetchProblem{FetchProblem::Type::Unusable, url, FetchProblem::Cause::TooMuch};
                return Take::Stop;
            }
            reply->Body.append(p_Data, p_Count);
            return Take::More;
        };
        events.OnEnd = [reply, begin, onReply = std::move(onReply)](
                           std::optional<FetchProblem> const& p_Problem) {
            if (p_Problem)
                reply->Problem = p_Problem;
            reply->Took = MillisecondsBetween(begin, Clock::now());
            onReply(std::move(*reply));
        };
        Loop.Start(std::move(request), std::move(events));
    }
}

void Exchange::Ask(Question p_Question, std::function<void(Reply)> p_OnReply)
{
    Lock const lock(Guard);
    Questions.emplace_back(std::move(p_Question), std::move(p_OnReply));
    Loop.Wake();
}

} // namespace Varnholt::Gateway
