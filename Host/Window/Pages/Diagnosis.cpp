#include "Host/Window/Pages/Diagnosis.hpp"

#include <QCoreApplication>
#include <QSysInfo>

namespace Varnholt::Host {

namespace {

QString YesNo(bool p_Value)
{
    return p_Value ? QStringLiteral("yes") : QStringLiteral("no");
}

} // namespace

QString DiagnosisText(ModuleInfo const& p_Module, GameState const& p_State,
                      QStringList const& p_History)
{
    QStringList lines{
        QStringLiteral("Program: %1 %2, Qt %3")
            .arg(QCoreApplication::applicationName(), QCoreApplication::applicationVersion(),
                 QString::fromLatin1(qVersion())),
        QStringLiteral("System: %1, %2")
            .arg(QSysInfo::prettyProductName(), QSysInfo::currentCpuArchitecture()),
        QStringLiteral("Module: %1 (%2) %3").arg(p_Module.Name, p_Module.AppId, p_Module.Version),
    };
    if (auto const& status = p_State.Status) {
        lines += QStringLiteral("Installed: %1").arg(YesNo(status->IsInstalled));
        lines += QStringLiteral("Folder: %1 (there: %2)")
                     .arg(status->Folder, YesNo(status->FolderExists));
        lines += QStringLiteral("Build: %1, unfinished: %2, pending: %3 + %4, language: %5")
                     .arg(status->Build, YesNo(status->IsUnfinished))
                     .arg(status->PendingBase)
                     .arg(status->PendingStreamed)
                     .arg(status->Locale);
    }
    if (p_State.Job)
        lines += QStringLiteral("Phase: %1").arg(PhaseName(p_State.Snapshot.Phase));
    if (auto const& problem = p_State.Problem)
        lines += QStringLiteral("Problem: %1 (%2)").arg(problem->Identifier(), problem->Sentence());
    return (lines + p_History).join(QLatin1Char('\n')) + QLatin1Char('\n');
}

} // namespace Varnholt::Host
