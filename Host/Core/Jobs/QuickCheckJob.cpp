#include "Host/Core/Jobs/QuickCheckJob.hpp"

#include "Host/Core/Jobs/VersionText.hpp"
#include "Host/Core/Network/FetchFailure.hpp"

#include <QCoreApplication>

namespace Varnholt::Host {

void QuickCheckJob::Start()
{
    Gateway::Question question;
    question.Server = Context.Door->Servers().front();
    question.Path = Context.Door.PathOf(VersionFile());
    if (!IsFromCopies())
        return Context.Door.Ask(question, *Asking,
                                [this](Gateway::Reply const& p_Reply) { OnVersion(p_Reply); });
    auto const& kept = KeptDocuments();
    auto const version = kept.find(question.Path);
    if (version == kept.end())
        return Fail(NothingKept());
    Gateway::Reply reply;
    reply.Body = version->second;
    OnVersion(reply);
}

void QuickCheckJob::OnVersion(Gateway::Reply const& p_Reply)
{
    if (p_Reply.Problem)
        return Fail(ExplainFetch(*p_Reply.Problem));
    auto const build = VersionText::BuildIn(p_Reply.Body);
    if (auto const fault = VersionText::FaultOf(build, Context.Door.UrlOf(VersionFile())))
        return Fail(*fault);
    Result.Build = *build;
    if (*build == Context.Record.CompletedBuild() && !Context.Record.IsUnfinished())
        return Finish();
    Fail({FailureKind::UpdateAvailable,
          QCoreApplication::translate("Varnholt::Host::QuickCheckJob",
                                      "what differs (its size was not asked for)"),
          *build});
}

} // namespace Varnholt::Host
