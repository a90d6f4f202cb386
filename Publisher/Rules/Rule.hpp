#pragma once

#include "Publisher/Rules/GlobPattern.hpp"

#include <QString>

#include <optional>

namespace Varnholt::Publisher {

/// What a rules file says about the paths that match a pattern; an empty property leaves that
/// property as earlier rules set it.
struct Rule {
    GlobPattern Match;
    std::optional<qint32> Flags;
    std::optional<QString> Locale;
    std::optional<bool> Streamed;
    std::optional<bool> Excluded;
    QString Pattern; ///< as it is written
    int Line = 0;    ///< of the rules file, from 1; 0: a built-in rule
};

} // namespace Varnholt::Publisher
