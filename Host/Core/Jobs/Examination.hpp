#pragma once

#include "Host/Core/Jobs/DiskPace.hpp"
#include "Host/Core/Jobs/Inspection.hpp"
#include "Host/Core/Jobs/RunTotals.hpp"
#include "Host/Core/Module/RunContext.hpp"

#include <memory>
#include <vector>

namespace Varnholt::Host {

/// An inspection of the game folder at work on the module's worker; it ends with this object.
/// Module thread.
class Examination {
public:
    /// \param p_Folder,p_EveryFile see `Inspection`
    Examination(RunContext const& p_Context, QString const& p_Folder, bool p_EveryFile);
    ~Examination() { Work->Stop(); }
    Examination(Examination const&) = delete;
    Examination& operator=(Examination const&) = delete;

    bool IsFinished() const { return Work->IsFinished(); }
    /// Once it is finished.
    std::vector<FileFinding> const& Findings() const { return Work->Findings(); }
    /// \param p_Phase as which the job has it
    RunSnapshot Look(RunPhase p_Phase);
    /// Files and bytes that have been compared.
    RunTotals Totals() const;

private:
    std::shared_ptr<Inspection> Work; ///< shared with the worker
    DiskPace Pace;
};

} // namespace Varnholt::Host
