#include "Tests/Publisher/ServingThread.hpp"

#include <QTcpSocket>

#include <chrono>

namespace Varnholt::TestSupport {

namespace {

constexpr int c_WaitMilliseconds = 30000;

} // namespace

ServingThread::ServingThread(QString const& p_Root)
    : Server(p_Root,
             [this](QString const& p_Line) {
                 QMutexLocker const lock(&Mutex);
                 Lines += p_Line;
             })
    , Address(Server.Listen(QStringLiteral("127.0.0.1"), 0))
    , Running(std::async(std::launch::async, [this] { Server.Run(); }))
{
}

ServingThread::~ServingThread()
{
    // A stop before the server has begun is without effect.
    do
        Server.Stop();
    while (Running.wait_for(std::chrono::milliseconds(10)) != std::future_status::ready);
}

QStringList ServingThread::Log()
{
    QMutexLocker const lock(&Mutex);
    return Lines;
}

QByteArray HttpReply::Header(QByteArray const& p_Name) const
{
    for (QByteArray const& line : Headers.split('\n')) {
        if (line.toLower().startsWith(p_Name.toLower() + ':'))
            return line.mid(p_Name.size() + 1).trimmed();
    }
    return {};
}

HttpReply Ask(quint16 p_Port, QByteArray const& p_Request, QByteArray const& p_Headers)
{
    QTcpSocket socket;
    socket.connectToHost(QStringLiteral("127.0.0.1"), p_Port);
    if (!socket.waitForConnected(c_WaitMilliseconds))
        return {};
    socket.write(p_Request + " HTTP/1.1\r\nHost: a\r\nConnection: close\r\n" + p_Headers + "\r\n");
    QByteArray bytes;
    while (socket.state() == QTcpSocket::ConnectedState || socket.bytesAvailable() > 0) {
        if (socket.bytesAvailable() == 0 && !socket.waitForReadyRead(c_WaitMilliseconds))
            break;
        bytes += socket.readAll();
    }
    if (socket.error() != QTcpSocket::RemoteHostClosedError)
        return {};
    HttpReply reply;
    int const end = bytes.indexOf("\r\n\r\n");
    reply.Status = bytes.split(' ').value(1).toInt();
    reply.Headers = bytes.left(end);
    reply.Body = bytes.mid(end + 4);
    return reply;
}

HttpReply AskRange(quint16 p_Port, QByteArray const& p_Request, QByteArray const& p_Range)
{
    return Ask(p_Port, p_Request, "Range: " + p_Range + "\r\n");
}

} // namespace Varnholt::TestSupport
