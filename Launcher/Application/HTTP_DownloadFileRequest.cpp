#include "Launcher/Application/HTTP_DownloadFileRequest.hpp"

#include <QThread>

namespace Varnholt::Launcher {

void HTTP_DownloadFileRequest::Abort()
{
    constexpr unsigned long c_PollMilliseconds = 10;

    Aborted = true;
    while (!AbortAcknowledged)
        QThread::msleep(c_PollMilliseconds);
}

} // namespace Varnholt::Launcher
