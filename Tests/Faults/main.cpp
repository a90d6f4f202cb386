#include "Tests/Faults/FaultProgram.hpp"
#include "Tests/Faults/FaultRows.hpp"

using namespace Varnholt::TestSupport;

namespace {

std::vector<FaultRow> AllRows()
{
    std::vector<FaultRow> rows;
    for (auto const& group : {ServerFaults(), LineFaults(), RedirectFaults(), TrustFaults(),
                              SignatureFaults(), DiskFaults(), FolderFaults(), RemovalFaults(),
                              KillFaults(), CallFaults(), LockFaults(), ClockFaults()})
        rows.insert(rows.end(), group.begin(), group.end());
    return rows;
}

} // namespace

int main(int p_Count, char** p_Arguments)
{
    return RunFaultProgram(p_Count, p_Arguments, AllRows());
}
