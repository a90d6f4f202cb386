#pragma once

#include "Publisher/Serving/StaticServer.hpp"

#include <QByteArray>
#include <QMutex>
#include <QString>
#include <QStringList>
#include <QUrl>

#include <future>

namespace Varnholt::TestSupport {

/// A server at work on a free port as long as it lives.
class ServingThread {
public:
    explicit ServingThread(QString const& p_Root);
    ~ServingThread();
    ServingThread(ServingThread const&) = delete;
    ServingThread& operator=(ServingThread const&) = delete;

    quint16 Port() const { return static_cast<quint16>(Address.port()); }
    /// The lines that it has logged.
    QStringList Log();

private:
    QMutex Mutex; ///< of `Lines`
    QStringList Lines;
    Publisher::StaticServer Server;
    QUrl Address;
    std::future<void> Running;
};

/// What a server has answered.
struct HttpReply {
    int Status = 0; ///< 0: no answer
    QByteArray Headers;
    QByteArray Body;

    /// The value of a header, null without one.
    QByteArray Header(QByteArray const& p_Name) const;
};

/// Sends a request exactly as given on a connection of its own and reads until the server closes
/// it. The request's headers get "Connection: close".
/// \param p_Request method and path, "GET /a"
HttpReply Ask(quint16 p_Port, QByteArray const& p_Request, QByteArray const& p_Headers = {});

/// Asks for a range, "bytes=0-1".
HttpReply AskRange(quint16 p_Port, QByteArray const& p_Request, QByteArray const& p_Range);

} // namespace Varnholt::TestSupport
