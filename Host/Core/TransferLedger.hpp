#pragma once

#include "Launcher/Application/Application.hpp"

#include <QMutex>
#include <QObject>
#include <QSet>
#include <QString>

#include <set>

namespace Varnholt::Host {

using Launcher::HTTP_DownloadFileRequest; // the slot must be spelled as the signal is

/// Knows the downloads that have ended but whose threads have not been given to the worker yet: a
/// run is over, and the module may be deleted, only when there are none. Lives on the module
/// thread.
class TransferLedger : public QObject {
    Q_OBJECT

public:
    explicit TransferLedger(Launcher::Application& p_Application);

    bool IsEmpty() const;
    /// Transfers that have ended since the start.
    quint32 Count() const;
    /// How often, since the start, a transfer was begun anew by itself.
    quint32 Restarts() const;
    /// Hosts, with port, that since the last call have given a file that was not put in place.
    QSet<QString> TakeSuspects();

private Q_SLOTS:
    /// Called on the download thread.
    void OnComplete(HTTP_DownloadFileRequest* p_Request);
    void OnRestarted();

private:
    void OnRetired(HTTP_DownloadFileRequest* p_Request);

    mutable QMutex Mutex;
    std::set<HTTP_DownloadFileRequest*> Ending;
    QSet<QString> Suspects;
    quint32 Ended = 0;
    quint32 Restarted = 0;
};

} // namespace Varnholt::Host
