#include "Host/Gateway/DoorServer.hpp"
#include "Host/Gateway/HttpStatus.hpp"

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <random>

namespace Varnholt::Gateway {

using namespace HttpStatus;

namespace {

constexpr char c_Loopback[] = "127.0.0.1";
constexpr char c_ContentType[] = "application/octet-stream";

std::string NewSecret()
{
    constexpr int c_Words = 4;
    constexpr char c_Digits[] = "0123456789abcdef";

    std::random_device random;
    std::string secret;
    for (int i = 0; i < c_Words; ++i)
        for (unsigned word = random(), digit = 0; digit < 2 * sizeof(word); ++digit, word >>= 4U)
            secret += c_Digits[word & 0xfU];
    return secret;
}

/// Whether a decoded path has no empty, "." or ".." elements. A backslash separates elements too:
/// some servers take it so.
bool IsFilePath(std::string p_Path)
{
    std::replace(p_Path.begin(), p_Path.end(), '\\', '/');
    std::size_t begin = 0;
    for (;;) {
        std::size_t const end = p_Path.find('/', begin);
        std::string const element = p_Path.substr(begin, end - begin);
        if (element.empty() || element == "." || element == "..")
            return false;
        if (end == std::string::npos)
            return true;
        begin = end + 1;
    }
}

/// Where a request for the rest of a file begins: "bytes=300-". Anything else gets the whole.
std::optional<std::uint64_t> OffsetOf(httplib::Request const& p_Request)
{
    constexpr std::size_t c_MostDigits = 18;

    std::string const range = p_Request.get_header_value("Range");
    std::string const before = "bytes=";
    if (range.rfind(before, 0) != 0 || range.size() < before.size() + 2 || range.back() != '-')
        return std::nullopt;
    std::string const digits = range.substr(before.size(), range.size() - before.size() - 1);
    bool const isNumber = digits.size() <= c_MostDigits &&
                          digits.find_first_not_of("0123456789") == std::string::npos;
    return isNumber ? std::make_optional<std::uint64_t>(std::strtoull(digits.c_str(), nullptr, 10))
                    : std::nullopt;
}

/// Hands a client what has arrived. \return false when its connection is to be closed
bool HandOn(Exchange& p_Source, Exchange::Reader& p_Reader, httplib::DataSink& p_Sink)
{
    FileContent::Bytes bytes;
    switch (p_Source.Next(p_Reader, bytes)) {
    case Exchange::Given::Bytes:
        return p_Sink.write(bytes.Data, bytes.Count);
    case Exchange::Given::Nothing:
        return p_Sink.is_writable(); // no more once the client is gone
    case Exchange::Given::End:
        p_Sink.done();
        return true;
    default:
        return false;
    }
}

} // namespace

DoorServer::DoorServer(Exchange& p_Exchange)
    : Source(p_Exchange)
    , Secret(NewSecret())
{
    constexpr int c_Clients = 32;
    constexpr int c_WriteSeconds = 24 * 60 * 60; // a client may rest for as long as it likes
    constexpr std::size_t c_RequestsPerConnection = 1'000'000;

    // The library would let two servers share a port, and each would get half of the requests.
    Server.set_socket_options([](socket_t p_Socket) {
        int const on = 1;
        setsockopt(p_Socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof(on));
    });
    Server.new_task_queue = [] { return new httplib::ThreadPool(c_Clients); };
    Server.set_write_timeout(c_WriteSeconds);
    Server.set_keep_alive_max_count(c_RequestsPerConnection);
    Server.set_tcp_nodelay(true);
    Server.set_pre_routing_handler(
        [this](httplib::Request const& p_Request, httplib::Response& p_Response) {
            Answer(p_Request, p_Response);
            return httplib::Server::HandlerResponse::Handled;
        });
    // Qt reads heads byte by byte, one system call each: short heads make small files faster.
    Server.set_post_routing_handler([](httplib::Request const&, httplib::Response& p_Response) {
        for (char const* const header : {"Accept-Ranges", "Content-Type", "Keep-Alive"})
            p_Response.headers.erase(header);
    });
}

DoorServer::~DoorServer()
{
    Server.stop();
    if (Listener.joinable())
        Listener.join();
}

bool DoorServer::Listen()
{
    Port = Server.bind_to_any_port(c_Loopback);
    if (Port < 0)
        return false;
    Listener = std::thread([this] { Server.listen_after_bind(); });
    // The library forgets a stop that comes before it listens.
    while (!Server.is_running())
        std::this_thread::yield();
    return true;
}

std::string DoorServer::Name() const
{
    return std::string(c_Loopback) + ':' + std::to_string(Port) + '/' + Secret;
}

void DoorServer::Answer(httplib::Request const& p_Request, httplib::Response& p_Response)
{
    if (p_Request.method != "GET" && p_Request.method != "HEAD") {
        p_Response.status = c_NotAllowed;
        p_Response.set_header("Allow", "GET, HEAD");
        p_Response.set_header("Connection", "close");
        return;
    }
    std::string const own = '/' + Secret + '/';
    std::string const& target = p_Request.target;
    std::string const key = target.rfind(own, 0) == 0 ? target.substr(own.size()) : std::string();
    bool const isDefault = key.rfind("d/", 0) == 0;
    std::string const path = isDefault || key.rfind("m/", 0) == 0 ? key.substr(2) : std::string();
    bool const isFile = !path.empty() && IsFilePath(p_Request.path.substr(1));
    if (isFile && isDefault && Document::IsOne(path))
        AnswerDocument(path, p_Response);
    else if (isFile && path.find('/') != std::string::npos)
        AnswerFile(path, isDefault, p_Request, p_Response);
    else
        p_Response.status = c_NotFound;
}

void DoorServer::AnswerDocument(std::string const& p_Path, httplib::Response& p_Response)
{
    Exchange::DocumentAnswer const answer = Source.FetchDocument(p_Path);
    p_Response.status = answer.Status;
    if (!answer.Body || answer.Body->empty())
        return p_Response.set_content(std::string(), c_ContentType);
    p_Response.set_content_provider(
        answer.Body->size(), c_ContentType,
        [body = answer.Body](std::size_t p_Offset, std::size_t p_Count, httplib::DataSink& p_Sink) {
            return p_Sink.write(body->data() + p_Offset, p_Count);
        });
}

/// Writes the length by hand: the library would cut ranges by a size of its own.
void DoorServer::AnswerFile(std::string const& p_Path, bool p_OfDefaultServer,
                            httplib::Request const& p_Request, httplib::Response& p_Response)
{
    Exchange::FileHead const head = Source.FetchHead(p_Path, p_OfDefaultServer);
    p_Response.status = head.Status;
    if (head.Status != c_Success)
        return;
    auto const range = head.Size ? OffsetOf(p_Request) : std::nullopt;
    std::uint64_t const offset = range.value_or(0);
    std::string const size = head.Size ? std::to_string(*head.Size) : std::string();
    if (range && offset >= *head.Size) {
        p_Response.status = c_RangeNotSatisfiable;
        p_Response.set_header("Content-Range", "bytes */" + size);
        return;
    }
    if (head.Size)
        p_Response.set_header("Content-Length", std::to_string(*head.Size - offset));
    if (range) {
        p_Response.status = c_PartialContent;
        p_Response.set_header("Content-Range", "bytes " + std::to_string(offset) + '-' +
                                                   std::to_string(*head.Size - 1) + '/' + size);
    }
    if (head.Size == offset || p_Request.method == "HEAD")
        return;
    auto const give = [this, reader = Source.Open(p_Path, offset, head.Size)](
                          std::size_t, httplib::DataSink& p_Sink) {
        return HandOn(Source, *reader, p_Sink);
    };
    if (head.Size)
        p_Response.set_content_provider(c_ContentType, give);
    else
        p_Response.set_chunked_content_provider(c_ContentType, give);
}

} // namespace Varnholt::Gateway
