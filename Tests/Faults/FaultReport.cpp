#include "Tests/Faults/FaultReport.hpp"

#include <QJsonArray>

namespace Varnholt::TestSupport {

QJsonObject FaultReport::ToJson() const
{
    return {{QStringLiteral("injected"), Injected},
            {QStringLiteral("outcome"), Outcome},
            {QStringLiteral("faults"), QJsonArray::fromStringList(Faults)},
            {QStringLiteral("silence"), Silence}};
}

FaultReport FaultReport::FromJson(QJsonObject const& p_Object)
{
    FaultReport report;
    report.Injected = p_Object[QStringLiteral("injected")].toInt();
    report.Outcome = p_Object[QStringLiteral("outcome")].toString();
    for (auto const& fault : p_Object[QStringLiteral("faults")].toArray())
        report.Faults += fault.toString();
    report.Silence = static_cast<qint64>(p_Object[QStringLiteral("silence")].toDouble());
    return report;
}

FaultReport FaultReport::NotPossible(QString const& p_Why)
{
    FaultReport report;
    report.Outcome = QStringLiteral("not possible here: ") + p_Why;
    return report;
}

} // namespace Varnholt::TestSupport
