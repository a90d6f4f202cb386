#pragma once

#include "Publisher/Serving/StaticServer.hpp"

#include <string>

namespace CLI {
class App;
}

namespace Varnholt::Publisher {

/// `varnholt-publish serve`
class ServeCommand {
public:
    /// Adds the command and its options; p_Program keeps a reference to this object.
    explicit ServeCommand(CLI::App& p_Program);

    bool IsChosen() const;

    /// Serves until SIGINT or SIGTERM. Ends the program itself when a client keeps a connection
    /// busy.
    /// \return exit status
    /// \throws Failure
    int Run() const;

private:
    StaticServer::RequestLog Log() const;

    CLI::App* Command;
    std::string Root;
    std::string Address = "127.0.0.1";
    int Port = 8080;
    bool Quiet = false;
    bool Json = false;
};

} // namespace Varnholt::Publisher
