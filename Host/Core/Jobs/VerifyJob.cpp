#include "Host/Core/Jobs/VerifyJob.hpp"

namespace Varnholt::Host {

void VerifyJob::Judge()
{
    Fail({Verdict(), FileCountText(Result.Findings.size()), Result.BuildText()});
}

} // namespace Varnholt::Host
