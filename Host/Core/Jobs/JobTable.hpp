#pragma once

#include "Host/Core/Jobs/Job.hpp"

#include <memory>

/// All jobs: a new one is a class in a file of its own and a row here.
namespace Varnholt::Host::JobTable {

std::unique_ptr<Job> Make(RunContext const& p_Context, RunRequest const& p_Request);

} // namespace Varnholt::Host::JobTable
