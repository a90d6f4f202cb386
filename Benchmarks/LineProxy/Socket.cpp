#include "Benchmarks/LineProxy/Socket.hpp"

#include <arpa/inet.h>
#include <cerrno>
#include <fcntl.h>
#include <memory>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <stdexcept>
#include <sys/socket.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace Varnholt::LineProxy {

namespace {

[[noreturn]] void Fail(char const* p_What)
{
    throw std::system_error(errno, std::generic_category(), p_What);
}

sockaddr* Plain(sockaddr_in& p_Address)
{
    return reinterpret_cast<sockaddr*>(&p_Address);
}

} // namespace

Socket Socket::Listen(std::uint16_t p_Port)
{
    Socket listener(socket(AF_INET, SOCK_STREAM, 0));
    if (!listener.IsOpen())
        Fail("no socket");
    int const yes = 1;
    setsockopt(listener.File, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(p_Port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (bind(listener.File, Plain(address), sizeof address) != 0 ||
        listen(listener.File, SOMAXCONN) != 0)
        Fail("cannot listen");
    listener.NeverWait();
    return listener;
}

Socket Socket::Connect(std::string const& p_Host, std::string const& p_Port)
{
    addrinfo hints = {};
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    if (int const error = getaddrinfo(p_Host.c_str(), p_Port.c_str(), &hints, &found))
        throw std::runtime_error(p_Host + ": " + gai_strerror(error));
    std::unique_ptr<addrinfo, decltype(&freeaddrinfo)> const addresses(found, freeaddrinfo);
    for (addrinfo const* one = found; one != nullptr; one = one->ai_next) {
        Socket peer(socket(one->ai_family, one->ai_socktype, one->ai_protocol));
        if (peer.IsOpen() && connect(peer.File, one->ai_addr, one->ai_addrlen) == 0) {
            peer.NeverWait();
            return peer;
        }
    }
    Fail("cannot connect");
}

Socket::~Socket()
{
    if (IsOpen())
        close(File);
}

Socket::Socket(Socket&& p_Other) noexcept
    : File(std::exchange(p_Other.File, -1))
{
}

std::uint16_t Socket::Port() const
{
    sockaddr_in address = {};
    socklen_t length = sizeof address;
    if (getsockname(File, Plain(address), &length) != 0)
        Fail("no port");
    return ntohs(address.sin_port);
}

Socket Socket::Accept() const
{
    Socket peer(accept(File, nullptr, nullptr));
    if (peer.IsOpen())
        peer.NeverWait();
    return peer;
}

void Socket::NeverWait() const
{
    int const yes = 1;
    setsockopt(File, IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);
    if (fcntl(File, F_SETFL, fcntl(File, F_GETFL) | O_NONBLOCK) == -1)
        Fail("cannot make a socket non-blocking");
    fcntl(File, F_SETFD, FD_CLOEXEC);
}

} // namespace Varnholt::LineProxy
