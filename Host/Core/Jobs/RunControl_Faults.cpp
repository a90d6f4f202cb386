#include "Host/Core/Jobs/RunControl.hpp"

#include "Host/Core/Folder/GameVolumes.hpp"
#include "Host/Core/Network/FetchFailure.hpp"

#include <QMutexLocker>
#include <QNetworkAccessManager>

#include <algorithm>

namespace Varnholt::Host {

namespace {

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

/// Called when nothing has come through the door for as long as is allowed.
void RunControl::OnGaveUp(Failure const& p_Failure)
{
    if (CurrentStep == Step::StartingUp)
        return OnStartUpFailed(p_Failure);
    if (!Survey) // which makes do with the sizes that are known
        Fail(p_Failure);
}

/// Called before the module's closures are run, so that a list that does not fit is refused before
/// its first file is begun.
void RunControl::CheckRoom(RunPhase p_Phase)
{
    constexpr qint64 c_IntervalMilliseconds = 1'000;

    bool const begins = p_Phase != LastPhase;
    LastPhase = p_Phase;
    if (!IsDownloading(p_Phase))
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

/// Called when a run has failed: what still hangs must not answer into the next one, nor keep it
/// from being over.
void RunControl::AbandonReplies()
{
    Launcher::StandartApplication& module = Context.Module;
    auto replies = Unfinished(module.ContentRequests, module.ContentRequestsMutex);
    auto const queries = Unfinished(module.ContentSizeRequests, module.ContentSizeRequestsMutex);
    replies.insert(replies.end(), queries.begin(), queries.end());
    for (QNetworkReply* const reply : replies)
        reply->abort();
    // Qt may lose the connection of a request that is aborted.
    if (!replies.empty())
        module.NetworkManager->clearConnectionCache();
}

/// Servers that the door asks after the others; none when there are no others.
std::size_t RunControl::ServersBehind() const
{
    auto const servers = Context.Door->Snapshot().Servers;
    auto const behind = static_cast<std::size_t>(std::count_if(
        servers.begin(), servers.end(), [](auto const& p_Server) { return p_Server.IsBehind; }));
    return behind < Context.Door->Servers().size() ? behind : 0;
}

/// The latest thing that went wrong on the network.
Failure RunControl::LatestFailure() const
{
    if (auto const problem = Context.Door->LatestProblem())
        return ExplainFetch(*problem);
    return {FailureKind::ServerSilent, Context.Door.ContentServer(),
            QStringLiteral("no answer in time")};
}

void RunControl::NoticeRealmList()
{
    if (UsesKept)
        return; // told already
    if (auto const problem = Context.Door.ProblemOf(QStringLiteral("realmlist.info")))
        NoticeOnce(QStringLiteral("%1; the game keeps the realm list that it has.")
                       .arg(ExplainFetch(*problem).Sentence()));
}

void RunControl::NoticeOnce(QString const& p_Text)
{
    if (Told.insert(p_Text).second)
        Q_EMIT Noticed(p_Text);
}

} // namespace Varnholt::Host
