#pragma once

#include "Host/Gateway/Exchange.hpp"

#include <httplib.h>

#include <string>
#include <thread>

namespace Varnholt::Gateway {

/// The side of the door that a module sees: an HTTP server on loopback whose paths begin with an
/// element that nobody can guess. Behind it "d/" is the default content server, "m/" the mirrors.
class DoorServer {
public:
    explicit DoorServer(Exchange& p_Exchange);
    /// Waits for its clients, which the exchange must have let go before.
    ~DoorServer();

    /// \return false when the system lets nobody listen
    bool Listen();
    /// "http://127.0.0.1:4711/6f1c…/"
    std::string Address() const { return "http://" + Name() + '/'; }
    /// "127.0.0.1:4711/6f1c…"
    std::string Name() const;

private:
    void Answer(httplib::Request const& p_Request, httplib::Response& p_Response);
    void AnswerDocument(std::string const& p_Path, httplib::Response& p_Response);
    void AnswerFile(std::string const& p_Path, bool p_OfDefaultServer,
                    httplib::Request const& p_Request, httplib::Response& p_Response);

    Exchange& Source;
    httplib::Server Server;
    std::string Secret;
    int Port = -1;
    std::thread Listener;
};

} // namespace Varnholt::Gateway
