#pragma once

#include "Host/Core/Jobs/RunRequest.hpp"
#include "Host/Core/Jobs/RunResult.hpp"
#include "Host/Core/Module/ModuleInfo.hpp"
#include "Host/Core/Session/InstallStatus.hpp"

#include <QStringList>

/// The results of commands as lines for people. No output of their own.
namespace Varnholt::Host::Reports {

QStringList Info(ModuleInfo const& p_Info);
QStringList Status(InstallStatus const& p_Status);
/// "2.6 GiB are needed on the volume of /home/ann/Game/; 100 GiB are free, 97.4 GiB stay free".
QString Space(VolumeSpace const& p_Space);
/// What a run has found, whether it has failed or not.
QStringList Findings(RunRequest const& p_Request, RunResult const& p_Result);
/// "6 files fetched: 1.2 MiB in 0:02, 614.4 KiB/s on average".
QString Totals(RunRequest const& p_Request, RunTotals const& p_Totals);
/// Of a run that has not failed.
QStringList Success(RunRequest const& p_Request, RunResult const& p_Result, QString const& p_Name);

} // namespace Varnholt::Host::Reports
