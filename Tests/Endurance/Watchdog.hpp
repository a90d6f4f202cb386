#pragma once

#include <QElapsedTimer>
#include <QString>

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

namespace Varnholt::TestSupport {

/// Ends the program with a description when a call does not return. A detector of hangs only: its
/// limit is far above what any call takes on a busy machine.
class Watchdog {
public:
    /// \param p_Describe called on the watchdog's thread while the call hangs
    explicit Watchdog(std::function<QString()> p_Describe);
    ~Watchdog();
    Watchdog(Watchdog const&) = delete;
    Watchdog& operator=(Watchdog const&) = delete;

    /// Makes a call under watch.
    void Watch(QString const& p_Name, std::function<void()> const& p_Call);

private:
    void Look();

    std::function<QString()> Describe;
    std::mutex Mutex;
    std::condition_variable Changed;
    QString Name; ///< of the call that is being made; null: none
    QElapsedTimer Since;
    bool Ended = false;
    std::thread Thread;
};

} // namespace Varnholt::TestSupport
