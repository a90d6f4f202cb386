#pragma once

#include <cstdint>
#include <string>

namespace Varnholt::LineProxy {

/// A TCP socket that never blocks; closed when it goes. What fails throws std::system_error, or
/// std::runtime_error where a name cannot be resolved.
class Socket {
public:
    /// Listens on 127.0.0.1. \param p_Port 0: one of the system's choosing
    static Socket Listen(std::uint16_t p_Port);
    /// Waits until the connection stands.
    static Socket Connect(std::string const& p_Host, std::string const& p_Port);

    ~Socket();
    Socket(Socket&& p_Other) noexcept;
    Socket(Socket const&) = delete;
    Socket& operator=(Socket const&) = delete;

    int Descriptor() const { return File; }
    /// The port it listens on.
    std::uint16_t Port() const;
    /// The next connection, when poll() has announced one; is not open when it has gone again.
    Socket Accept() const;
    bool IsOpen() const { return File >= 0; }

private:
    explicit Socket(int p_File)
        : File(p_File)
    {
    }
    void NeverWait() const;

    int File;
};

} // namespace Varnholt::LineProxy
