#pragma once

#include "GameModules/StandartApplication.hpp"
#include "Host/Core/Jobs/GameWatch.hpp"
#include "Host/Core/Module/AsyncWorker.hpp"
#include "Host/Core/Module/ModuleInfo.hpp"
#include "Host/Core/Module/ModuleView.hpp"
#include "Host/Core/Module/RunGate.hpp"
#include "Host/Core/Module/TransferLedger.hpp"
#include "Host/Core/Network/NetworkDoor.hpp"
#include "Host/Core/Network/OfflineCopies.hpp"
#include "Host/Core/Settings/HostOptions.hpp"
#include "Host/Core/Settings/InstallRecord.hpp"
#include "Host/Core/Trust/TrustRecord.hpp"

namespace Varnholt::Host {

/// What a job works with; all of it outlives the job.
struct RunContext {
    Launcher::StandartApplication& Module;
    ModuleView& View;
    ModuleInfo const& Info;
    HostOptions const& Options;
    InstallRecord& Record;
    TrustRecord& Trust;
    RunGate& Gate;
    NetworkDoor& Door;
    OfflineCopies const& Copies;
    TransferLedger& Ledger;
    AsyncWorker const& Worker;
    GameWatch& Games;
};

} // namespace Varnholt::Host
