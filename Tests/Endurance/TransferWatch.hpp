#pragma once

#include "Launcher/Application/Application.hpp"

#include <QHash>
#include <QMutex>
#include <QString>
#include <QStringList>

namespace Varnholt::TestSupport {

/// Watches every transfer of a module on its own thread: no two of them may write the same file.
class TransferWatch {
public:
    explicit TransferWatch(Launcher::Application& p_Application);
    ~TransferWatch();
    TransferWatch(TransferWatch const&) = delete;
    TransferWatch& operator=(TransferWatch const&) = delete;

    /// What went wrong since the last call.
    QStringList TakeFaults();

private:
    using Request = Launcher::HTTP_DownloadFileRequest;

    void Progressed(Request const* p_Request);
    void Ended(Request const* p_Request);

    QMutex Mutex;
    QHash<QString, Request const*> Writers; ///< by file, from its first bytes to its completion
    QStringList Faults;
    QMetaObject::Connection OnProgress;
    QMetaObject::Connection OnEnd;
};

} // namespace Varnholt::TestSupport
