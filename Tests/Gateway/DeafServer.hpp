#pragma once

#include <QByteArray>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <vector>

namespace Varnholt::TestSupport {

/// A port of loopback that takes no connections and does not refuse them: who comes hears nothing.
class DeafServer {
public:
    DeafServer()
    {
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof(address);
        bool const listens =
            ::bind(Listener, reinterpret_cast<sockaddr*>(&address), size) == 0 &&
            ::listen(Listener, 0) == 0 &&
            ::getsockname(Listener, reinterpret_cast<sockaddr*>(&address), &size) == 0;
        if (!listens)
            qFatal("no port to be deaf on");
        // Its queue is full from now on.
        for (int i = 0; i < 8; ++i) {
            Waiting.push_back(::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
            ::connect(Waiting.back(), reinterpret_cast<sockaddr*>(&address), size);
        }
        Name = "127.0.0.1:" + QByteArray::number(ntohs(address.sin_port));
    }
    ~DeafServer()
    {
        for (int const socket : Waiting)
            ::close(socket);
        ::close(Listener);
    }
    DeafServer(DeafServer const&) = delete;
    DeafServer& operator=(DeafServer const&) = delete;

    QByteArray Host() const { return Name; }

private:
    int const Listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    std::vector<int> Waiting;
    QByteArray Name;
};

} // namespace Varnholt::TestSupport
