#pragma once

#include "Host/Gateway/Clock.hpp"
#include "Host/Gateway/FetchProblem.hpp"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace Varnholt::Gateway {

/// A small file of the content server's that is fetched as a whole. Guarded by its user.
struct Document {
    static constexpr std::size_t c_MostBytes = 64UL * 1024 * 1024;

    std::string Path;
    std::string Url;
    std::uint64_t Run = 0;
    std::uint64_t Transfer = 0; ///< 0: none
    bool IsDone = false;
    int Attempts = 0;
    int RetryAfter = 0; ///< seconds, of the latest answer
    TimePoint NotBefore;
    std::string Body;
    std::optional<FetchProblem> Problem;

    /// The list of mirrors and the realm list: a run goes on without them.
    bool IsOptional() const;
    bool IsHostList() const { return Path == "cdns.info"; }
    /// Whether a path is that of a document, not of content.
    static bool IsOne(std::string const& p_Path);
};

} // namespace Varnholt::Gateway
