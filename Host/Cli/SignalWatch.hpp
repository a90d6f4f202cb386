#pragma once

#include <QObject>
#include <QSocketNotifier>

#include <array>
#include <csignal>

namespace Varnholt::Host {

/// Turns the signals of the system into those of Qt as long as it lives. One at a time in a
/// process.
///
/// A second request to end does not wait for the first one's outcome: it ends the program at once,
/// with `c_Status`.
class SignalWatch : public QObject {
    Q_OBJECT

public:
    static constexpr int c_Status = 130; ///< that an interrupted program ends with

    explicit SignalWatch(QObject* p_Parent = nullptr);
    ~SignalWatch() override;

    /// True from the first request to end on, also before `EndRequested` was delivered.
    static bool IsEndRequested();

Q_SIGNALS:
    void EndRequested();    ///< SIGINT, SIGTERM or SIGHUP
    void ToggleRequested(); ///< SIGUSR1

private:
    void Deliver();

    static constexpr int c_Signals[] = {SIGINT, SIGTERM, SIGHUP, SIGUSR1};

    int Pipe[2] = {-1, -1};
    std::array<struct sigaction, std::size(c_Signals)> Former{}; ///< the handlers before
    QSocketNotifier* Notifier = nullptr;
};

} // namespace Varnholt::Host
