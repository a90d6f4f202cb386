#include "Pages/Pieces.hpp"

#include "Host/Core/Failures/ExitStatus.hpp"
#include "Host/Core/Failures/Failure.hpp"
#include "Host/Core/Settings/HostOptions.hpp"
#include "Pages/Troff.hpp"

namespace Varnholt::Pages {

using namespace Host;
using namespace Troff;

Pieces HostPieces()
{
    QString statuses;
    for (ExitStatus const& row : c_ExitStatuses) {
        QString const meaning = QString::fromUtf8(row.Meaning);
        statuses += Item(Bold(QString::number(row.Status)),
                         Sentence(meaning.left(1).toUpper() + meaning.mid(1)));
    }
    QString const some = QStringLiteral("...");
    QString failures;
    for (FailureKind const kind : Failure::Kinds()) {
        Failure const failure{kind, some, some};
        failures += Item(
            QStringLiteral("%1 (%2)").arg(Bold(failure.Identifier())).arg(failure.ExitStatus()),
            Sentence(failure.Sentence() + QStringLiteral("; ") + failure.Remedy()));
    }
    return {{QStringLiteral("STATUSES"), statuses},
            {QStringLiteral("FAILURES"), failures},
            {QStringLiteral("SETTINGS"), Plain(QLatin1String(HostOptions::c_SettingsName))},
            {QStringLiteral("MODULE"), Plain(HostOptions::InstalledModuleFile())}};
}

} // namespace Varnholt::Pages
