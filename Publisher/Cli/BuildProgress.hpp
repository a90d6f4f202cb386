#pragma once

#include "Publisher/Publication/PublicationObserver.hpp"

#include <QElapsedTimer>

#include <atomic>
#include <mutex>

namespace Varnholt::Publisher {

/// Tells how a command stands and what it warns of: on standard error, progress only when that is a
/// terminal, or in objects on standard output. Ends the command when the program is interrupted.
class BuildProgress : public PublicationObserver {
public:
    /// \param p_Json in objects
    explicit BuildProgress(bool p_Json);
    /// Removes the progress line.
    ~BuildProgress() override;

    void PhaseStarted(QString const& p_Name, qint64 p_Bytes) override;
    void BytesRead(qint64 p_Bytes) override;
    void Warned(QString const& p_Sentence) override;

private:
    void Show();
    void ShowRest();
    void Clear();

    bool Json;
    bool IsShown;
    std::atomic<qint64> Read{0};
    std::mutex Mutex; ///< of what follows
    QString Phase;
    qint64 Total = 0;
    qint64 Shown = 0;
    QElapsedTimer SinceShown;
};

} // namespace Varnholt::Publisher
