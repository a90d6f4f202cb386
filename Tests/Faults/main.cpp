#include "Tests/Faults/CallFaults.hpp"
#include "Tests/Faults/ClockFaults.hpp"
#include "Tests/Faults/DiskFaults.hpp"
#include "Tests/Faults/FaultProgram.hpp"
#include "Tests/Faults/FolderFaults.hpp"
#include "Tests/Faults/KillFaults.hpp"
#include "Tests/Faults/LineFaults.hpp"
#include "Tests/Faults/LockFaults.hpp"
#include "Tests/Faults/RedirectFaults.hpp"
#include "Tests/Faults/RemovalFaults.hpp"
#include "Tests/Faults/ServerFaults.hpp"
#include "Tests/Faults/SignatureFaults.hpp"
#include "Tests/Faults/TrustFaults.hpp"

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
