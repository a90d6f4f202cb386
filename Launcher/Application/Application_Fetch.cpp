#include "Launcher/Application/Application.hpp"

#include <QMutexLocker>
#include <QNetworkRequest>
#include <QUrl>

#include <algorithm>

namespace Varnholt::Launcher {

namespace {

constexpr qint64 c_SizeQueryBuffer = 4096;

/// Takes the record of a reply out of its map; null when the reply is not (or no longer) listed.
template <typename Request>
std::unique_ptr<Request> TakeRequest(std::map<QNetworkReply*, Request*>& p_Requests,
                                     QRecursiveMutex& p_Mutex, QNetworkReply* p_Reply)
{
    QMutexLocker const lock(&p_Mutex);
    auto const found = p_Requests.find(p_Reply);
    if (found == p_Requests.end())
        return nullptr;
    std::unique_ptr<Request> request(found->second);
    p_Requests.erase(found);
    return request;
}

} // namespace

HTTP_GetRemotefileContentRequest*
Application::GetRemoteFileContent(QString p_Url,
                                  std::function<void(QString, QByteArray*)> p_OnContent,
                                  std::function<void(int)> p_OnError)
{
    auto* const request = new HTTP_GetRemotefileContentRequest;
    request->Url = p_Url;
    request->OnContent = std::move(p_OnContent);

    QMutexLocker const lock(&ContentRequestsMutex);
    QNetworkReply* const reply = NetworkManager->get(QNetworkRequest(QUrl(p_Url)));
    connect(reply, SIGNAL(readyRead()), this, SLOT(HTTP_GetContent_OnReadyRead()));
    connect(reply, SIGNAL(finished()), this, SLOT(HTTP_GetContent_DownloadFinished()));
    connect(reply, &QNetworkReply::errorOccurred, this,
            [reply, onError = std::move(p_OnError)](QNetworkReply::NetworkError p_Error) {
                // Every other error ends through finished() like a success: callers judge a fetch
                // by its content.
                if (p_Error != QNetworkReply::RemoteHostClosedError &&
                    p_Error != QNetworkReply::UnknownContentError)
                    return;
                onError(p_Error);
                reply->abort();
            });
    request->Reply = reply;
    ContentRequests.emplace(reply, request);
    return request;
}

void Application::HTTP_GetContent_OnReadyRead()
{
    auto* const reply = qobject_cast<QNetworkReply*>(sender());
    QMutexLocker const lock(&ContentRequestsMutex);
    auto const found = ContentRequests.find(reply);
    if (found != ContentRequests.end())
        found->second->Data += reply->readAll();
}

void Application::HTTP_GetContent_DownloadFinished()
{
    auto* const reply = qobject_cast<QNetworkReply*>(sender());
    auto const request = TakeRequest(ContentRequests, ContentRequestsMutex, reply);
    if (!request)
        return;
    request->OnContent(request->Url, &request->Data);
    reply->deleteLater();
}

void Application::GetRemoteFileSize(QString p_Url,
                                    std::function<void(QString, unsigned long long)> p_OnSize)
{
    auto* const request = new HTTP_GetRemotefileContentSizeRequest;
    request->Url = p_Url;
    request->OnSize = std::move(p_OnSize);

    QMutexLocker const lock(&ContentSizeRequestsMutex);
    QNetworkReply* const reply = NetworkManager->get(QNetworkRequest(QUrl(p_Url)));
    // The headers are enough: unbounded, a large file would arrive while this thread is busy.
    reply->setReadBufferSize(c_SizeQueryBuffer);
    connect(reply, SIGNAL(metaDataChanged()), this, SLOT(HTTP_GetContentSize_MedaDataChanged()));
    request->Reply = reply;
    ContentSizeRequests.emplace(reply, request);
}

void Application::HTTP_GetContentSize_MedaDataChanged()
{
    auto* const reply = qobject_cast<QNetworkReply*>(sender());
    auto const request = TakeRequest(ContentSizeRequests, ContentSizeRequestsMutex, reply);
    if (!request)
        return;
    request->OnSize(request->Url,
                    reply->header(QNetworkRequest::ContentLengthHeader).toULongLong());
    reply->abort();
    reply->deleteLater();
}

void Application::DropSizeQueries()
{
    std::vector<QNetworkReply*> unanswered;
    {
        QMutexLocker const lock(&ContentSizeRequestsMutex);
        for (auto const& row : ContentSizeRequests)
            if (!row.first->isFinished())
                unanswered.push_back(row.first);
    }
    for (QNetworkReply* const reply : unanswered) {
        TakeRequest(ContentSizeRequests, ContentSizeRequestsMutex, reply);
        reply->abort();
        reply->deleteLater();
    }
    MayHaveLostConnections |= !unanswered.empty();
    RenewConnections();
}

void Application::AbortFetch(HTTP_GetRemotefileContentRequest const& p_Request)
{
    p_Request.Reply->abort();
    MayHaveLostConnections = true;
    RenewConnections();
}

/// Qt 5 tries a request again when its connection was closed before any header. When it is aborted
/// at that moment, the connection is lost for good and the next request may wait on it for ever.
void Application::RenewConnections()
{
    bool const inFlight = !ContentRequests.empty() ||
                          std::any_of(ContentSizeRequests.begin(), ContentSizeRequests.end(),
                                      [](auto const& p_Row) { return !p_Row.first->isFinished(); });
    if (!MayHaveLostConnections || inFlight)
        return;
    NetworkManager->clearConnectionCache();
    MayHaveLostConnections = false;
}

} // namespace Varnholt::Launcher
