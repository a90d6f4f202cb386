#pragma once

#include "GameModules/StandartApplication.hpp"
#include "Host/Core/HostOptions.hpp"
#include "Host/Core/InstallRecord.hpp"
#include "Host/Core/NetworkDoor.hpp"
#include "Host/Core/OfflineCopies.hpp"
#include "Host/Core/RunGate.hpp"
#include "Host/Core/RunWatch.hpp"
#include "Host/Core/TransferLedger.hpp"

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
