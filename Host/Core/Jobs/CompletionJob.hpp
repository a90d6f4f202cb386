#pragma once

#include "Host/Core/Jobs/FaultWatch.hpp"
#include "Host/Core/Jobs/Inspection.hpp"
#include "Host/Core/Jobs/Job.hpp"

#include <limits>
#include <memory>
#include <optional>
#include <set>

namespace Varnholt::Host {

/// A job at whose end every file of the build is in place: what an install, an update and a repair
/// have in common. The module compares and downloads in passes; when it falls silent, this finds
/// out where it stopped, and what is to be done about it.
///
///        BeginFiles ─► the module works ─► OnQuiet ─┬─ a file could not be begun ─► PassOver
///        ▲                                          └─ Verify ─┬─ all is there ─► Complete
///        └──────────── once more may help ─────────────────────┴─ Fail
class CompletionJob : public Job {
public:
    using Job::Job;

    void BeforeQueue() override;
    bool HoldsQueue() const override;
    void Pause() override;
    void Continue() override;

protected:
    void OnBuildKnown() override;
    void Work() override;
    RunPhase Phase() const override;
    RunSnapshot Look() override;
    void Release() override { Result.Space = Faults.Space(); }
    bool ProvesGame() const override { return !Result.IsRepairStopped; }

    /// Called when the build is known and can be had.
    virtual void BeginFiles() = 0;
    /// Lets the module look at every file, whatever its pending lists say.
    void CompareEverything();
    /// The pending lists are not to be trusted: a run was not finished, or they are of another
    /// build.
    void DistrustLists() { WantsEveryFile = true; }
    bool TrustsLists() const { return !WantsEveryFile; }
    /// Leaves the files to the module's ordinary comparison, which is not repeated.
    void AbortRepair();

private:
    /// Tells the door which files the module is going to ask for, when that is another list than at
    /// the look before.
    void LookAtPlan();
    bool IsSuspended() const;
    void OnQuiet();
    void PassOver(Launcher::ApplicationManifestFileEntry const& p_Entry);
    void Verify();
    void OnExamined();
    void Complete();
    /// Puts a finding for each into the result. \return the one failure that sums them up
    Failure Explain(FaultWatch::Entries const& p_Missing);

    FaultWatch Faults{Context, Reader};
    std::shared_ptr<Inspection> Examined;
    std::optional<ModuleView::ListMark> Planned; ///< the list that the door knows
    bool Paused = false;
    bool WantsEveryFile = false;
    std::size_t LastMissing = std::numeric_limits<std::size_t>::max();
    int Passes = 0;
    std::set<QString> PassedOver;   ///< files that could not be begun
    std::optional<Failure> Blocked; ///< why, of the first of them
    std::size_t LastBehind = 0;     ///< servers that had fallen behind when the pass began
};

} // namespace Varnholt::Host
