#include "Host/Core/Module/TransferLedger.hpp"

#include "Launcher/Helper/Paths.hpp"

#include <QFile>
#include <QMutexLocker>

namespace Varnholt::Host {

namespace {

/// Whether the module, which has handled the completion, has not given the file its final name.
bool IsWrong(HTTP_DownloadFileRequest const& p_Request)
{
    QString const part = Launcher::Helper::Paths::PartFile({});
    return !p_Request.Aborted && p_Request.FilePath.endsWith(part) &&
           !QFile::exists(p_Request.FilePath.chopped(part.size()));
}

} // namespace

TransferLedger::TransferLedger(Launcher::Application& p_Application,
                               std::function<void(QString const&)> p_OnWrong)
    : OnWrong(std::move(p_OnWrong))
{
    // By name and at once: the object's class is the module's own, and the signal comes from the
    // download thread itself.
    connect(&p_Application, SIGNAL(OnHTTPDownloadRestarted(HTTP_DownloadFileRequest*)), this,
            SLOT(OnRestarted(HTTP_DownloadFileRequest*)), Qt::DirectConnection);
    connect(&p_Application, SIGNAL(OnHTTPDownloadProgressComplete(HTTP_DownloadFileRequest*)), this,
            SLOT(OnComplete(HTTP_DownloadFileRequest*)), Qt::DirectConnection);
    connect(&p_Application, SIGNAL(OnHTTPDownloadProgressComplete(HTTP_DownloadFileRequest*)), this,
            SLOT(OnHandled(HTTP_DownloadFileRequest*)), Qt::QueuedConnection);
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

bool TransferLedger::ComesNoFurther() const
{
    // A sound transfer may need two: one from where it stopped and, when the server refuses that,
    // one from the start.
    constexpr int c_TooMany = 3;

    QMutexLocker const lock(&Mutex);
    return FruitlessRestarts >= c_TooMany;
}

void TransferLedger::OnRestarted(HTTP_DownloadFileRequest* p_Request)
{
    QMutexLocker const lock(&Mutex);
    bool const hasGained = p_Request->BytesOnDisk != BytesAtRestart;
    FruitlessRestarts = hasGained ? 1 : FruitlessRestarts + 1;
    BytesAtRestart = p_Request->BytesOnDisk;
}

void TransferLedger::OnComplete(HTTP_DownloadFileRequest* p_Request)
{
    QMutexLocker const lock(&Mutex);
    FruitlessRestarts = 0;
    Ending.insert(p_Request);
    if (!p_Request->Aborted)
        ++Ended;
}

void TransferLedger::OnHandled(HTTP_DownloadFileRequest* p_Request)
{
    if (IsWrong(*p_Request))
        OnWrong(p_Request->Url);
    Q_EMIT Handled();
}

void TransferLedger::OnRetired(HTTP_DownloadFileRequest* p_Request)
{
    QMutexLocker const lock(&Mutex);
    Ending.erase(p_Request);
}

} // namespace Varnholt::Host
