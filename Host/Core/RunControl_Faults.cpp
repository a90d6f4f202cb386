#include "Host/Core/RunControl.hpp"

#include "Host/Core/GameVolumes.hpp"
#include "Host/Core/MirrorFilter.hpp"
#include "Host/Core/MissingFiles.hpp"

#include <QMutexLocker>
#include <QNetworkAccessManager>
#include <QTimer>

#include <algorithm>

namespace Varnholt::Host {

namespace {

constexpr int c_MostAttempts = 5;

/// The replies of a request map that have not ended.
template <typename Map>
std::vector<QNetworkReply*> Unfinished(Map const& p_Requests, QRecursiveMutex& p_Mutex)
{
    QMutexLocker const lock(&p_Mutex);
    std::vector<QNetworkReply*> replies;
    for (auto const& row : p_Requests)
        if (!row.first->isFinished())
            replies.push_back(row.first);
    return replies;
}

} // namespace

Failure RunControl::ExplainFetch(FetchNote const& p_Note) const
{
    if (p_Note.TimedOut)
        return {FailureKind::ServerSilent, p_Note.Url, p_Note.Cause()};
    if (p_Note.IsUnreachable())
        return {FailureKind::ServerUnreachable, p_Note.Url, p_Note.Cause()};
    if (!p_Note.IsSuccess())
        return {FailureKind::ServerRefusal, p_Note.Url, p_Note.Cause()};
    return {FailureKind::ContentInvalid, p_Note.Url,
            QStringLiteral("it is damaged, or a page of another kind")};
}

void RunControl::OnStartUpFailed()
{
    auto const note = Context.Journal.Latest();
    Failure failure{FailureKind::Other, QStringLiteral("the start"),
                    QStringLiteral("the module ended it without a word")};
    if (note)
        failure = ExplainFetch(*note);
    if (note && Context.Module.RemoteBuild.isEmpty() &&
        note->Url.endsWith(QLatin1String("/builds//info.json"))) {
        QString const version = Context.Options.UseDevChannel ? QStringLiteral("version_dev.json")
                                                              : QStringLiteral("version.json");
        failure = {FailureKind::ContentInvalid,
                   QString(note->Url).replace(QLatin1String("builds//info.json"), version),
                   QStringLiteral("it names no build")};
    }
    // Who refuses the first word is told at once; who is silent, or has answered once, may come
    // back.
    if (Attempts > 0 || (note && note->TimedOut))
        Retry(failure);
    else
        Fail(failure);
}

void RunControl::Retry(Failure const& p_Failure)
{
    std::size_t const missing = CountMissing();
    if (missing < LastMissing && Attempts > 0)
        Attempts = 0;
    LastMissing = missing;
    if (Attempts >= c_MostAttempts)
        return Fail(p_Failure);
    int const pause = Context.Options.RetryPauseMilliseconds << Attempts;
    ++Attempts;
    Q_EMIT Noticed(QStringLiteral("%1; trying again (%2 of %3).")
                       .arg(p_Failure.Sentence())
                       .arg(Attempts)
                       .arg(c_MostAttempts));
    CurrentStep = Step::BackingOff;
    QTimer::singleShot(pause, this, [this] {
        if (CurrentStep == Step::BackingOff)
            StartUp();
    });
}

std::optional<FetchNote> RunControl::UnansweredSize() const
{
    QMutexLocker const lock(&Context.Module.RunMutex);
    for (auto const& entry : Context.Module.FilesToDownload)
        if (auto note = Context.Journal.FailureOfFile(entry.Location);
            note && (note->IsUnreachable() || note->TimedOut))
            return note;
    return std::nullopt;
}

std::size_t RunControl::CountMissing() const
{
    return MissingFiles(Context.Module.Manifest, Folder(), Context.Module.GetAppLocale()).size();
}

/// Called before the module's closures are run, so that a list that does not fit is refused before
/// its first file is begun.
void RunControl::CheckRoom(RunPhase p_Phase)
{
    constexpr qint64 c_IntervalMilliseconds = 1'000;

    bool const begins = p_Phase != LastPhase;
    LastPhase = p_Phase;
    if (!IsDownloading(p_Phase) || Pending)
        return;
    Launcher::StandartApplication& module = Context.Module;
    std::optional<Failure> failure;
    if (begins) {
        RoomCheck::Entries files;
        {
            QMutexLocker const lock(&module.RunMutex);
            files = module.FilesToDownload;
        }
        failure = Room.BeforeDownload(Folder(), files, module.UISetting.Download.Total);
        RoomChecked = Clock.elapsed();
    } else if (Clock.elapsed() - RoomChecked >= c_IntervalMilliseconds) {
        failure = Room.WhileDownloading(VolumeInUse(), Reader.RemainingBytes());
        RoomChecked = Clock.elapsed();
    }
    if (failure)
        Fail(*failure);
}

/// A folder on the volume that the current file arrives on.
QString RunControl::VolumeInUse() const
{
    RoomCheck::Entries current;
    {
        QMutexLocker const lock(&Context.Module.RunMutex);
        auto const& files = Context.Module.FilesToDownload;
        if (Context.Module.CurrentDownloadIndex < files.size())
            current = {files[Context.Module.CurrentDownloadIndex]};
    }
    return GameVolumes::Of(Folder(), current).back().Folder;
}

void RunControl::WatchForStall(RunPhase p_Phase)
{
    bool const usesNetwork = p_Phase == RunPhase::Connecting || p_Phase == RunPhase::AskingSizes ||
                             IsDownloading(p_Phase);
    if (!usesNetwork)
        return Stall.Reset();

    Launcher::StandartApplication& module = Context.Module;
    quint64 received = 0;
    {
        QMutexLocker const lock(&module.ContentRequestsMutex);
        for (auto const& row : module.ContentRequests)
            received += static_cast<quint64>(row.second->Data.size()) + 1;
    }
    quint64 const transfer = module.CurrentDownload == nullptr
                                 ? 0
                                 : static_cast<quint64>(module.CurrentDownload->BytesOnDisk) + 1;
    if (!Stall.Observe(Clock.elapsed(),
                       {static_cast<quint64>(p_Phase), module.CurrentDownloadIndex,
                        module.SizeRepliesReceived, received, transfer, Context.Ledger.Count()}))
        return;
    if (!IsDownloading(p_Phase))
        return StopSilentReplies();
    if (module.CurrentDownload == nullptr)
        return;
    QString const url = module.CurrentDownload->Url;
    Context.Journal.NoteTimeout(url);
    GiveUpTransfer({FailureKind::ServerSilent, url, QStringLiteral("no answer in time")});
}

/// Ends fetches that bring nothing any more. The realm list's is under way in every phase, and a
/// run is not over before it has ended.
void RunControl::WatchFetches()
{
    Launcher::StandartApplication& module = Context.Module;
    qint64 const now = Clock.elapsed();
    std::map<QNetworkReply*, FetchProgress> fetches;
    std::vector<QNetworkReply*> silent;
    {
        QMutexLocker const lock(&module.ContentRequestsMutex);
        for (auto const& row : module.ContentRequests) {
            FetchProgress progress{row.second->Data.size(), now};
            auto const known = Fetches.find(row.first);
            if (known != Fetches.end() && known->second.Bytes == progress.Bytes)
                progress.Since = known->second.Since;
            fetches[row.first] = progress;
            if (now - progress.Since >= Context.Options.StallMilliseconds)
                silent.push_back(row.first);
        }
    }
    Fetches.swap(fetches);
    for (QNetworkReply* const reply : silent) {
        Context.Journal.ExpectTimeout(*reply);
        reply->abort();
    }
    if (!silent.empty())
        module.NetworkManager->clearConnectionCache();
}

void RunControl::WatchForDrops(RunPhase p_Phase)
{
    Launcher::StandartApplication const& module = Context.Module;
    if (!IsDownloading(p_Phase) || module.CurrentDownload == nullptr || Pending)
        return;
    quint64 const bytes = static_cast<quint64>(module.CurrentDownload->BytesOnDisk);
    if (!Drops.Observe(Context.Ledger.Restarts(), Context.Ledger.Count(), bytes))
        return;
    QString const url = module.CurrentDownload->Url;
    // A refused connection is in the journal; of a closed one nothing is reported.
    if (!Context.Journal.LatestFailure() || Context.Journal.LatestFailure()->Url != url)
        Context.Journal.NoteDownloadError(url, QNetworkReply::RemoteHostClosedError);
    GiveUpTransfer(ExplainFetch(*Context.Journal.LatestFailure()));
}

/// Stops the transfer in flight; its end is judged by p_Failure.
void RunControl::GiveUpTransfer(Failure const& p_Failure)
{
    Pending = p_Failure;
    Context.Module.SuspendDownload();
}

std::vector<QNetworkReply*> RunControl::UnfinishedReplies() const
{
    Launcher::StandartApplication& module = Context.Module;
    auto replies = Unfinished(module.ContentRequests, module.ContentRequestsMutex);
    auto const queries = Unfinished(module.ContentSizeRequests, module.ContentSizeRequestsMutex);
    replies.insert(replies.end(), queries.begin(), queries.end());
    return replies;
}

void RunControl::StopSilentReplies()
{
    for (QNetworkReply* const reply : UnfinishedReplies()) {
        Context.Journal.ExpectTimeout(*reply);
        reply->abort();
    }
    // Qt may lose the connection of a request that is aborted.
    Context.Module.NetworkManager->clearConnectionCache();
}

/// Called at the end of a run that has failed: what still hangs must not answer into the next one,
/// nor keep it from being over.
void RunControl::AbandonReplies()
{
    auto const replies = UnfinishedReplies();
    for (QNetworkReply* const reply : replies) {
        Context.Journal.Ignore(*reply);
        reply->abort();
    }
    if (!replies.empty())
        Context.Module.NetworkManager->clearConnectionCache();
}

/// Called before the module draws a mirror: it has no way to tell a dead one from a living.
void RunControl::CleanMirrors()
{
    Launcher::StandartApplication& module = Context.Module;
    QMutexLocker const lock(&module.RunMutex);
    if (module.CdnHosts.isEmpty())
        return;
    // A mirror that has fallen behind, or whose disk is bad, would spoil every file that it gives.
    for (QString const& mirror : Context.Ledger.TakeSuspects())
        if (module.CdnHosts.size() > 1)
            Context.Journal.NoteWrongContent(mirror);
    if (auto const note = Context.Journal.FailureOf(QStringLiteral("/cdns.info"))) {
        NoticeOnce(QStringLiteral("%1; the files come from the default server.")
                       .arg(ExplainFetch(*note).Sentence()));
        module.CdnHosts.clear(); // what was read as names is the page of an error
        return;
    }
    // In each turn, and there can be many: what has been looked at stays as it is.
    QSet<QString> const dead = Context.Journal.DeadMirrors();
    if (module.CdnHosts == CleanHosts && dead == CleanDead)
        return;
    if (MirrorFilter::IsForeign(module.CdnHosts))
        NoticeOnce(QStringLiteral("The list of mirrors is damaged; the files come from the default "
                                  "server."));
    module.CdnHosts = MirrorFilter::Apply(module.CdnHosts, dead);
    CleanHosts = module.CdnHosts;
    CleanDead = dead;
}

/// Called at the end only: a run that was begun again has asked for the list again.
void RunControl::NoticeRealmList()
{
    if (auto const note = Context.Journal.FailureOf(QStringLiteral("/realmlist.info")))
        NoticeOnce(QStringLiteral("%1; the game keeps the realm list that it has.")
                       .arg(ExplainFetch(*note).Sentence()));
}

void RunControl::NoticeOnce(QString const& p_Text)
{
    if (Told.insert(p_Text).second)
        Q_EMIT Noticed(p_Text);
}

} // namespace Varnholt::Host
