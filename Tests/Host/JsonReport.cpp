#include "Tests/Host/JsonReport.hpp"

#include <QJsonDocument>

#include <algorithm>
#include <iterator>

namespace Varnholt::TestSupport {

JsonReport::JsonReport(QString const& p_Out)
{
    QStringList lines = p_Out.split(QLatin1Char('\n'));
    if (!lines.takeLast().isEmpty())
        Foreign += QStringLiteral("a line without its end");
    for (QString const& line : lines) {
        QJsonDocument const document = QJsonDocument::fromJson(line.toUtf8());
        if (document.isObject())
            Lines.push_back(document.object());
        else
            Foreign += line;
    }
}

std::vector<QJsonObject> JsonReport::Of(QString const& p_Type) const
{
    std::vector<QJsonObject> lines;
    std::copy_if(Lines.begin(), Lines.end(), std::back_inserter(lines),
                 [&](QJsonObject const& p_Line) { return p_Line["type"].toString() == p_Type; });
    return lines;
}

QStringList JsonReport::Texts(QString const& p_Type, QString const& p_Key) const
{
    QStringList texts;
    for (QJsonObject const& line : Of(p_Type))
        texts += line[p_Key].toVariant().toString();
    return texts;
}

QStringList JsonReport::Phases() const
{
    QStringList phases;
    for (QString const& phase : Texts(QStringLiteral("progress"), QStringLiteral("phase")))
        if (phases.isEmpty() || phases.last() != phase)
            phases += phase;
    return phases;
}

} // namespace Varnholt::TestSupport
