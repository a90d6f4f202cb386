#pragma once

#include <QString>

namespace Varnholt::Publisher {

/// A pattern for relative paths with "/" between their components. The whole path has to match;
/// letter case counts.
///
/// - "?" is one character other than "/"
/// - "*" is any number of characters other than "/"
/// - "**" is any number of characters; as a component of its own ("**/name", "a/**/b") it is any
///   number of whole components, none included
///
/// Most paths that do not match cost no more than a comparison with the pattern's end; no pattern
/// takes more than the square of the path's length.
class GlobPattern {
public:
    explicit GlobPattern(QString const& p_Text);

    bool Matches(QString const& p_Path) const;

    /// Why no path can ever match the text, as the end of a sentence that starts with it; empty
    /// for a usable pattern.
    static QString Problem(QString const& p_Text);

private:
    QString Text;
    QString Tail; ///< what stands behind the last wildcard
};

} // namespace Varnholt::Publisher
