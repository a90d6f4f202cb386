#pragma once

#include "Publisher/Publication/PublicationObserver.hpp"

#include <QElapsedTimer>

#include <atomic>
#include <mutex>

namespace Varnholt::Publisher {

/// Shows a publication's progress on standard error when that is a terminal, and ends the
/// publication when the program is interrupted.
class BuildProgress : public PublicationObserver {
public:
    BuildProgress();
    /// Removes the progress line.
    ~BuildProgress() override;

    void PhaseStarted(QString const& p_Name, qint64 p_Bytes) override;
    void BytesRead(qint64 p_Bytes) override;
    void Warned(QString const& p_Sentence) override;

private:
    void Show();
    void Clear();

    bool IsTerminal;
    std::atomic<qint64> Read{0};
    std::mutex Mutex; ///< of what follows
    QString Phase;
    qint64 Total = 0;
    QElapsedTimer SinceShown;
};

} // namespace Varnholt::Publisher
