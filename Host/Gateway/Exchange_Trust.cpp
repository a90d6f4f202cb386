#include "Host/Gateway/Exchange.hpp"

#include "Host/Gateway/TransferProblem.hpp"

namespace Varnholt::Gateway {

/// Judges a document once body and signature have been asked for. \param p_Problem of the latest
/// transfer
std::optional<FetchProblem> Exchange::Verdict(Document const& p_Document,
                                              std::optional<FetchProblem> const& p_Problem)
{
    if (!p_Problem)
        return Trust->Judge(
            {p_Document.Path, p_Document.Url, *p_Document.Body, *p_Document.Signature, false});
    using Type = FetchProblem::Type;
    bool const isUnsigned =
        p_Document.HasBody &&
        (p_Problem->Kind == Type::Unusable ||
         (p_Problem->Kind == Type::Refused && IsOfTheFile(p_Problem->HttpStatus)));
    if (!isUnsigned)
        return p_Problem;
    return FetchProblem{Type::Unsigned, p_Document.Url, p_Problem->Why, 0, p_Problem->Detail};
}

/// A publisher replaces a document and its signature one after the other: a pair that does not
/// match is asked for again, a few times.
void Exchange::Doubt(Document& p_Document, FetchProblem const& p_Problem)
{
    constexpr int c_MostDoubts = 4;

    if (++p_Document.Doubts >= c_MostDoubts) {
        Finish(p_Document, p_Problem);
        if (p_Document.Path != Trust->KeyPath()) // its absence tells nothing
            GiveUp(p_Problem);
        return;
    }
    p_Document.Fetch(false);
    p_Document.NotBefore = p_Document.Path != Trust->KeyPath() && AwaitsKey(p_Problem)
                               ? TimePoint::max()
                               : Clock::now() + Options.RetryPause * p_Document.Doubts;
}

/// Whether a document is to wait for the one that names a new key, which is asked for once a run.
bool Exchange::AwaitsKey(FetchProblem const& p_Problem)
{
    if (p_Problem.Kind != FetchProblem::Type::ForeignKey)
        return false;
    std::shared_ptr<Document>& key = DocumentsByPath[Trust->KeyPath()];
    if (!key)
        key = NewDocument(Trust->KeyPath());
    return !key->IsDone;
}

void Exchange::OnKeyEnd()
{
    for (auto const& row : DocumentsByPath)
        if (row.second->NotBefore == TimePoint::max())
            row.second->NotBefore = {};
    Loop.Wake();
}

/// \return null when there is none that may be used
std::string const* Exchange::GoodCopy(std::string const& p_Path)
{
    auto const copy = Copies.find(p_Path);
    if (copy == Copies.end())
        return nullptr;
    auto const problem =
        Trust ? Trust->Judge({p_Path, Options.ContentServer + p_Path, copy->second,
                              Copies[p_Path + DocumentJudge::c_SignatureSuffix], true})
              : std::nullopt;
    if (!problem)
        return &copy->second;
    GiveUp(*problem);
    return nullptr;
}

} // namespace Varnholt::Gateway
