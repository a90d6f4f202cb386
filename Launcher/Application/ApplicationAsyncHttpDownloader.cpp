#include "Launcher/Application/ApplicationAsyncHttpDownloader.hpp"

#include "Launcher/Application/LogCategories.hpp"
#include "Launcher/Application/RateClock.hpp"

#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QNetworkAccessManager>
#include <QNetworkRequest>
#include <QUrl>

#include <array>

namespace Varnholt::Launcher {

namespace {

/// Bounds what a fast server can pile up in memory while the two pauses of a block run.
constexpr qint64 c_ReadBufferBytes = qint64{16} * 1024 * 1024;
constexpr unsigned long c_BlockPauseMilliseconds = 5;
constexpr int c_RateSampleMilliseconds = 1000;
constexpr int c_AbortWatchMilliseconds = 20;
constexpr int c_PartialContent = 206;

} // namespace

ApplicationAsyncHttpDownloader::ApplicationAsyncHttpDownloader()
{
    moveToThread(this);
}

ApplicationAsyncHttpDownloader::~ApplicationAsyncHttpDownloader()
{
    Given.release();
    wait();
    delete Request;
}

HTTP_DownloadFileRequest* ApplicationAsyncHttpDownloader::Start(QString p_Url, QString p_Path,
                                                                bool p_Resume)
{
    qCWarning(LogDownload) << "ApplicationAsyncHttpDownloader::Start << " << p_Url << " << "
                           << p_Path << " << " << p_Resume;
    QDir().mkpath(QFileInfo(p_Path).absolutePath());
    if (!p_Resume && QFile::exists(p_Path)) {
        qCWarning(LogDownload) << "ApplicationAsyncHttpDownloader::Start removing file << "
                               << p_Path;
        QFile::remove(p_Path);
    }

    auto* const request = new HTTP_DownloadFileRequest;
    request->Resume = p_Resume;
    request->FilePath = p_Path;
    request->Url = p_Url;
    RateClock::Restart(request->RateTimer);
    Request = request;
    Url = std::move(p_Url);
    FilePath = std::move(p_Path);
    Resume = p_Resume;

    qCWarning(LogDownload) << "ApplicationAsyncHttpDownloader::Start starting thread";
    if (!isRunning())
        Prepare();
    Given.release();
    qCWarning(LogDownload) << "ApplicationAsyncHttpDownloader::Start end";
    return request;
}

void ApplicationAsyncHttpDownloader::run()
{
    NetworkManager = new QNetworkAccessManager(this);
    Given.acquire();
    if (Request == nullptr) {
        delete NetworkManager;
        return;
    }
    qCWarning(LogDownload) << "ApplicationAsyncHttpDownloader::run";
    if (StartDownload()) {
        QEventLoop loop;
        connect(this, SIGNAL(CloseThread()), &loop, SLOT(quit()));
        RestartTimer = std::make_unique<QTimer>();
        RestartTimer->setSingleShot(true);
        connect(RestartTimer.get(), &QTimer::timeout, this, [this] { RunRestart(); });
        // A silent server gives no signal in which an abort could be seen.
        QTimer abortWatch;
        connect(&abortWatch, &QTimer::timeout, this, [this] { HonourAbort(); });
        abortWatch.start(c_AbortWatchMilliseconds);
        loop.exec();
        qCWarning(LogDownload) << "ApplicationAsyncHttpDownloader::run end";
    } else {
        qCWarning(LogDownload) << "ApplicationAsyncHttpDownloader::run StartDownload() failed";
    }

    // In its own thread, and now: its sockets and its helper thread end here.
    RestartTimer.reset();
    Follower.reset();
    delete NetworkManager;
    NetworkManager = nullptr;
    Request->Reply = nullptr;
    Request->AbortAcknowledged = true;
    SinceEnd.start();
    FinishDispatcher(CleanUpClosure());
}

std::function<void()> ApplicationAsyncHttpDownloader::CleanUpClosure()
{
    return [this] {
        // The margin counts from the end of run(): a backlog of clean-ups pays it once.
        constexpr qint64 c_MarginMilliseconds = 100;
        qint64 const left = c_MarginMilliseconds - SinceEnd.elapsed();
        if (left > 0)
            QThread::msleep(static_cast<unsigned long>(left));
        exit(0);
        wait();
        delete this;
    };
}

/// \return false when the file cannot be opened
bool ApplicationAsyncHttpDownloader::BeginAttempt(QNetworkRequest& p_Request)
{
    QFile file(FilePath);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Append)) {
        qCWarning(LogDownload)
            << "ApplicationAsyncHttpDownloader::StartDownload Error can't open file" << FilePath
            << "for writting";
        return false;
    }
    qint64 const size = file.size();
    Current = {};
    Request->BytesOnDisk = 0;
    if (size == 0) {
        Follower.reset();
        Request->Continuable = true;
        HoldsErrorPage = false;
    }
    if (Resume && size > 0) {
        Request->BytesOnDisk = size;
        qCWarning(LogDownload)
            << "ApplicationAsyncHttpDownloader::StartDownload Resuming download at byte" << size
            << "for file" << FilePath;
        p_Request.setRawHeader("Range", "bytes=" + QByteArray::number(size) + "-");
        Request->CurrentBytes = size;
        Request->RateSampleBytes = size;
        Current.ResumePoint = size;
    }
    return true;
}

bool ApplicationAsyncHttpDownloader::StartDownload()
{
    qCWarning(LogDownload) << "ApplicationAsyncHttpDownloader::StartDownload";
    QNetworkRequest request(QUrl(Url, QUrl::TolerantMode));
    if (!BeginAttempt(request))
        return false;
    QNetworkReply* const reply = NetworkManager->get(request);
    reply->setReadBufferSize(c_ReadBufferBytes);
    connect(reply, SIGNAL(readyRead()), this, SLOT(HTTP_OnReadyRead()), Qt::DirectConnection);
    connect(reply, SIGNAL(metaDataChanged()), this, SLOT(HTTP_MedaDataChanged()),
            Qt::DirectConnection);
    connect(reply, SIGNAL(downloadProgress(qint64, qint64)), this,
            SLOT(HTTP_OnProgressUpdate(qint64, qint64)), Qt::DirectConnection);
    connect(reply, SIGNAL(finished()), this, SLOT(HTTP_DownloadFinished()), Qt::DirectConnection);
    connect(reply, SIGNAL(error(QNetworkReply::NetworkError)), this,
            SLOT(HTTP_OnError(QNetworkReply::NetworkError)), Qt::DirectConnection);
    Request->Reply = reply;
    qCWarning(LogDownload) << "ApplicationAsyncHttpDownloader::StartDownload end";
    return true;
}

void ApplicationAsyncHttpDownloader::HTTP_OnReadyRead()
{
    if (!IsFromCurrentReply())
        return;
    // The two pauses throttle the thread: blocks grow instead of becoming more.
    msleep(c_BlockPauseMilliseconds);
    QNetworkReply* const reply = Request->Reply;
    Append(*reply);
    if (RateClock::Elapsed(Request->RateTimer) >= c_RateSampleMilliseconds)
        SampleRate();
    Q_EMIT AsyncOnHTTPDownloadProgressUpdate(Request);
    if (Current.WriteFailed)
        Request->Restarting = false; // a restart would meet the same disk
    if (Request->Aborted || Current.WriteFailed)
        reply->abort();
    msleep(c_BlockPauseMilliseconds);
}

void ApplicationAsyncHttpDownloader::Append(QNetworkReply& p_Reply)
{
    constexpr std::size_t c_PieceBytes = 64UL * 1024;

    bool const successful = AnswerIsSuccess();
    // An error page behind the bytes of an earlier attempt would spoil them.
    bool const isKept = successful || Current.ResumePoint == 0;
    bool const rangeIgnored = Current.ResumePoint > 0 && StatusCode() != c_PartialContent;
    if (isKept) {
        HoldsErrorPage = HoldsErrorPage || !successful;
        if (HoldsErrorPage || rangeIgnored)
            Request->Continuable = false;
    }

    // Unbuffered, so that a full disk shows here and what stands in the file is known.
    QFile file(FilePath);
    bool const opened =
        isKept && file.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered);
    bool written = opened;
    // Taken as one array, what has piled up would be megabytes of new memory each time.
    std::array<char, c_PieceBytes> piece;
    for (qint64 read = 0; (read = p_Reply.read(piece.data(), piece.size())) > 0;) {
        Current.ReceivedBytes += read;
        Current.BroughtBytes |= successful;
        written = written && file.write(piece.data(), read) == read;
    }
    if (!isKept)
        return;
    // The end of an error page is awaited all the same: its error is still to be told.
    Current.WriteFailed = successful && !written;
    if (opened)
        Request->BytesOnDisk = file.size();
    FollowFile();
}

/// Has what stands in a large file hashed while the rest of it arrives.
void ApplicationAsyncHttpDownloader::FollowFile()
{
    constexpr qint64 c_Worthwhile = qint64{4} * 1024 * 1024; // is hashed in a moment at the end

    if (!Follower && Request->BytesOnDisk >= c_Worthwhile)
        Follower = std::make_unique<FollowingDigest>(FilePath);
    if (Follower)
        Follower->Follow(Request->BytesOnDisk);
}

void ApplicationAsyncHttpDownloader::SampleRate()
{
    qint64 const gained = Request->BytesOnDisk - Request->RateSampleBytes;
    Request->BytesPerSecond =
        RateClock::BytesPerSecond(gained, RateClock::Elapsed(Request->RateTimer));
    Request->RateSampleBytes = Request->BytesOnDisk;
    RateClock::Restart(Request->RateTimer);
}

void ApplicationAsyncHttpDownloader::HTTP_MedaDataChanged()
{
    if (!IsFromCurrentReply())
        return;
    QNetworkReply* const reply = Request->Reply;
    Request->ContentLength = reply->header(QNetworkRequest::ContentLengthHeader).toULongLong();
    if (Request->Aborted)
        reply->abort();
    else if (Current.Continuing && Current.ResumePoint > 0 && StatusCode() == 200)
        RefuseWholeFile();
}

void ApplicationAsyncHttpDownloader::HTTP_OnProgressUpdate(qint64 p_CurrentBytes,
                                                           qint64 p_TotalBytes)
{
    if (!IsFromCurrentReply())
        return;
    // 32 bits on purpose: hosts have drawn this figure for years, wrong above 2 GiB as it is.
    auto divisor = static_cast<qint32>(Request->BaseBytes + p_TotalBytes);
    if (divisor == 0)
        divisor = 1;
    auto const received = static_cast<quint64>(Request->BaseBytes + p_CurrentBytes);
    Request->Percent =
        static_cast<quint8>(received * 100 / static_cast<quint64>(static_cast<qint64>(divisor)));
    Request->CurrentBytes = Request->BaseBytes + p_CurrentBytes;
    Q_EMIT AsyncOnHTTPDownloadProgressUpdate(Request);
    if (Request->Aborted)
        Request->Reply->abort();
}

} // namespace Varnholt::Launcher
