#pragma once

#include "Launcher/Application/FollowingDigest.hpp"

#include <QMetaType>
#include <QString>
#include <QTime>

#include <atomic>
#include <functional>
#include <optional>

class QNetworkReply;

namespace Varnholt::Launcher {

/// The record of one file download. Owned by its downloader thread; the pointer that
/// `Application::DownloadFile` returns is valid until the application thread has handled everything
/// that the download posted to it, its completion last.
///
/// The counters are written by the download thread and may be read elsewhere at any time: they are
/// advisory until the completion arrives.
struct HTTP_DownloadFileRequest {
    QString Url;
    QString FilePath;               ///< local destination
    QNetworkReply* Reply = nullptr; ///< current attempt; touched by the download thread only
    QTime RateTimer;                ///< start of the current rate sample
    qint64 RateSampleBytes = 0;     ///< `BytesOnDisk` at the start of the current rate sample
    qint64 BytesPerSecond = 0;      ///< last measured rate
    quint8 Percent = 0;             ///< truncated to 8 bits
    qint64 CurrentBytes = 0;        ///< bytes counted as received in this attempt
    qint64 BaseBytes = 0;           ///< added to received and total bytes
    quint64 ContentLength = 0;      ///< of the current reply, bytes
    qint64 BytesOnDisk = 0;         ///< size of the destination after the last write
    std::atomic<bool> Aborted{false};
    bool Restarting = false; ///< run `RestartAction` at the end of the reply instead of completing
    bool Resume = false;     ///< continue what lies at the destination
    std::function<void()> RestartAction = [] {};
    std::atomic<bool> AbortAcknowledged{false}; ///< the transfer has ended; `Abort()` waits for it
    /// The destination holds nothing but the file's leading bytes, so that another attempt may
    /// continue it. False once a transfer has ended as complete or has written anything else.
    bool Continuable = true;
    /// What stands at the destination, when a large transfer has ended as complete.
    std::optional<FollowingDigest::Result> Digest;

    /// Stops the transfer and returns when it has ended, within about 100 ms whatever the server
    /// does; at once when it has ended already. Any thread but the download thread, as long as the
    /// record is valid. The completion is posted before this returns.
    void Abort();
};

} // namespace Varnholt::Launcher

Q_DECLARE_METATYPE(Varnholt::Launcher::HTTP_DownloadFileRequest*)
