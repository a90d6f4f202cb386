#include "Programs/Printable.hpp"

namespace Varnholt::Programs {

namespace {

/// Control characters of both sets, line ends, and what turns the direction of a text.
bool Steers(QChar p_Character)
{
    ushort const code = p_Character.unicode();
    bool const turns = code == 0x061c || code == 0x200e || code == 0x200f ||
                       (code >= 0x202a && code <= 0x202e) || (code >= 0x2066 && code <= 0x2069);
    return code < 0x20 || (code >= 0x7f && code < 0xa0) || code == 0x2028 || code == 0x2029 ||
           turns;
}

QString Escape(QChar p_Character)
{
    constexpr int c_Digits = 4;
    constexpr int c_Base = 16;

    switch (p_Character.unicode()) {
    case '\n':
        return QStringLiteral("\\n");
    case '\r':
        return QStringLiteral("\\r");
    case '\t':
        return QStringLiteral("\\t");
    default:
        return QStringLiteral("\\u%1").arg(p_Character.unicode(), c_Digits, c_Base,
                                           QLatin1Char('0'));
    }
}

} // namespace

QString Printable(QString const& p_Text)
{
    QString text;
    text.reserve(p_Text.size());
    for (QChar const character : p_Text)
        text += Steers(character) ? Escape(character) : QString(character);
    return text;
}

} // namespace Varnholt::Programs
