#include "Publisher/Rules/RuleLines.hpp"

#include <QJsonArray>
#include <QJsonDocument>
#include <QRegularExpression>

namespace Varnholt::Publisher {

namespace {

QString const c_LineEnd = QStringLiteral("\n");
QString const c_Comma = QStringLiteral(",");
QString const c_Opening = QStringLiteral("[{");
QString const c_Closing = QStringLiteral("]}");

/// The text of a string in a document: keys may be written with escapes.
QString Decoded(QString const& p_String)
{
    QByteArray const array = '[' + p_String.toUtf8() + ']';
    return QJsonDocument::fromJson(array).array().at(0).toString();
}

} // namespace

std::vector<int> RuleLines(QByteArray const& p_Text)
{
    static QRegularExpression const c_Token(
        QStringLiteral(R"("(?:[^"\\]++|\\.)*+"|[][{},\n]|[^]["{},\s]++)"),
        QRegularExpression::DotMatchesEverythingOption);

    std::vector<int> lines;
    QString key; // the last text at the top level
    int line = 1;
    int depth = 0;
    bool isInRules = false;
    bool awaitsElement = false;
    for (auto tokens = c_Token.globalMatch(QString::fromUtf8(p_Text)); tokens.hasNext();) {
        QString const token = tokens.next().captured();
        if (token == c_LineEnd) {
            ++line;
            continue;
        }
        bool const isElement = token != c_Comma && !c_Closing.contains(token);
        if (isElement && awaitsElement && isInRules && depth == 2)
            lines.push_back(line);
        awaitsElement = !isElement && token == c_Comma;
        if (c_Closing.contains(token))
            --depth;
        if (depth == 1 && token.startsWith(QLatin1Char('"')))
            key = Decoded(token);
        if (!c_Opening.contains(token))
            continue;
        awaitsElement = true;
        if (++depth != 2)
            continue;
        isInRules = token == QLatin1String("[") && key == QLatin1String("rules");
        // Of two keys alike the later one counts.
        if (isInRules)
            lines.clear();
    }
    return lines;
}

} // namespace Varnholt::Publisher
