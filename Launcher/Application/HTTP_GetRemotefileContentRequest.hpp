#pragma once

#include <QByteArray>
#include <QString>

#include <functional>

class QNetworkReply;

namespace Varnholt::Launcher {

/// One fetch of a small file into memory. Owned by the application; lives until `OnContent` has
/// returned.
struct HTTP_GetRemotefileContentRequest {
    QString Url;
    std::function<void(QString, QByteArray*)> OnContent; ///< called once, whatever the outcome
    QNetworkReply* Reply = nullptr;                      ///< valid while `OnContent` runs
    QByteArray Data;                                     ///< body bytes received so far
};

} // namespace Varnholt::Launcher
