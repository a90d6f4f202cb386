#include "Host/Core/FetchNote.hpp"

#include <QNetworkReply>

namespace Varnholt::Host {

namespace {

/// The status that stands behind an error of Qt's, 0 when several do.
int StatusOf(int p_Error)
{
    switch (p_Error) {
    case QNetworkReply::AuthenticationRequiredError:
        return 401;
    case QNetworkReply::ContentAccessDenied:
        return 403;
    case QNetworkReply::ContentNotFoundError:
        return 404;
    case QNetworkReply::ContentOperationNotPermittedError:
        return 405;
    case QNetworkReply::ContentConflictError:
        return 409;
    case QNetworkReply::ContentGoneError:
        return 410;
    case QNetworkReply::InternalServerError:
        return 500;
    case QNetworkReply::OperationNotImplementedError:
        return 501;
    case QNetworkReply::ServiceUnavailableError:
        return 503;
    default:
        return 0;
    }
}

} // namespace

bool FetchNote::IsSuccess() const
{
    // A size query is cut short on purpose once its headers are there.
    bool const complete =
        Error == QNetworkReply::NoError || Error == QNetworkReply::OperationCanceledError;
    return complete && !TimedOut && Status >= 200 && Status < 300;
}

bool FetchNote::IsUnreachable() const
{
    // Above these stand the errors that a server's answer leads to.
    constexpr int c_FirstAnswerError = QNetworkReply::ContentAccessDenied;
    return !IsSuccess() && Status == 0 && Error < c_FirstAnswerError;
}

QString FetchNote::Cause() const
{
    if (TimedOut)
        return QStringLiteral("no answer in time");
    int const status = Status != 0 ? Status : StatusOf(Error);
    if (status != 0 && (status < 200 || status >= 300))
        return QStringLiteral("HTTP status %1").arg(status);
    switch (Error) {
    case QNetworkReply::ConnectionRefusedError:
        return QStringLiteral("connection refused");
    case QNetworkReply::RemoteHostClosedError:
    case QNetworkReply::OperationCanceledError: // by the module, which answers a closed one so
        return QStringLiteral("connection closed before the end");
    case QNetworkReply::HostNotFoundError:
        return QStringLiteral("host not found");
    case QNetworkReply::TimeoutError:
        return QStringLiteral("connection timed out");
    case QNetworkReply::ProxyConnectionRefusedError:
    case QNetworkReply::ProxyConnectionClosedError:
    case QNetworkReply::ProxyNotFoundError:
    case QNetworkReply::ProxyTimeoutError:
        return QStringLiteral("the proxy cannot be reached");
    case QNetworkReply::ProtocolUnknownError:
    case QNetworkReply::ProtocolInvalidOperationError:
        return QStringLiteral("not an http address");
    default:
        return QStringLiteral("network error %1").arg(Error);
    }
}

} // namespace Varnholt::Host
