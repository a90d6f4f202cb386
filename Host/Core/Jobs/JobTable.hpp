#pragma once

#include "Host/Core/Jobs/Job.hpp"

namespace Varnholt::Host {

// All jobs: a new one is a class in a file of its own, which makes it, and a row in the table.
extern JobMaker const MakeCheckJob;
extern JobMaker const MakeInstallJob;
extern JobMaker const MakeLocalesJob;
extern JobMaker const MakeMirrorsJob;
extern JobMaker const MakePlayJob;
extern JobMaker const MakeQuickCheckJob;
extern JobMaker const MakeUninstallJob;
extern JobMaker const MakeUpdateJob;
extern JobMaker const MakeVerifyJob;

/// Makes the job that a request wants.
std::unique_ptr<Job> MakeJobFor(RunContext const& p_Context, RunRequest const& p_Request);

} // namespace Varnholt::Host
