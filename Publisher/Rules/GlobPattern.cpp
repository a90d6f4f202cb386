#include "Publisher/Rules/GlobPattern.hpp"

namespace Varnholt::Publisher {

GlobPattern::GlobPattern(QString const& p_Text)
{
    QVector<uint> const text = p_Text.toUcs4();
    for (int i = 0; i < text.size(); ++i) {
        if (text[i] == '?') {
            Tokens.push_back({Kind::OneCharacter, 0});
        } else if (text[i] != '*') {
            Tokens.push_back({Kind::Character, text[i]});
        } else {
            int const start = i;
            while (i + 1 < text.size() && text[i + 1] == '*')
                ++i;
            bool const atStart = start == 0 || text[start - 1] == '/';
            bool const beforeSlash = i + 1 < text.size() && text[i + 1] == '/';
            if (i == start) {
                Tokens.push_back({Kind::InComponent, 0});
            } else if (atStart && beforeSlash) {
                // Takes its "/" along, so that "**/name" also matches a bare "name".
                Tokens.push_back({Kind::WholeComponents, 0});
                ++i;
            } else {
                Tokens.push_back({Kind::AcrossComponents, 0});
            }
        }
    }
}

void GlobPattern::Enter(std::size_t p_State, std::vector<bool>& p_States) const
{
    for (;;) {
        p_States[p_State] = true;
        if (p_State == Tokens.size())
            return;
        Kind const kind = Tokens[p_State].TokenKind;
        if (kind == Kind::Character || kind == Kind::OneCharacter)
            return;
        ++p_State;
    }
}

std::vector<bool> GlobPattern::Step(std::vector<bool> const& p_States, uint p_Character) const
{
    std::vector<bool> next(p_States.size(), false);
    for (std::size_t i = 0; i < Tokens.size(); ++i) {
        if (!p_States[i])
            continue;
        switch (Tokens[i].TokenKind) {
        case Kind::Character:
            if (p_Character == Tokens[i].Character)
                Enter(i + 1, next);
            break;
        case Kind::OneCharacter:
            if (p_Character != '/')
                Enter(i + 1, next);
            break;
        case Kind::InComponent:
            if (p_Character != '/')
                Enter(i, next);
            break;
        case Kind::AcrossComponents:
            Enter(i, next);
            break;
        case Kind::WholeComponents:
            // Inside a component it may only go on; what follows it starts after a "/".
            next[i] = true;
            if (p_Character == '/')
                Enter(i, next);
            break;
        }
    }
    return next;
}

bool GlobPattern::Matches(QString const& p_Path) const
{
    std::vector<bool> states(Tokens.size() + 1, false);
    Enter(0, states);
    for (uint const character : p_Path.toUcs4())
        states = Step(states, character);
    return states.back();
}

QString GlobPattern::Problem(QString const& p_Text)
{
    if (p_Text.isEmpty())
        return QStringLiteral("is empty");
    if (p_Text.startsWith(QLatin1Char('/')))
        return QStringLiteral("starts with \"/\", but paths are relative to the source folder");
    if (p_Text.endsWith(QLatin1Char('/')))
        return QStringLiteral("ends with \"/\": for all that a folder holds, end it with \"/**\"");
    return QString();
}

} // namespace Varnholt::Publisher
