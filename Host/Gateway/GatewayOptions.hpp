#pragma once

#include "Host/Gateway/FetchProblem.hpp"

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>

namespace Varnholt::Gateway {

/// What a host may choose about its door to the network.
struct GatewayOptions {
    std::string ContentServer; ///< http or https, ends in "/"; no user and no password in it
    std::string User;          ///< of the content server only; empty: none
    std::string Password;
    std::string NetrcFile; ///< for every server named in it; empty: the user's own
    std::string CaFile;    ///< PEM; empty: the system's
    std::string Proxy;     ///< as libcurl has it; empty: what the environment names
    bool HttpsMirrors = false;
    int Connections = 4;              ///< that bring content at the same time, 1 to 64
    std::uint64_t BytesPerSecond = 0; ///< 0: as fast as it comes
    std::chrono::milliseconds ConnectTimeout{15'000};
    std::chrono::milliseconds StallTime{30'000}; ///< in whole seconds, rounded up; at least one
    std::chrono::milliseconds RetryPause{500};   ///< before a server is asked again; doubles
    std::chrono::milliseconds RetryFor{600'000}; ///< without a byte; 0: for ever
    std::chrono::milliseconds CopyDelay{2'000};  ///< how long `Source::ServerOrCopies` asks
    /// Told of every try that has failed, on a thread of the gateway. Must not block, nor ask it.
    std::function<void(FetchProblem const&)> OnFailure = [](FetchProblem const&) {};
};

} // namespace Varnholt::Gateway
