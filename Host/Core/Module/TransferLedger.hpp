#pragma once

#include "Launcher/Application/Application.hpp"

#include <QMutex>
#include <QObject>
#include <QString>

#include <functional>
#include <set>

namespace Varnholt::Host {

using Launcher::HTTP_DownloadFileRequest; // the slot must be spelled as the signal is

/// Knows the downloads that have ended but whose threads have not been given to the worker yet: a
/// run is over, and the module may be deleted, only when there are none. Lives on the module
/// thread.
class TransferLedger : public QObject {
    Q_OBJECT

public:
    /// \param p_OnWrong called on the module thread with the address of a file that has arrived and
    ///        was not put in place: its bytes are not those that the build announces
    TransferLedger(Launcher::Application& p_Application,
                   std::function<void(QString const&)> p_OnWrong);

    bool IsEmpty() const;
    /// Transfers that have ended since the start; those that were stopped do not count.
    quint32 Count() const;
    /// Whether the transfer in flight has been restarted several times without a byte more: the
    /// module would restart it for ever.
    bool ComesNoFurther() const;

Q_SIGNALS:
    /// The module has handled the end of a transfer and wants the next one.
    void Handled();

private Q_SLOTS:
    /// These two are called on the download thread.
    void OnRestarted(HTTP_DownloadFileRequest* p_Request);
    void OnComplete(HTTP_DownloadFileRequest* p_Request);
    /// Called behind the module's own handling of the completion.
    void OnHandled(HTTP_DownloadFileRequest* p_Request);

private:
    void OnRetired(HTTP_DownloadFileRequest* p_Request);

    std::function<void(QString const&)> OnWrong;
    mutable QMutex Mutex;
    std::set<HTTP_DownloadFileRequest*> Ending;
    quint32 Ended = 0;
    int FruitlessRestarts = 0; ///< of the transfer in flight, in a row
    qint64 BytesAtRestart = 0;
};

} // namespace Varnholt::Host
