#pragma once

#include <QString>

namespace Varnholt::Host {

/// How one fetch or size query ended.
struct FetchNote {
    QString Url;
    int Error = 0;  ///< QNetworkReply::NetworkError; 0 none
    int Status = 0; ///< HTTP status; 0 when no answer came
    bool TimedOut = false;

    /// A server was reached and its answer can be used.
    bool IsSuccess() const;
    /// No server answered, as opposed to one that refused.
    bool IsUnreachable() const;
    /// The cause in words, "HTTP status 404" or "connection refused".
    QString Cause() const;
};

} // namespace Varnholt::Host
