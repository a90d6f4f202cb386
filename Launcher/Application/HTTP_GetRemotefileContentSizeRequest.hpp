#pragma once

#include <QString>

#include <functional>

class QNetworkReply;

namespace Varnholt::Launcher {

/// One query for a remote file's size. Owned by the application; lives until its headers arrive,
/// or, when they never do, until the application is destroyed.
struct HTTP_GetRemotefileContentSizeRequest {
    QString Url;
    std::function<void(QString, unsigned long long)> OnSize; ///< bytes; 0 when the server is silent
    QNetworkReply* Reply = nullptr;
};

} // namespace Varnholt::Launcher
