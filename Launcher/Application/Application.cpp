#include "Launcher/Application/Application.hpp"

#include "Launcher/Application/ApplicationAsyncHttpDownloader.hpp"
#include "Launcher/Application/ApplicationLink.hpp"
#include "Launcher/Application/RateClock.hpp"

#include <QMutexLocker>

namespace Varnholt::Launcher {

Application::Application(QString const& p_Name, QString const& p_AppId)
    : Name(p_Name)
    , AppId(p_AppId)
    , NetworkManager(new QNetworkAccessManager(this))
    , Link(std::make_shared<ApplicationLink>(*this))
{
    // The record's pointer crosses threads in queued signals, under the name the signals spell.
    qRegisterMetaType<HTTP_DownloadFileRequest*>("HTTP_DownloadFileRequest*");
}

Application::~Application()
{
    Link->Sever();
    // Of fetches in flight, and of size queries that failed: nobody else ends them.
    for (auto const& row : ContentRequests)
        delete row.second;
    for (auto const& row : ContentSizeRequests)
        delete row.second;
}

bool Application::IsGameRunning()
{
    return false;
}

void Application::Install(QString const&, bool) {}

bool Application::Start(QString, QString)
{
    return false;
}

void Application::Repair() {}

void Application::AbortRepair() {}

void Application::Uninstall(bool) {}

void Application::SuspendDownload() {}

void Application::ResumeDownload() {}

bool Application::IsCASCApp()
{
    return false;
}

void Application::EnableCASC() {}

std::vector<QString> Application::GetCustomIconAnimation()
{
    return {};
}

int Application::GetCustomIconAnimationFramerate()
{
    return 0;
}

void Application::EnqueueSync(std::function<void()> p_Closure)
{
    QMutexLocker const lock(&SyncQueueMutex);
    SyncQueue.push(std::move(p_Closure));
}

void Application::EnqueueAsync(std::function<void()> p_Closure)
{
    QMutexLocker const lock(&AsyncQueueMutex);
    AsyncQueue.push(std::move(p_Closure));
}

HTTP_DownloadFileRequest* Application::DownloadFile(QString p_Url, QString p_Path, bool p_Resume)
{
    ApplicationAsyncHttpDownloader* const downloader = Link->NewDownloader();
    downloader->ErrorReporter = ErrorReporter;
    // By way of the application thread: behind everything that the download has posted there, so
    // that the record outlives every handler that is given its pointer.
    downloader->FinishDispatcher = [link = Link, downloader](std::function<void()> p_CleanUp) {
        link->Post(
            [downloader, p_CleanUp](Application& p_Application) {
                p_Application.Link->Retire();
                if (p_Application.OnDownloadRetired)
                    p_Application.OnDownloadRetired(downloader->Request);
                p_Application.EnqueueAsync(p_CleanUp);
            },
            p_CleanUp);
    };
    // On the download thread, which may outlive the application.
    auto const relay = [&](auto p_Signal, auto p_Slot) {
        connect(
            downloader, p_Signal, downloader,
            [link = Link, p_Slot](HTTP_DownloadFileRequest* p_Request) {
                link->Relay(p_Slot, p_Request);
            },
            Qt::DirectConnection);
    };
    using Downloader = ApplicationAsyncHttpDownloader;
    relay(&Downloader::AsyncOnHTTPDownloadProgressUpdate,
          &Application::AppInt_OnHTTPDownloadProgressUpdate);
    relay(&Downloader::AsyncOnHTTPDownloadProgressComplete,
          &Application::AppInt_OnHTTPDownloadProgressComplete);
    relay(&Downloader::AsyncOnHTTPDownloadRestarted, &Application::AppInt_OnHTTPDownloadRestarted);
    RateClock::Restart(Timer);
    QMetaObject::invokeMethod(
        this, [this] { Link->PrepareNext(); }, Qt::QueuedConnection);
    return downloader->Start(std::move(p_Url), std::move(p_Path), p_Resume);
}

void Application::AppInt_OnHTTPDownloadProgressUpdate(HTTP_DownloadFileRequest* p_Request)
{
    Q_EMIT OnHTTPDownloadProgressUpdate(p_Request);
}

void Application::AppInt_OnHTTPDownloadProgressComplete(HTTP_DownloadFileRequest* p_Request)
{
    Q_EMIT OnHTTPDownloadProgressComplete(p_Request);
}

void Application::AppInt_OnHTTPDownloadRestarted(HTTP_DownloadFileRequest* p_Request)
{
    Q_EMIT OnHTTPDownloadRestarted(p_Request);
}

} // namespace Varnholt::Launcher
