#include "Host/Core/Jobs/RunControl.hpp"

#include "Host/Core/Network/FetchFailure.hpp"
#include "Launcher/Application/RemoteText.hpp"

namespace Varnholt::Host {

namespace {

/// The build that a version file names, possibly none; nothing when it is no version file.
std::optional<QString> BuildIn(std::string const& p_VersionFile)
{
    auto const version = Launcher::RemoteText::ObjectOf(QByteArray::fromStdString(p_VersionFile));
    if (!version)
        return std::nullopt;
    return (*version)[QLatin1String("build")].toString();
}

/// Why a version file is of no use; nothing when it names a build.
std::optional<Failure> FaultOf(std::optional<QString> const& p_Build, QString const& p_Url)
{
    if (!p_Build)
        return DamagedDocument(p_Url);
    if (!p_Build->isEmpty())
        return std::nullopt;
    return Failure{FailureKind::ContentInvalid, p_Url, QStringLiteral("it names no build")};
}

} // namespace

QString RunControl::VersionFile() const
{
    return Context.Options.UseDevChannel ? QStringLiteral("version_dev.json")
                                         : QStringLiteral("version.json");
}

QString RunControl::ManifestFile(QString const& p_Build) const
{
    return QStringLiteral("builds/%1/info.json").arg(p_Build);
}

std::optional<Failure> RunControl::OfflinePreconditions() const
{
    bool const needsServers = Completes(Request) || Request.Kind == RunRequest::Type::AskMirrors;
    if (!Context.Options.Offline || !needsServers)
        return std::nullopt;
    return Failure{FailureKind::OptionInvalid, QStringLiteral("offline"),
                   QStringLiteral("this command asks servers")};
}

/// Decides where the run learns of the build.
void RunControl::OpenDoor()
{
    using Source = Gateway::Gateway::Source;

    bool const isEnoughToPlay =
        Request.Kind == RunRequest::Type::Play || Request.Kind == RunRequest::Type::Verify;
    Kept.clear();
    Missed.reset();
    if (isEnoughToPlay || Context.Options.Offline)
        Kept = Context.Copies.Read();
    UsesKept = Context.Options.Offline;
    MayUseKept = !Kept.empty() && !UsesKept;
    Source const source = UsesKept     ? Source::Copies
                          : MayUseKept ? Source::ServerOrCopies
                                       : Source::Server;
    Context.Door->BeginRun(source, Kept);
}

void RunControl::StartUp()
{
    CurrentStep = Step::StartingUp;
    Context.Watch.Reset();
    bool const chainGoesOn = Request.Kind == RunRequest::Type::Update && !WantsEveryFile;
    if (chainGoesOn)
        Context.Gate.Open();
    else
        Context.Gate.Close();
    Context.Module.DownloadRetryCount = 0;
    LastBehind = 0;
    Plan.Forget();
    Context.Module.Init();
}

/// Called when the module has ended its start without a manifest, or never will. What was kept of
/// the build may do: the servers may have given one part of it and not the other.
void RunControl::OnStartUpFailed(Failure const& p_Failure)
{
    if (!MayUseKept)
        return Fail(Missed.value_or(p_Failure));
    MayUseKept = false;
    UsesKept = true;
    Missed = p_Failure;
    Context.Door->EndRun();
    AbandonReplies();
    DiscardQueue();
    Context.Door->BeginRun(Gateway::Gateway::Source::Copies, Kept);
    StartUp();
}

/// Why the start has ended; the module itself tells nothing.
Failure RunControl::StartUpFailure() const
{
    NetworkDoor const& door = Context.Door;
    auto const documents = door->Fetched();
    auto const version = documents.find(door.PathOf(VersionFile()));
    if (auto const problem = door.ProblemOf(VersionFile()))
        return ExplainFetch(*problem);
    if (version == documents.end())
        return UsesKept ? NothingKept() : LatestFailure();
    auto const build = BuildIn(version->second);
    if (auto const fault = FaultOf(build, door.UrlOf(VersionFile())))
        return *fault;
    if (auto const problem = door.ProblemOf(ManifestFile(*build)))
        return ExplainFetch(*problem);
    return DamagedDocument(door.UrlOf(ManifestFile(*build)));
}

Failure RunControl::NothingKept() const
{
    return {FailureKind::OfflineUnknown, Context.Module.GetName(),
            QStringLiteral("%1 holds no build").arg(Context.Copies.Folder())};
}

/// Called when the build is known: the host list has been answered by then.
void RunControl::NoticeHostList()
{
    QString const noMirrors = QStringLiteral("%1; the files come from the default server.");
    auto const problem = Context.Door->ProblemOf(NetworkDoor::c_HostList);
    if (!problem || UsesKept)
        return;
    if (problem->Kind == Gateway::FetchProblem::Type::Unusable)
        NoticeOnce(noMirrors.arg(QStringLiteral("The list of mirrors is damaged")));
    else
        NoticeOnce(noMirrors.arg(ExplainFetch(*problem).Sentence()));
}

void RunControl::NoticeCopies()
{
    if (auto const problem = Context.Door->Snapshot().Copies; problem && !UsesKept) {
        UsesKept = true;
        Missed = ExplainFetch(*problem);
    }
    if (UsesKept)
        NoticeOnce(QStringLiteral("%1; going on with what is known of build %2.")
                       .arg(Missed ? Missed->Sentence() : QStringLiteral("No server is asked"),
                            Result.Build));
}

/// A quick check: one small file, and no module.
void RunControl::AskForVersion()
{
    CurrentStep = Step::Inspecting;
    Gateway::Question question;
    question.Server = Context.Door->Servers().front();
    question.Path = Context.Door.PathOf(VersionFile());
    if (Context.Options.Offline)
        return OnVersion({{}, 0, Kept[question.Path], {}});
    Asking = std::make_unique<QObject>();
    Context.Door.Ask(question, *Asking,
                     [this](Gateway::Reply const& p_Reply) { OnVersion(p_Reply); });
}

void RunControl::OnVersion(Gateway::Reply const& p_Reply)
{
    if (p_Reply.Problem)
        return Fail(ExplainFetch(*p_Reply.Problem));
    auto const build = BuildIn(p_Reply.Body);
    if (auto const fault = FaultOf(build, Context.Door.UrlOf(VersionFile())))
        return Fail(*fault);
    Result.Build = *build;
    if (*build == Context.Record.CompletedBuild() && !Context.Record.IsUnfinished())
        return Finish();
    Fail({FailureKind::UpdateAvailable, QStringLiteral("what differs (its size was not asked for)"),
          *build});
}

} // namespace Varnholt::Host
