#include "Host/Core/Module/ModuleView.hpp"

#include <QMutexLocker>
#include <QNetworkAccessManager>

#include <algorithm>

namespace Varnholt::Host {

using Launcher::ApplicationUISetting;

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

bool ModuleView::IsStartingUp() const
{
    return Module.UISetting.State == ApplicationUISetting::StateStartingUp;
}

qint32 ModuleView::Mode() const
{
    QMutexLocker const lock(&Module.RunMutex);
    return Module.UISetting.Download.Mode;
}

bool ModuleView::ComparesBase() const
{
    QMutexLocker const lock(&Module.RunMutex);
    return Module.UISetting.Download.StatusFlag; // raised for the base files only
}

bool ModuleView::FetchesBase() const
{
    QMutexLocker const lock(&Module.RunMutex);
    return Module.IsDownloadingBase;
}

std::size_t ModuleView::Done() const
{
    return std::min<std::size_t>(Module.CurrentDownloadIndex, Module.FilesToDownload.size());
}

ModuleView::Entries ModuleView::Remaining() const
{
    QMutexLocker const lock(&Module.RunMutex);
    return {Module.FilesToDownload.begin() + static_cast<std::ptrdiff_t>(Done()),
            Module.FilesToDownload.end()};
}

ModuleView::Entries ModuleView::Listed() const
{
    QMutexLocker const lock(&Module.RunMutex);
    return Module.FilesToDownload;
}

std::optional<ModuleView::Entry> ModuleView::Current() const
{
    QMutexLocker const lock(&Module.RunMutex);
    if (Done() == Module.FilesToDownload.size())
        return std::nullopt;
    return Module.FilesToDownload[Done()];
}

ModuleView::Download ModuleView::Progress() const
{
    QMutexLocker const lock(&Module.RunMutex);
    Download download;
    download.Index = Done();
    download.Count = Module.FilesToDownload.size();
    if (download.Index < download.Count) {
        download.File = Module.FilesToDownload[download.Index].Path;
        download.Location = Module.FilesToDownload[download.Index].Location;
    }
    if (HasTransfer())
        download.BytesOnDisk = static_cast<quint64>(Module.CurrentDownload->BytesOnDisk);
    download.BytesTotal = Module.UISetting.Download.Total;
    return download;
}

std::size_t ModuleView::ComparedFile() const
{
    QMutexLocker const lock(&Module.RunMutex);
    return Module.UISetting.Download.Current;
}

std::vector<QString> ModuleView::Locations(std::size_t p_From, std::size_t p_To) const
{
    QMutexLocker const lock(&Module.RunMutex);
    std::vector<QString> locations;
    for (std::size_t i = p_From; i < std::min(p_To, Module.FilesToDownload.size()); ++i)
        locations.push_back(Module.FilesToDownload[i].Location);
    return locations;
}

std::optional<ModuleView::ListMark> ModuleView::Mark() const
{
    QMutexLocker const lock(&Module.RunMutex);
    auto const& files = Module.FilesToDownload;
    qint32 const mode = Module.UISetting.Download.Mode;
    bool const asksSizes = mode == ApplicationUISetting::ModeAskingSizes;
    bool const mayFetch = asksSizes || mode == ApplicationUISetting::ModeDownloading ||
                          mode == ApplicationUISetting::ModeSuspended;
    if (files.empty() || !mayFetch)
        return std::nullopt; // not before the game has quit
    return ListMark{files.size(), Module.IsDownloadingBase, asksSizes, files.front().Path,
                    files.back().Path};
}

bool ModuleView::AwaitsReply() const
{
    {
        QMutexLocker const lock(&Module.ContentRequestsMutex);
        if (!Module.ContentRequests.empty())
            return true;
    }
    // A query that failed stays in the map for good.
    return !Unfinished(Module.ContentSizeRequests, Module.ContentSizeRequestsMutex).empty();
}

QString ModuleView::Folder() const
{
    QMutexLocker const lock(&Module.RunMutex);
    return Module.InstallationPath;
}

void ModuleView::SetFolder(QString const& p_Folder)
{
    QMutexLocker const lock(&Module.RunMutex);
    Module.InstallationPath = p_Folder;
}

void ModuleView::StopTransfer()
{
    if (HasTransfer() && !Module.CurrentDownload->Aborted)
        Module.SuspendDownload();
}

std::size_t ModuleView::Queued() const
{
    QMutexLocker const lock(&Module.SyncQueueMutex);
    return Module.SyncQueue.size();
}

void ModuleView::RunQueue(std::size_t p_Count)
{
    for (; p_Count > 0; --p_Count) {
        std::function<void()> closure;
        {
            QMutexLocker const lock(&Module.SyncQueueMutex);
            if (Module.SyncQueue.empty())
                return;
            closure = std::move(Module.SyncQueue.front());
            Module.SyncQueue.pop();
        }
        closure();
    }
}

void ModuleView::DiscardQueue()
{
    std::queue<std::function<void()>> closures; // destroyed without the lock
    QMutexLocker const lock(&Module.SyncQueueMutex);
    closures.swap(Module.SyncQueue);
}

void ModuleView::AbandonReplies()
{
    auto replies = Unfinished(Module.ContentRequests, Module.ContentRequestsMutex);
    auto const queries = Unfinished(Module.ContentSizeRequests, Module.ContentSizeRequestsMutex);
    replies.insert(replies.end(), queries.begin(), queries.end());
    for (QNetworkReply* const reply : replies)
        reply->abort();
    // Qt may lose the connection of a request that is aborted.
    if (!replies.empty())
        Module.NetworkManager->clearConnectionCache();
}

} // namespace Varnholt::Host
