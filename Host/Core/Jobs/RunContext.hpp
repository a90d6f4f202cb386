#pragma once

#include "GameModules/StandartApplication.hpp"
#include "Host/Core/Module/RunGate.hpp"
#include "Host/Core/Module/RunWatch.hpp"
#include "Host/Core/Module/TransferLedger.hpp"
#include "Host/Core/Network/NetworkDoor.hpp"
#include "Host/Core/Network/OfflineCopies.hpp"
#include "Host/Core/Settings/HostOptions.hpp"
#include "Host/Core/Settings/InstallRecord.hpp"

namespace Varnholt::Host {

/// What the control of a run works with; all of it outlives the control.
struct RunContext {
    Launcher::StandartApplication& Module;
    HostOptions const& Options;
    InstallRecord& Record;
    RunGate& Gate;
    NetworkDoor& Door;
    OfflineCopies const& Copies;
    TransferLedger& Ledger;
    RunWatch& Watch;
};

} // namespace Varnholt::Host
