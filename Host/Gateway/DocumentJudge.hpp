#pragma once

#include "Host/Gateway/FetchProblem.hpp"

#include <cstddef>
#include <optional>
#include <string>

namespace Varnholt::Gateway {

/// Decides whether a document is what its publisher gave. The door calls it under its own lock, on
/// any of its threads: it must not block, nor ask the door.
class DocumentJudge {
public:
    /// A document, and the signature that lies beside it.
    struct Evidence {
        std::string Path; ///< below the base address
        std::string Url;
        std::string const& Body;
        std::string const& Signature;
        bool IsCopy = false; ///< of an earlier run's
    };

    static constexpr char c_SignatureSuffix[] = ".minisig"; ///< behind the document's path
    static constexpr std::size_t c_MostSignatureBytes = 4096;

    virtual ~DocumentJudge() = default;
    /// \return why it is not to be handed on
    virtual std::optional<FetchProblem> Judge(Evidence const& p_Evidence) = 0;
    /// The path of the document that names a new key. It is fetched, and judged as any other, when
    /// a signature is by a key that is not known.
    virtual std::string KeyPath() const = 0;
};

} // namespace Varnholt::Gateway
