#pragma once

#include "Host/Core/Jobs/InspectionJob.hpp"
#include "Host/Core/Jobs/SizeSurvey.hpp"

#include <memory>

namespace Varnholt::Host {

/// Finds out what an update would fetch.
class CheckJob : public InspectionJob {
public:
    using InspectionJob::InspectionJob;

protected:
    bool LooksAtEveryFile() const override;
    FailureKind Verdict() const override { return FailureKind::UpdateAvailable; }
    void Judge() override;
    void Work() override;
    void OnGaveUp(Failure const& p_Failure) override;
    RunPhase Phase() const override;
    RunSnapshot Look() override;

    /// Called at the end, with findings in the result.
    virtual void Tell();
    /// Puts the room for the findings into the result.
    void MeasureSpace();

private:
    void Conclude();

    std::unique_ptr<SizeSurvey> Survey;
};

} // namespace Varnholt::Host
