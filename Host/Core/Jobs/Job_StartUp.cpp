#include "Host/Core/Jobs/Job.hpp"

#include "Host/Core/Network/FetchFailure.hpp"
#include "Launcher/Application/RemoteText.hpp"

namespace Varnholt::Host {

QString Job::VersionFile() const
{
    return Context.Options.UseDevChannel ? QStringLiteral("version_dev.json")
                                         : QStringLiteral("version.json");
}

QString Job::ManifestFile(QString const& p_Build) const
{
    return QStringLiteral("builds/%1/info.json").arg(p_Build);
}

/// Decides where the run learns of the build.
void Job::OpenDoor()
{
    using Source = Gateway::Gateway::Source;

    if (Is(UsesCopies) || Context.Options.Offline)
        Kept = Context.Copies.Read();
    UsesKept = Context.Options.Offline;
    MayUseKept = !Kept.empty() && !UsesKept;
    Source const source = UsesKept     ? Source::Copies
                          : MayUseKept ? Source::ServerOrCopies
                                       : Source::Server;
    OpenDoor(source);
}

void Job::OpenDoor(Gateway::Gateway::Source p_Source)
{
    if (Trusted)
        Context.Trust.Remember(*Trusted);
    Trusted = Context.Trust.NewJudge();
    Context.Door->BeginRun(p_Source, Kept, Trusted);
}

void Job::StartUp()
{
    if (UsesKept && Kept.empty())
        return Fail(NothingKept());
    State = Step::StartingUp;
    AwaitSilence();
    if (ChainGoesOn)
        Context.Gate.Open();
    else
        Context.Gate.Close();
    Context.View.RenewRestarts();
    Context.Module.Init();
}

void Job::OnConnected()
{
    State = Step::Working;
    Result.Build = Context.Module.RemoteBuild;
    Result.BuildName = Context.Module.Manifest.BuildStr;
    AwaitSilence();
    NoticeCopies();
    NoticeHostList();
    OnBuildKnown();
}

/// Called when the module has no manifest and will get none. The run may go on from what was kept
/// of the build, even when the servers have given a part of it.
void Job::OnStartUpFailed(Failure const& p_Failure)
{
    if (!MayUseKept)
        return Fail(Missed.value_or(p_Failure));
    MayUseKept = false;
    UsesKept = true;
    Missed = p_Failure;
    Context.Door->EndRun();
    Context.View.AbandonReplies();
    Context.View.DiscardQueue();
    OpenDoor(Gateway::Gateway::Source::Copies);
    StartUp();
}

/// Why the start has ended; the module itself tells nothing.
Failure Job::StartUpFailure() const
{
    NetworkDoor const& door = Context.Door;
    auto const documents = door->Fetched();
    auto const version = documents.find(door.PathOf(VersionFile()));
    if (auto const problem = door.ProblemOf(VersionFile()))
        return ExplainFetch(*problem);
    if (version == documents.end())
        return UsesKept ? NothingKept() : LatestFailure();
    QString build;
    if (auto const failure = ReadBuild(version->second, build))
        return *failure;
    if (auto const problem = door.ProblemOf(ManifestFile(build)))
        return ExplainFetch(*problem);
    return DamagedDocument(door.UrlOf(ManifestFile(build)));
}

std::optional<Failure> Job::ReadBuild(std::string const& p_VersionFile, QString& p_Build) const
{
    auto const version = Launcher::RemoteText::ObjectOf(QByteArray::fromStdString(p_VersionFile));
    QString const url = Context.Door.UrlOf(VersionFile());
    if (!version)
        return DamagedDocument(url);
    p_Build = (*version)[QLatin1String("build")].toString();
    if (!p_Build.isEmpty())
        return std::nullopt;
    return Failure{FailureKind::ContentInvalid, url, tr("it names no build")};
}

Failure Job::NothingKept() const
{
    return {FailureKind::OfflineUnknown, Context.Info.Name,
            tr("%1 holds no build").arg(Context.Copies.Folder())};
}

/// Called when the build is known: the host list has been answered by then.
void Job::NoticeHostList()
{
    auto const problem = Context.Door->ProblemOf(NetworkDoor::c_HostList);
    if (!problem || UsesKept)
        return;
    bool const isDamaged = problem->Kind == Gateway::FetchProblem::Type::Unusable;
    NoticeOnce({NoticeKind::MirrorsUnknown, isDamaged ? tr("The list of mirrors is damaged")
                                                      : ExplainFetch(*problem).Sentence()});
}

void Job::NoticeCopies()
{
    if (auto const problem = Context.Door->Snapshot().Copies; problem && !UsesKept) {
        UsesKept = true;
        Missed = ExplainFetch(*problem);
    }
    if (UsesKept)
        NoticeOnce({NoticeKind::ServersDoneWithout,
                    Missed ? Missed->Sentence() : tr("No server is asked"), Result.BuildText()});
}

bool Job::CanUseBuild()
{
    auto const& manifest = Context.Module.Manifest;
    if (manifest.Files.empty() && manifest.StreamedFiles.empty()) {
        Fail({FailureKind::BuildEmpty, Context.Module.RemoteBuild, {}});
        return false;
    }
    QString const locale = Context.Module.GetAppLocale();
    if (!manifest.Locales.empty() && manifest.Locales.count(locale) == 0)
        NoticeOnce({NoticeKind::LocaleLeftOut, locale});
    return true;
}

/// Called by the runs that use the realm list; the others need not tell that it is old.
void Job::NoticeRealmList()
{
    if (UsesKept)
        return; // told already
    if (auto const problem = Context.Door.ProblemOf(QStringLiteral("realmlist.info")))
        NoticeOnce({NoticeKind::RealmListKept, ExplainFetch(*problem).Sentence()});
}

void Job::Ask(Gateway::Question p_Question, std::function<void(Gateway::Reply const&)> p_OnReply)
{
    Context.Door.Ask(std::move(p_Question), *this,
                     [this, onReply = std::move(p_OnReply)](Gateway::Reply const& p_Reply) {
                         if (!Over)
                             onReply(p_Reply);
                     });
}

Failure Job::LatestFailure() const
{
    if (auto const problem = Context.Door->LatestProblem())
        return ExplainFetch(*problem);
    return {FailureKind::ServerSilent, Context.Door.ContentServer(), tr("no answer in time")};
}

} // namespace Varnholt::Host
