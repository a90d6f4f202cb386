#pragma once

#include "Host/Core/Jobs/Inspection.hpp"
#include "Host/Core/Jobs/Job.hpp"

#include <memory>

namespace Varnholt::Host {

/// A job that compares the game folder with the build and changes nothing.
class InspectionJob : public Job {
public:
    using Job::Job;

protected:
    std::optional<Failure> Prepare() override { return GameFailure(); }
    void OnBuildKnown() override;
    void Work() override;
    RunPhase Phase() const override;
    RunSnapshot Look() override;
    RunTotals Count() const override { return Examined ? Examined->Totals() : RunTotals(); }
    bool MovesBytes() const override { return Examined && !IsJudged; }

    virtual RunPhase WorkPhase() const { return RunPhase::Comparing; }
    /// The folder that is looked at; ends in "/".
    virtual QString Where() const { return Folder(); }
    /// Whether what earlier runs have verified and listed is not to be trusted.
    virtual bool LooksAtEveryFile() const = 0;
    /// What to call it when files are not as the build wants them.
    virtual FailureKind Verdict() const = 0;
    /// Called with the findings in the result, when there are some.
    virtual void Judge() = 0;

private:
    void Explain(FileFinding& p_Finding) const;

    std::shared_ptr<Inspection> Examined;
    bool IsJudged = false;
};

} // namespace Varnholt::Host
