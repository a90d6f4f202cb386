#include "Publisher/Rules/RuleLines.hpp"

#include <QJsonArray>
#include <QJsonDocument>
#include <QString>

namespace Varnholt::Publisher {

namespace {

/// Walks through a document from bracket to bracket.
class Walk {
public:
    explicit Walk(QByteArray const& p_Text)
        : Text(p_Text)
    {
    }

    std::vector<int> Run()
    {
        while (Position < Text.size())
            Step();
        return Lines;
    }

private:
    void Step()
    {
        char const character = Text[Position];
        switch (character) {
        case '\n':
            ++Line;
            break;
        case '"':
            TakeString();
            return;
        case ',':
            AwaitsElement = true;
            break;
        case '{':
        case '[':
            NoteElement();
            Open(character);
            break;
        case '}':
        case ']':
            --Depth;
            AwaitsElement = false;
            break;
        default:
            if (character != ' ' && character != '\t' && character != '\r')
                NoteElement();
        }
        ++Position;
    }

    void Open(char p_Bracket)
    {
        ++Depth;
        if (Depth == 2) {
            IsInRules = p_Bracket == '[' && Key == QStringLiteral("rules");
            // Of two keys alike the later one counts.
            if (IsInRules)
                Lines.clear();
        }
        AwaitsElement = true;
    }

    /// An element of the array begins here, unless it has already begun.
    void NoteElement()
    {
        if (Depth == 2 && IsInRules && AwaitsElement)
            Lines.push_back(Line);
        AwaitsElement = false;
    }

    void TakeString()
    {
        NoteElement();
        int const start = Position++;
        while (Position < Text.size() && Text[Position] != '"')
            Position += Text[Position] == '\\' ? 2 : 1;
        ++Position;
        // Keys may be written with escapes.
        if (Depth == 1) {
            QByteArray const text = '[' + Text.mid(start, Position - start) + ']';
            Key = QJsonDocument::fromJson(text).array().at(0).toString();
        }
    }

    QByteArray const& Text;
    std::vector<int> Lines;
    QString Key; ///< the last text at the top level
    int Position = 0;
    int Line = 1;
    int Depth = 0;
    bool IsInRules = false;
    bool AwaitsElement = false;
};

} // namespace

std::vector<int> RuleLines(QByteArray const& p_Text)
{
    return Walk(p_Text).Run();
}

} // namespace Varnholt::Publisher
