#include "Tests/Faults/FaultTable.hpp"

#include <algorithm>

namespace Varnholt::TestSupport {

void FaultTable::Add(QString const& p_Name, FaultReport const& p_Report)
{
    Rows.emplace_back(p_Name, p_Report);
}

QStringList FaultTable::Cells(QString const& p_Name, FaultReport const& p_Report)
{
    QString const silence = p_Report.Silence == FaultReport::c_NotMeasured
                                ? QStringLiteral("-")
                                : QString::number(p_Report.Silence);
    return {p_Name, QString::number(p_Report.Injected), p_Report.Outcome,
            QString::number(p_Report.Faults.size()), silence};
}

QString FaultTable::Text() const
{
    std::vector<QStringList> lines{{QStringLiteral("fault"), QStringLiteral("injected"),
                                    QStringLiteral("outcome: games"),
                                    QStringLiteral("lost or wrong"), QStringLiteral("silence, ms")},
                                   {}};
    for (auto const& row : Rows)
        lines.push_back(Cells(row.first, row.second));

    std::vector<int> widths(static_cast<std::size_t>(lines.front().size()));
    for (QStringList const& line : lines)
        for (int i = 0; i < line.size(); ++i)
            widths[static_cast<std::size_t>(i)] =
                std::max(widths[static_cast<std::size_t>(i)], line[i].size());

    QString text;
    for (QStringList const& line : lines) {
        for (std::size_t i = 0; i < widths.size(); ++i)
            text += line.isEmpty()
                        ? QLatin1Char('|') + QString(widths[i] + 2, QLatin1Char('-'))
                        : QStringLiteral("| %1 ").arg(line[static_cast<int>(i)], -widths[i]);
        text += QLatin1String("|\n");
    }
    return text;
}

QStringList FaultTable::Faults() const
{
    QStringList faults;
    for (auto const& row : Rows)
        for (QString const& fault : row.second.Faults)
            faults += row.first + QLatin1String(": ") + fault;
    return faults;
}

QStringList FaultTable::NeverStruck() const
{
    QStringList rows;
    for (auto const& row : Rows)
        if (row.second.Injected == 0)
            rows += row.first + QLatin1String(": the fault never struck");
    return rows;
}

} // namespace Varnholt::TestSupport
