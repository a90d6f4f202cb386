#pragma once

#include "Launcher/Application/FollowingDigest.hpp"
#include "Launcher/Application/HTTP_DownloadFileRequest.hpp"

#include <QElapsedTimer>
#include <QNetworkReply>
#include <QSemaphore>
#include <QString>
#include <QThread>
#include <QTimer>

#include <functional>
#include <memory>

class QNetworkAccessManager;

namespace Varnholt::Launcher {

/// Downloads one address into one file on a thread of its own.
///
/// \verbatim
///   Start()                                    caller's thread
///   ────────────────────────────────────────────────────────────
///   run()                                      download thread
///     StartDownload() ── cannot open ──────────────────┐
///        │                                             │
///        │◄──────────────────────────────────┐         │
///     HTTP_MedaDataChanged()                 │         │
///     HTTP_OnReadyRead(), HTTP_OnProgressUpdate()      │
///     HTTP_OnError()  may arm a restart      │         │
///        │                                   │         │
///     HTTP_DownloadFinished() ── restart ────┘         │
///        │                                             │
///     AsyncOnHTTPDownloadProgressComplete, CloseThread │
///        └──────────────┬──────────────────────────────┘
///     FinishDispatcher(clean-up)
///   ────────────────────────────────────────────────────────────
///   clean-up: waits for the thread, deletes it  host's worker thread
/// \endverbatim
///
/// An abort wins at every point: it is seen by each slot, by a timer of the download thread when
/// the server is silent, and in the pause before a restart.
class ApplicationAsyncHttpDownloader : public QThread {
    Q_OBJECT

public:
    ApplicationAsyncHttpDownloader();
    /// Deletes the record. The thread must have ended, or have been given no download.
    ~ApplicationAsyncHttpDownloader() override;

    /// Starts the thread ahead of `Start`, which then has less to wait for.
    void Prepare() { start(QThread::InheritPriority); }

    /// Starts the download. To be called once, after `ErrorReporter` and `FinishDispatcher` are set
    /// and the signals are connected.
    /// \return the record, owned by this object
    HTTP_DownloadFileRequest* Start(QString p_Url, QString p_Path, bool p_Resume);

Q_SIGNALS:
    // All emitted on the download thread.
    void CloseThread();
    void AsyncOnHTTPDownloadProgressUpdate(HTTP_DownloadFileRequest* p_Request);
    void AsyncOnHTTPDownloadProgressComplete(HTTP_DownloadFileRequest* p_Request);
    void AsyncOnHTTPDownloadRestarted(HTTP_DownloadFileRequest* p_Request);

public Q_SLOTS:
    // All called on the download thread by the reply of the current attempt.
    /// Called when the reply fails: decides between restart, report and nothing.
    void HTTP_OnError(QNetworkReply::NetworkError p_Error);
    /// Called when body bytes have arrived: appends them to the file. Ends the transfer when it
    /// cannot.
    void HTTP_OnReadyRead();
    /// Called when the headers have arrived.
    void HTTP_MedaDataChanged();
    /// Called as the body arrives; counts bytes of this attempt.
    void HTTP_OnProgressUpdate(qint64 p_CurrentBytes, qint64 p_TotalBytes);
    /// Called once at the end of every attempt: completes or restarts.
    void HTTP_DownloadFinished();

public:
    void (*ErrorReporter)(QString p_Message, bool p_Flag) = nullptr;
    /// Receives the clean-up closure at the end of `run()`; whoever runs it deletes this object.
    std::function<void(std::function<void()>)> FinishDispatcher;
    QNetworkAccessManager* NetworkManager = nullptr; ///< lives in `run()`
    HTTP_DownloadFileRequest* Request = nullptr;
    QString Url;
    QString FilePath;
    bool Resume = false;

protected:
    void run() override;

private:
    /// What is known of the current attempt.
    struct Attempt {
        qint64 ResumePoint = 0;    ///< bytes asked to be left out, 0: none asked
        bool Continuing = false;   ///< started by `ContinueInPlace()`
        bool BroughtBytes = false; ///< of a successful answer
        bool WriteFailed = false;  ///< a block of the file was lost: nothing may follow it
        qint64 ReceivedBytes = 0;  ///< of any answer
    };

    bool BeginAttempt(QNetworkRequest& p_Request);
    bool StartDownload();
    void Append(QNetworkReply& p_Reply);
    void FollowFile();
    void SampleRate();
    std::function<void()> CleanUpClosure();

    // ApplicationAsyncHttpDownloader_Restart.cpp
    void ArmRestart(std::function<void()> p_Action);
    void ContinueInPlace();
    void StartOver();
    void RefuseWholeFile();
    void RestartWhenDue();
    void RunRestart();
    void HonourAbort();
    void EndTransfer();
    bool IsFromCurrentReply() const;
    int StatusCode() const;
    bool AnswerIsSuccess() const;
    bool AttemptIsWhole() const; ///< everything that the answer promised has been written

    QSemaphore Given; ///< a download, or none in the end
    Attempt Current;
    bool HoldsErrorPage = false; ///< the destination starts with an error page
    int FruitlessRestarts = 0;   ///< in a row, without a byte of a successful answer
    int StartOvers = 0;
    std::unique_ptr<FollowingDigest> Follower; ///< of a file that is worth it
    std::unique_ptr<QTimer> RestartTimer;      ///< runs during the pause before a restart
    QElapsedTimer SinceEnd;                    ///< started at the end of `run()`
};

} // namespace Varnholt::Launcher
