#include "Tests/Endurance/TransferWatch.hpp"

#include <QMutexLocker>

#include <utility>

namespace Varnholt::TestSupport {

using Launcher::Application;

TransferWatch::TransferWatch(Application& p_Application)
{
    OnProgress = QObject::connect(&p_Application, &Application::OnHTTPDownloadProgressUpdate,
                                  [this](Request* p_Request) { Progressed(p_Request); });
    OnEnd = QObject::connect(&p_Application, &Application::OnHTTPDownloadProgressComplete,
                             [this](Request* p_Request) { Ended(p_Request); });
}

TransferWatch::~TransferWatch()
{
    QObject::disconnect(OnProgress);
    QObject::disconnect(OnEnd);
}

QStringList TransferWatch::TakeFaults()
{
    QMutexLocker const lock(&Mutex);
    return std::exchange(Faults, {});
}

void TransferWatch::Progressed(Request const* p_Request)
{
    QMutexLocker const lock(&Mutex);
    Request const*& writer = Writers[p_Request->FilePath];
    if (writer != nullptr && writer != p_Request)
        Faults += QStringLiteral("two transfers write ") + p_Request->FilePath;
    writer = p_Request;
}

void TransferWatch::Ended(Request const* p_Request)
{
    QMutexLocker const lock(&Mutex);
    auto const writer = Writers.find(p_Request->FilePath);
    if (writer != Writers.end() && *writer == p_Request)
        Writers.erase(writer);
}

} // namespace Varnholt::TestSupport
