#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QThread>

#include <condition_variable>
#include <mutex>
#include <thread>

namespace Varnholt::TestSupport {

/// Asks a thread again and again whether it answers, and keeps the longest time that it did not.
class Pulse {
public:
    /// \param p_Watched runs an event loop for as long as this lives
    explicit Pulse(QThread& p_Watched);
    ~Pulse();
    Pulse(Pulse const&) = delete;
    Pulse& operator=(Pulse const&) = delete;

    /// In milliseconds; the question that is open now counts too.
    qint64 LongestSilence() const;

private:
    void Ask();
    void Answer();

    QObject* Answerer; ///< lives on the watched thread
    mutable std::mutex Mutex;
    std::condition_variable Changed;
    QElapsedTimer Asked;
    bool IsAnswered = true;
    bool IsEnded = false;
    qint64 Longest = 0;
    std::thread Asker;
};

} // namespace Varnholt::TestSupport
