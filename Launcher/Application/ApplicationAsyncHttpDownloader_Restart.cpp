#include "Launcher/Application/ApplicationAsyncHttpDownloader.hpp"

#include "Launcher/Application/LogCategories.hpp"
#include "Launcher/Application/RateClock.hpp"

#include <QDebug>
#include <QFile>
#include <QNetworkRequest>

#include <algorithm>

namespace Varnholt::Launcher {

namespace {

/// From the fourth drop on, a line that breaks now and then must not cost the whole file again.
constexpr int c_FullStartOvers = 3;

/// Milliseconds to wait before a restart, given how many in a row (this one included) follow an
/// attempt without a byte of a successful answer: the first is free, then doubling up to a limit.
int RestartPause(int p_FruitlessRestarts)
{
    constexpr int c_First = 250;
    constexpr int c_Longest = 5000;
    constexpr int c_MostDoublings = 5;
    if (p_FruitlessRestarts < 2)
        return 0;
    return std::min(c_First << std::min(p_FruitlessRestarts - 2, c_MostDoublings), c_Longest);
}

QString ErrorName(QNetworkReply::NetworkError p_Error)
{
    QString name;
    QDebug(&name).nospace() << p_Error;
    return name;
}

} // namespace

/// A reply that was aborted inside one of its signals goes on to emit what follows that signal.
bool ApplicationAsyncHttpDownloader::IsFromCurrentReply() const
{
    return Request->Reply != nullptr && sender() == Request->Reply;
}

int ApplicationAsyncHttpDownloader::StatusCode() const
{
    return Request->Reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
}

bool ApplicationAsyncHttpDownloader::AnswerIsSuccess() const
{
    int const status = StatusCode();
    return status >= 200 && status < 300;
}

bool ApplicationAsyncHttpDownloader::AttemptIsWhole() const
{
    return AnswerIsSuccess() && !Current.WriteFailed && Request->ContentLength > 0 &&
           Current.ReceivedBytes >= static_cast<qint64>(Request->ContentLength);
}

void ApplicationAsyncHttpDownloader::HTTP_OnError(QNetworkReply::NetworkError p_Error)
{
    if (!IsFromCurrentReply())
        return;
    switch (p_Error) {
    case QNetworkReply::OperationCanceledError: // our own abort()
        return;
    case QNetworkReply::RemoteHostClosedError:
        qCWarning(LogDownload)
            << "ApplicationAsyncHttpDownloader::HTTP_OnError QNetworkReply::RemoteHostClosedError";
        return ArmRestart([this] { ContinueInPlace(); });
    case QNetworkReply::UnknownContentError:
        qCWarning(LogDownload)
            << "ApplicationAsyncHttpDownloader::HTTP_OnError QNetworkReply::UnknownContentError";
        return ArmRestart([this] { StartOver(); });
    default:
        qCWarning(LogDownload) << "ApplicationAsyncHttpDownloader::HTTP_OnError error"
                               << ErrorName(p_Error);
        // The reply runs on to finished(); whoever asked for the file judges it by its digest.
        ErrorReporter(QStringLiteral("Http Error %1").arg(static_cast<int>(p_Error)), false);
    }
}

void ApplicationAsyncHttpDownloader::ArmRestart(std::function<void()> p_Action)
{
    Request->Restarting = true;
    Request->RestartAction = std::move(p_Action);
    Request->Reply->abort();
}

void ApplicationAsyncHttpDownloader::HTTP_DownloadFinished()
{
    if (!IsFromCurrentReply())
        return;
    qCWarning(LogDownload) << "ApplicationAsyncHttpDownloader::HTTP_DownloadFinished << "
                           << Request->Aborted.load() << " << " << Request->Resume << " << "
                           << Request->Restarting;
    bool const aborted = Request->Aborted;
    if (aborted && !Request->Resume)
        QFile::remove(FilePath);
    if (AttemptIsWhole())
        Request->Continuable = false;
    Request->Reply->close();
    Request->Reply->deleteLater();
    Request->Reply = nullptr;

    if (Request->Restarting && !aborted)
        RestartWhenDue();
    else
        EndTransfer();
    qCWarning(LogDownload) << "ApplicationAsyncHttpDownloader::HTTP_DownloadFinished end";
}

void ApplicationAsyncHttpDownloader::RestartWhenDue()
{
    FruitlessRestarts = Current.BroughtBytes ? 0 : FruitlessRestarts + 1;
    int const pause = RestartPause(FruitlessRestarts);
    if (pause == 0)
        RunRestart();
    else
        RestartTimer->start(pause);
}

void ApplicationAsyncHttpDownloader::RunRestart()
{
    auto const action = Request->RestartAction; // a copy: the action may replace it
    action();
}

void ApplicationAsyncHttpDownloader::ContinueInPlace()
{
    // Leaves the restart armed: the file is asked for once more behind its end, refused, and
    // fetched again as a whole, which heals whatever the drop has done to it.
    if (StartOvers >= c_FullStartOvers) {
        Request->Restarting = false;
        Request->RestartAction = [] {};
    }
    if (HoldsErrorPage)
        QFile::remove(FilePath);
    bool const started = StartDownload();
    Current.Continuing = true;
    Q_EMIT AsyncOnHTTPDownloadRestarted(Request);
    if (!started)
        EndTransfer();
}

void ApplicationAsyncHttpDownloader::StartOver()
{
    qCWarning(LogDownload)
        << "ApplicationAsyncHttpDownloader::HTTP_OnError QNetworkReply::UnknownContentError "
           "removing file"
        << FilePath;
    QFile::remove(FilePath);
    ++StartOvers;
    Request->RateSampleBytes = 0;
    Request->BaseBytes = 0;
    Request->RestartAction = [] {};
    Request->CurrentBytes = 0;
    Request->BytesPerSecond = 0;
    Request->Percent = 0;
    Request->Restarting = false;
    // The abort flags are left alone: they are false here but for an abort that has just come.
    RateClock::Restart(Request->RateTimer);
    qCWarning(LogDownload)
        << "ApplicationAsyncHttpDownloader::HTTP_OnError QNetworkReply::UnknownContentError "
           "restarting download for"
        << Url;
    bool const started = StartDownload();
    Q_EMIT AsyncOnHTTPDownloadRestarted(Request);
    if (!started)
        EndTransfer();
}

/// Called when a continued transfer is answered with the whole file: appended it would be wrong,
/// and continued again it would be answered so for ever.
void ApplicationAsyncHttpDownloader::RefuseWholeFile()
{
    if (StartOvers < c_FullStartOvers)
        return ArmRestart([this] { StartOver(); });
    // No start-over has brought it whole: what lies there cannot be continued from this server.
    Request->Continuable = false;
    Request->Restarting = false;
    Request->Reply->abort();
}

void ApplicationAsyncHttpDownloader::HonourAbort()
{
    if (!Request->Aborted)
        return;
    if (RestartTimer->isActive()) {
        RestartTimer->stop();
        if (!Request->Resume)
            QFile::remove(FilePath);
        EndTransfer();
    } else if (Request->Reply != nullptr) {
        Request->Reply->abort();
    }
}

void ApplicationAsyncHttpDownloader::EndTransfer()
{
    // Here, and not where the file is judged, which must not be kept waiting.
    if (Follower)
        Request->Digest = Follower->CatchUp([this] { return !Request->Aborted; });
    Q_EMIT AsyncOnHTTPDownloadProgressComplete(Request);
    if (Request->Aborted)
        Request->AbortAcknowledged = true;
    Q_EMIT CloseThread();
}

} // namespace Varnholt::Launcher
