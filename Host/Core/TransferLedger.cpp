#include "Host/Core/TransferLedger.hpp"

#include <QFile>
#include <QMutexLocker>
#include <QUrl>

#include <utility>

namespace Varnholt::Host {

TransferLedger::TransferLedger(Launcher::Application& p_Application)
{
    // By name and at once: the object's class is the module's own, and the signal comes from the
    // download thread itself.
    connect(&p_Application, SIGNAL(OnHTTPDownloadProgressComplete(HTTP_DownloadFileRequest*)), this,
            SLOT(OnComplete(HTTP_DownloadFileRequest*)), Qt::DirectConnection);
    connect(&p_Application, SIGNAL(OnHTTPDownloadRestarted(HTTP_DownloadFileRequest*)), this,
            SLOT(OnRestarted()), Qt::DirectConnection);
    p_Application.OnDownloadRetired =
        [this, previous = p_Application.OnDownloadRetired](HTTP_DownloadFileRequest* p_Request) {
            if (previous)
                previous(p_Request);
            OnRetired(p_Request);
        };
}

bool TransferLedger::IsEmpty() const
{
    QMutexLocker const lock(&Mutex);
    return Ending.empty();
}

quint32 TransferLedger::Count() const
{
    QMutexLocker const lock(&Mutex);
    return Ended;
}

quint32 TransferLedger::Restarts() const
{
    QMutexLocker const lock(&Mutex);
    return Restarted;
}

QSet<QString> TransferLedger::TakeSuspects()
{
    QMutexLocker const lock(&Mutex);
    return std::exchange(Suspects, {});
}

void TransferLedger::OnComplete(HTTP_DownloadFileRequest* p_Request)
{
    QMutexLocker const lock(&Mutex);
    Ending.insert(p_Request);
    ++Ended;
}

void TransferLedger::OnRestarted()
{
    QMutexLocker const lock(&Mutex);
    ++Restarted;
}

void TransferLedger::OnRetired(HTTP_DownloadFileRequest* p_Request)
{
    // Its completion was handled before: what is as announced has got its final name.
    QString const part = QStringLiteral(".part");
    bool const isInPlace = !p_Request->FilePath.endsWith(part) ||
                           QFile::exists(p_Request->FilePath.chopped(part.size()));
    QMutexLocker const lock(&Mutex);
    if (!isInPlace && !p_Request->Aborted)
        Suspects += QUrl(p_Request->Url).authority();
    Ending.erase(p_Request);
}

} // namespace Varnholt::Host
