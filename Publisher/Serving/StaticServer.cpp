#include "Publisher/Serving/StaticServer.hpp"

#include "Publisher/Failure.hpp"
#include "Publisher/Serving/ByteRange.hpp"
#include "Publisher/Serving/StaticTree.hpp"

#include <QFile>
#include <QFileInfo>

#include <httplib.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <vector>

namespace Varnholt::Publisher {

namespace {

constexpr std::size_t c_BlockBytes = 256UL * 1024;
constexpr int c_WriteTimeoutSeconds = 60; ///< a client may rest that long in the middle of a file
constexpr std::size_t c_RequestsPerConnection = 10000;

std::string ContentType(QString const& p_File)
{
    if (p_File.endsWith(QStringLiteral(".json")))
        return "application/json";
    if (p_File.endsWith(QStringLiteral(".info")))
        return "text/plain; charset=utf-8";
    return "application/octet-stream";
}

/// Text from a request, fit for a log on a terminal.
QString Printable(std::string const& p_Text)
{
    QString text = QString::fromLatin1(p_Text.data(), static_cast<int>(p_Text.size()));
    for (QChar& character : text) {
        if (character.unicode() <= 0x20 || character.unicode() >= 0x7f)
            character = QLatin1Char('?');
    }
    return text.isEmpty() ? QStringLiteral("-") : text;
}

/// Hands out a part of an open file block by block.
class FilePart {
public:
    FilePart(std::unique_ptr<QFile> p_File, ByteRange const& p_Range)
        : File(std::move(p_File))
        , Remaining(p_Range.Length)
    {
        File->seek(p_Range.Offset);
    }

    bool WriteNext(httplib::DataSink& p_Sink)
    {
        Block.resize(std::min(c_BlockBytes, static_cast<std::size_t>(Remaining)));
        qint64 const bytes = File->read(Block.data(), static_cast<qint64>(Block.size()));
        if (bytes <= 0 || !p_Sink.write(Block.data(), static_cast<std::size_t>(bytes)))
            return false;
        Remaining -= bytes;
        if (Remaining == 0)
            p_Sink.done();
        return true;
    }

private:
    std::unique_ptr<QFile> File;
    qint64 Remaining;
    std::vector<char> Block;
};

} // namespace

class StaticServer::Implementation {
public:
    Implementation(QString const& p_Root, RequestLog p_Log)
        : Tree(p_Root)
        , Log(std::move(p_Log))
    {
        SetUpConnections();
        SetUpAnswers();
    }

    httplib::Server Server;

private:
    void SetUpConnections();
    void SetUpAnswers();
    void Answer(httplib::Request const& p_Request, httplib::Response& p_Response) const;
    void WriteLog(httplib::Request const& p_Request, httplib::Response const& p_Response) const;

    StaticTree Tree;
    RequestLog Log;
};

void StaticServer::Implementation::SetUpConnections()
{
    // The library would let two servers share a port, and each would get half of the requests.
    Server.set_socket_options([](socket_t p_Socket) {
        int const on = 1;
        setsockopt(p_Socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof(on));
    });
    Server.set_write_timeout(c_WriteTimeoutSeconds);
    Server.set_keep_alive_max_count(c_RequestsPerConnection);
    Server.set_tcp_nodelay(true);
}

void StaticServer::Implementation::SetUpAnswers()
{
    using HandlerResponse = httplib::Server::HandlerResponse;
    Server.set_pre_routing_handler(
        [this](httplib::Request const& p_Request, httplib::Response& p_Response) {
            if (p_Request.method == "GET" || p_Request.method == "HEAD") {
                Answer(p_Request, p_Response);
            } else {
                p_Response.status = 405;
                p_Response.set_header("Allow", "GET, HEAD");
                p_Response.set_header("Connection", "close");
            }
            return HandlerResponse::Handled;
        });
    // The library announces the parts of several ranges, but the whole file is what it gets.
    Server.set_post_routing_handler(
        [](httplib::Request const& p_Request, httplib::Response& p_Response) {
            if (p_Request.ranges.size() > 1 && p_Response.status == 200) {
                p_Response.headers.erase("Content-Type");
                p_Response.set_header("Content-Type",
                                      ContentType(QString::fromStdString(p_Request.path)));
            }
        });
    if (Log) {
        Server.set_logger(
            [this](httplib::Request const& p_Request, httplib::Response const& p_Response) {
                WriteLog(p_Request, p_Response);
            });
    }
}

/// The library's own answers read a whole file into memory and do not cut ranges to the file's
/// size. Here the library is not told how long the content is, so that it leaves both to this
/// function.
void StaticServer::Implementation::Answer(httplib::Request const& p_Request,
                                          httplib::Response& p_Response) const
{
    QString const path = Tree.FileOf(QByteArray::fromStdString(p_Request.path));
    auto file = std::make_unique<QFile>(path);
    if (path.isNull() || !file->open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        p_Response.status = 404;
        return;
    }
    qint64 const size = file->size();
    std::string const total = std::to_string(size);
    p_Response.set_header("Accept-Ranges", "bytes");
    p_Response.status = 200;
    ByteRange range{0, size};
    // A request for several ranges gets the whole file, as servers are free to do.
    if (p_Request.ranges.size() == 1) {
        auto const& wanted = p_Request.ranges.front();
        std::optional<ByteRange> const found = ByteRange::Of(wanted.first, wanted.second, size);
        if (!found) {
            p_Response.status = 416;
            p_Response.set_header("Content-Range", "bytes */" + total);
            return;
        }
        range = *found;
        p_Response.status = 206;
        p_Response.set_header("Content-Range", "bytes " + std::to_string(range.Offset) + "-" +
                                                   std::to_string(range.Offset + range.Length - 1) +
                                                   "/" + total);
    }
    p_Response.set_header("Content-Length", std::to_string(range.Length));
    if (range.Length == 0) {
        p_Response.set_header("Content-Type", ContentType(path));
        return;
    }
    auto const part = std::make_shared<FilePart>(std::move(file), range);
    p_Response.set_content_provider(
        ContentType(path),
        [part](std::size_t, httplib::DataSink& p_Sink) { return part->WriteNext(p_Sink); });
}

void StaticServer::Implementation::WriteLog(httplib::Request const& p_Request,
                                            httplib::Response const& p_Response) const
{
    Log(QStringLiteral("%1 %2 %3 %4")
            .arg(Printable(p_Request.method), Printable(p_Request.target),
                 Printable(p_Request.get_header_value("Range")),
                 QString::number(p_Response.status)));
}

StaticServer::StaticServer(QString const& p_Root, RequestLog p_Log)
    : Details(std::make_unique<Implementation>(p_Root, std::move(p_Log)))
{
}

StaticServer::~StaticServer() = default;

QString StaticServer::Listen(QString const& p_Address, int p_Port)
{
    std::string const address = p_Address.toStdString();
    int port = p_Port;
    errno = 0;
    if (p_Port == 0)
        port = Details->Server.bind_to_any_port(address);
    else if (!Details->Server.bind_to_port(address, p_Port))
        port = -1;
    if (port < 0) {
        int const error = errno;
        QString const cause = error == 0 ? QStringLiteral("the address is not known")
                                         : QString::fromLocal8Bit(std::strerror(error));
        throw Failure(QStringLiteral("cannot listen on %1 port %2: %3")
                          .arg(p_Address, QString::number(p_Port), cause));
    }
    bool const isIpv6 = p_Address.contains(QLatin1Char(':'));
    return QStringLiteral("http://%1:%2/")
        .arg(isIpv6 ? QStringLiteral("[%1]").arg(p_Address) : p_Address)
        .arg(port);
}

void StaticServer::Run()
{
    Details->Server.listen_after_bind();
}

void StaticServer::Stop()
{
    Details->Server.stop();
}

} // namespace Varnholt::Publisher
