#pragma once

#include "Signing/SecretKey.hpp"

#include <optional>

namespace Varnholt::Publisher {

/// How a change of a tree is signed.
struct SigningOptions {
    std::optional<Signing::SecretKey> Key; ///< none: not at all
    std::optional<int> Days;               ///< clients refuse it after so many; none: never
    bool Unsigned = false;                 ///< the tree was signed, and this change is not
};

} // namespace Varnholt::Publisher
