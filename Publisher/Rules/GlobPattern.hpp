#pragma once

#include <QString>
#include <QVector>

#include <vector>

namespace Varnholt::Publisher {

/// A pattern for relative paths with "/" between their components. The whole path has to match;
/// letter case counts.
///
/// - "?" is one character other than "/"
/// - "*" is any number of characters other than "/"
/// - "**" is any number of characters; as a component of its own ("**/name", "a/**/b") it is any
///   number of whole components, none included
///
/// Matching takes time proportional to the lengths of pattern and path, whatever they hold.
class GlobPattern {
public:
    explicit GlobPattern(QString const& p_Text);

    bool Matches(QString const& p_Path) const;

    /// Why no path can ever match the text, as the end of a sentence that starts with it; empty
    /// for a usable pattern.
    static QString Problem(QString const& p_Text);

private:
    enum class Kind { Character, OneCharacter, InComponent, AcrossComponents, WholeComponents };
    struct Token {
        Kind TokenKind;
        uint Character;
    };

    /// Adds a state and those that it reaches without a character.
    void Enter(std::size_t p_State, std::vector<bool>& p_States) const;
    std::vector<bool> Step(std::vector<bool> const& p_States, uint p_Character) const;

    std::vector<Token> Tokens;
};

} // namespace Varnholt::Publisher
