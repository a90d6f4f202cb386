#include "Tests/Gateway/DoorClient.hpp"

#include <QUrl>

#include <algorithm>
#include <limits>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

namespace Varnholt::TestSupport {

QByteArray DoorReply::Header(QByteArray const& p_Name) const
{
    for (auto const& [name, value] : Headers)
        if (name.toLower() == p_Name.toLower())
            return value;
    return {};
}

DoorClient::DoorClient(Sink p_Sink)
    : Take(std::move(p_Sink))
{
}

DoorClient::~DoorClient()
{
    Close();
}

bool DoorClient::Connect(QByteArray const& p_Url)
{
    QUrl const url = QUrl::fromEncoded(p_Url);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<quint16>(url.port(80)));
    inet_pton(AF_INET, qPrintable(url.host()), &address.sin_addr);
    timeval const patience{c_Patience / 1000, 0};
    Close();
    int const socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    setsockopt(socket, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof(patience));
    Socket = socket;
    IsUsable = ::connect(socket, reinterpret_cast<sockaddr*>(&address), sizeof(address)) == 0;
    if (IsAbandoned)
        Abandon();
    return IsUsable;
}

bool DoorClient::Send(QByteArray const& p_Bytes)
{
    return ::send(Socket, p_Bytes.constData(), static_cast<std::size_t>(p_Bytes.size()),
                  MSG_NOSIGNAL) == p_Bytes.size();
}

DoorReply DoorClient::Ask(DoorRequest const& p_Request)
{
    QUrl const url = QUrl::fromEncoded(p_Request.Url);
    if (!IsUsable && !Connect(p_Request.Url))
        return {};
    QByteArray const path = p_Request.Url.mid(p_Request.Url.indexOf('/', int(sizeof("http://"))));
    QByteArray head = p_Request.Method + ' ' +
                      (p_Request.Target.isEmpty() ? path : p_Request.Target) +
                      " HTTP/1.1\r\nHost: " + url.authority().toLatin1() + "\r\n";
    if (!p_Request.Range.isEmpty())
        head += "Range: " + p_Request.Range + "\r\n";
    if (!Send(head + "\r\n"))
        return {};
    DoorReply reply = ReadReply(p_Request.Method != "HEAD");
    IsUsable = reply.IsWhole && reply.Header("Connection").toLower() != "close";
    return reply;
}

void DoorClient::Abandon()
{
    IsAbandoned = true;
    if (Socket < 0)
        return;
    // As the system does it for a program that was ended before it has read everything.
    linger const atOnce{1, 0};
    setsockopt(Socket, SOL_SOCKET, SO_LINGER, &atOnce, sizeof(atOnce));
    // Not closed: the thread that reads uses its number.
    ::shutdown(Socket, SHUT_RDWR);
}

DoorReply DoorClient::ReadReply(bool p_HasBody)
{
    DoorReply reply;
    if (ReadHead(reply))
        reply.IsWhole = !p_HasBody || ReadBody(reply);
    return reply;
}

bool DoorClient::ReadHead(DoorReply& p_Reply)
{
    QByteArray line;
    if (!ReadLine(line))
        return false;
    p_Reply.Status = line.split(' ').value(1).toInt();
    while (ReadLine(line)) {
        if (line.isEmpty())
            return true;
        int const colon = line.indexOf(':');
        p_Reply.Headers.emplace_back(line.left(colon), line.mid(colon + 1).trimmed());
    }
    return false;
}

bool DoorClient::ReadBody(DoorReply& p_Reply)
{
    if (p_Reply.Header("Transfer-Encoding") == "chunked")
        return ReadChunks(p_Reply);
    QByteArray const length = p_Reply.Header("Content-Length");
    if (!length.isNull())
        return ReadBytes(p_Reply, length.toLongLong());
    ReadBytes(p_Reply, std::numeric_limits<qint64>::max());
    return true;
}

bool DoorClient::ReadChunks(DoorReply& p_Reply)
{
    QByteArray line;
    while (ReadLine(line)) {
        qint64 const bytes = line.toLongLong(nullptr, 16);
        if (!ReadBytes(p_Reply, bytes) || !ReadLine(line))
            return false;
        if (bytes == 0)
            return true;
    }
    return false;
}

bool DoorClient::ReadBytes(DoorReply& p_Reply, qint64 p_Bytes)
{
    while (p_Bytes > 0) {
        if (Input.isEmpty() && !ReadMore())
            return false;
        QByteArray const bytes = Input.left(int(std::min<qint64>(p_Bytes, Input.size())));
        Input.remove(0, bytes.size());
        p_Bytes -= bytes.size();
        if (Take)
            Take(bytes);
        else
            p_Reply.Body += bytes;
    }
    return true;
}

bool DoorClient::ReadLine(QByteArray& p_Line)
{
    int end = 0;
    while ((end = Input.indexOf("\r\n")) < 0)
        if (!ReadMore())
            return false;
    p_Line = Input.left(end);
    Input.remove(0, end + 2);
    return true;
}

bool DoorClient::ReadMore()
{
    constexpr int c_Piece = 256 * 1024;

    QByteArray piece(c_Piece, Qt::Uninitialized);
    ssize_t const got = ::recv(Socket, piece.data(), c_Piece, 0);
    if (got <= 0)
        return false;
    Input.append(piece.constData(), int(got));
    return true;
}

void DoorClient::Close()
{
    int const socket = Socket.exchange(-1);
    if (socket >= 0)
        ::close(socket);
    Input.clear();
}

DoorReply AskDoor(DoorRequest const& p_Request)
{
    return DoorClient().Ask(p_Request);
}

} // namespace Varnholt::TestSupport
