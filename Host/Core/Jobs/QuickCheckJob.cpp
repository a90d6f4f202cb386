#include "Host/Core/Jobs/JobTable.hpp"
#include "Host/Core/Network/FetchFailure.hpp"

#include <QCoreApplication>

namespace Varnholt::Host {

namespace {

/// Asks for the version file only: one small file, and no work for the module.
class QuickCheckJob : public Job {
    Q_DECLARE_TR_FUNCTIONS(Varnholt::Host::QuickCheckJob)

public:
    using Job::Job;

protected:
    std::optional<Failure> Prepare() override { return GameFailure(); }

    void Start() override
    {
        Gateway::Question question;
        question.Server = Context.Door->Servers().front();
        question.Path = Context.Door.PathOf(VersionFile());
        if (!IsFromCopies() && Verifier() != nullptr)
            return Context.Door->Want(question.Path);
        if (!IsFromCopies())
            return Ask(question, [this](Gateway::Reply const& p_Reply) {
                if (p_Reply.Problem)
                    return Fail(ExplainFetch(*p_Reply.Problem));
                OnVersion(p_Reply.Body);
            });
        auto const& kept = KeptDocuments();
        auto const version = kept.find(question.Path);
        if (version == kept.end())
            return Fail(NothingKept());
        if (auto const problem = ProblemOf(*version))
            return Distrust(ExplainFetch(*problem));
        OnVersion(version->second);
    }

    void OnBuildKnown() override {}

    /// Waits for the door, which asks again when a document does not verify and ends the run in the
    /// end.
    void Work() override
    {
        if (Verifier() == nullptr || IsFromCopies())
            return;
        auto const documents = Context.Door->Fetched();
        auto const version = documents.find(Context.Door.PathOf(VersionFile()));
        if (version != documents.end())
            return OnVersion(version->second);
        auto const problem = Context.Door.ProblemOf(VersionFile());
        if (problem && !problem->IsDistrust())
            Fail(ExplainFetch(*problem));
    }

private:
    /// Judges the copy, which does not come through the door here.
    std::optional<Gateway::FetchProblem>
    ProblemOf(OfflineCopies::Documents::value_type const& p_Version) const
    {
        if (Verifier() == nullptr)
            return std::nullopt;
        auto const& kept = KeptDocuments();
        auto const found = kept.find(p_Version.first + Gateway::DocumentJudge::c_SignatureSuffix);
        std::string const signature = found == kept.end() ? std::string() : found->second;
        return Verifier()->Judge({p_Version.first, Context.Door.UrlOf(VersionFile()).toStdString(),
                                  p_Version.second, signature, true});
    }

    void OnVersion(std::string const& p_Version)
    {
        QString build;
        if (auto const failure = ReadBuild(p_Version, build))
            return Fail(*failure);
        Result.Build = build;
        if (build == Context.Record.CompletedBuild() && !Context.Record.IsUnfinished())
            return Finish();
        Fail(
            {FailureKind::UpdateAvailable, tr("what differs (its size was not asked for)"), build});
    }
};

} // namespace

JobMaker const MakeQuickCheckJob = MakeJob<QuickCheckJob>;

} // namespace Varnholt::Host
