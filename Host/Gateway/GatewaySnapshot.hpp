#pragma once

#include "Host/Gateway/FetchProblem.hpp"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Varnholt::Gateway {

/// How the door stands at one moment. A value.
struct GatewaySnapshot {
    struct ServerFigures {
        std::string Name; ///< host and port
        bool IsDefault = false;
        bool IsBehind = false;      ///< has failed or given wrong files; the others come first
        std::uint64_t Received = 0; ///< bytes of content since the run began
        std::uint64_t Rate = 0;     ///< bytes per second over the last seconds
    };
    /// Nothing arrives and somebody waits for it.
    struct Wait {
        FetchProblem Problem;
        std::chrono::milliseconds Silent{0};      ///< since the last byte
        std::chrono::milliseconds NextAttempt{0}; ///< 0: under way
        int Attempt = 1;                          ///< the number of that one
        int Attempts = 0;                         ///< that there will be at most; 0: no limit
    };

    std::uint64_t Received = 0;         ///< bytes of content since the run began, from the network
    std::uint64_t Rate = 0;             ///< bytes per second over the last seconds; 0 while paused
    std::uint64_t Held = 0;             ///< bytes in memory
    std::string Server;                 ///< that gave the latest bytes
    std::vector<ServerFigures> Servers; ///< that gave bytes or failed, the default one first
    std::optional<Wait> Waits;
    std::optional<FetchProblem> GaveUp; ///< nothing has come for as long as is allowed, or distrust
    std::optional<FetchProblem> Copies; ///< copies are handed out, and why
    std::uint32_t SizesKnown = 0;       ///< of the files of the plan, or refused
};

} // namespace Varnholt::Gateway
