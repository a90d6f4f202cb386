#pragma once

#include "Host/Core/Jobs/InspectionJob.hpp"

#include <QElapsedTimer>

namespace Varnholt::Host {

/// Finds out what an update would fetch, and asks servers how much that is.
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
    bool AwaitsSizes();
    void LearnSizes();

    bool AsksSizes = false;
    QElapsedTimer SinceAnswer;
    quint32 Answered = 0; ///< findings, with a size or without
};

} // namespace Varnholt::Host
