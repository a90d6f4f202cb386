#include "Publisher/Rules/GlobPattern.hpp"

namespace Varnholt::Publisher {

namespace {

/// One match of a pattern with a path. The first place at which the text behind a wildcard fits
/// leaves most of the path to the rest of the pattern, so that only the last "*" and the last "**"
/// are ever tried again.
class Match {
public:
    Match(QString const& p_Pattern, QString const& p_Path)
        : Pattern(p_Pattern)
        , Path(p_Path)
    {
    }

    bool Run()
    {
        while (At < Path.size() || Token < Pattern.size()) {
            if (!Step() && !RetryStar() && !RetryDeep())
                return false;
        }
        return true;
    }

private:
    bool Step()
    {
        if (Token == Pattern.size())
            return false;
        QChar const token = Pattern[Token];
        if (token == QLatin1Char('*')) {
            EnterStars();
            return true;
        }
        bool const isAny = token == QLatin1Char('?');
        if (At == Path.size() || (isAny ? Path[At] == QLatin1Char('/') : Path[At] != token))
            return false;
        // A character may take two places.
        if (isAny && Path[At].isHighSurrogate())
            ++At;
        ++At;
        ++Token;
        return true;
    }

    void EnterStars()
    {
        int const start = Token;
        while (Token < Pattern.size() && Pattern[Token] == QLatin1Char('*'))
            ++Token;
        if (Token == start + 1) {
            Star = {Token, At};
            return;
        }
        bool const atStart = start == 0 || Pattern[start - 1] == QLatin1Char('/');
        IsWhole = atStart && Token < Pattern.size() && Pattern[Token] == QLatin1Char('/');
        // Takes its "/" along, so that "**/name" also matches a bare "name".
        Token += IsWhole ? 1 : 0;
        Deep = {Token, At};
        Star = {};
    }

    bool RetryStar()
    {
        if (Star.Token < 0 || Star.At == Path.size() || Path[Star.At] == QLatin1Char('/'))
            return false;
        ++Star.At;
        Token = Star.Token;
        At = Star.At;
        return true;
    }

    bool RetryDeep()
    {
        if (Deep.Token < 0)
            return false;
        int const next = IsWhole ? Path.indexOf(QLatin1Char('/'), Deep.At) : Deep.At;
        if (next < 0 || next == Path.size())
            return false;
        Deep.At = next + 1;
        Token = Deep.Token;
        At = Deep.At;
        Star = {};
        return true;
    }

    /// Where a wildcard ends: in the pattern, and as far as it was tried in the path.
    struct Wildcard {
        int Token = -1; ///< -1: there was none
        int At = 0;
    };

    QString const& Pattern;
    QString const& Path;
    int Token = 0;
    int At = 0;
    Wildcard Star;
    Wildcard Deep;
    bool IsWhole = false; ///< the last "**" stands for whole components
};

} // namespace

GlobPattern::GlobPattern(QString const& p_Text)
    : Text(p_Text)
    , Tail(p_Text.mid(
          1 + qMax(p_Text.lastIndexOf(QLatin1Char('*')), p_Text.lastIndexOf(QLatin1Char('?')))))
{
    // "**/name" matches a bare "name".
    if (Tail.startsWith(QLatin1Char('/')))
        Tail.remove(0, 1);
}

bool GlobPattern::Matches(QString const& p_Path) const
{
    return p_Path.endsWith(Tail) && Match(Text, p_Path).Run();
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
