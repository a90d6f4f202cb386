#pragma once

#include "Host/Gateway/Clock.hpp"
#include "Host/Gateway/FetchProblem.hpp"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace Varnholt::Gateway {

/// A small file of the content server's that is fetched as a whole, and with a judge its signature
/// behind it. Guarded by its user.
struct Document {
    std::string Path;
    std::string Url;
    std::uint64_t Run = 0;
    std::uint64_t Transfer = 0; ///< 0: none
    bool IsDone = false;
    int Attempts = 0;
    int RetryAfter = 0; ///< seconds, of the latest answer
    TimePoint NotBefore;
    std::shared_ptr<std::string> Body = std::make_shared<std::string>(); ///< whole once it is done
    bool HasBody = false; ///< what is fetched is the signature
    std::shared_ptr<std::string> Signature = std::make_shared<std::string>();
    int Doubts = 0; ///< how often it has come and did not verify
    std::optional<FetchProblem> Problem;

    /// What is being fetched of it, and where that is.
    std::shared_ptr<std::string>& Part() { return HasBody ? Signature : Body; }
    std::string PartUrl() const;
    void Fetch(bool p_Signature);

    /// The list of mirrors, the realm list, a new key: a run goes on without them.
    bool IsOptional() const;
    /// Of the part: 200,000 files need 32 MiB of a manifest.
    std::size_t MostBytes() const;
    bool IsHostList() const { return Path == "cdns.info"; }
    /// Whether an attempt has cost so little time that only few may follow it, `c_MostAttempts`.
    static bool EndsSoon(FetchProblem const& p_Problem);
    static constexpr int c_MostAttempts = 3;
    /// Whether a path is that of a document, not of content.
    static bool IsOne(std::string const& p_Path);
};

} // namespace Varnholt::Gateway
