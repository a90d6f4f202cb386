#include "Tests/Faults/Pulse.hpp"

#include <algorithm>
#include <chrono>

namespace Varnholt::TestSupport {

Pulse::Pulse(QThread& p_Watched)
    : Answerer(new QObject)
{
    Answerer->moveToThread(&p_Watched);
    Asker = std::thread([this] { Ask(); });
}

Pulse::~Pulse()
{
    {
        std::lock_guard<std::mutex> const lock(Mutex);
        IsEnded = true;
    }
    Changed.notify_all();
    Asker.join();
    Answerer->deleteLater();
}

void Pulse::Ask()
{
    constexpr std::chrono::milliseconds c_Pause(2);

    std::unique_lock<std::mutex> lock(Mutex);
    while (!IsEnded) {
        IsAnswered = false;
        Asked.start();
        QMetaObject::invokeMethod(
            Answerer, [this] { Answer(); }, Qt::QueuedConnection);
        // The end waits for the answer too: it would come to an object that is gone.
        Changed.wait(lock, [this] { return IsAnswered; });
        Changed.wait_for(lock, c_Pause, [this] { return IsEnded; });
    }
}

void Pulse::Answer()
{
    std::lock_guard<std::mutex> const lock(Mutex);
    Longest = std::max(Longest, Asked.elapsed());
    IsAnswered = true;
    Changed.notify_all(); // under the lock: behind it all of this may be gone
}

qint64 Pulse::LongestSilence() const
{
    std::lock_guard<std::mutex> const lock(Mutex);
    return IsAnswered ? Longest : std::max(Longest, Asked.elapsed());
}

} // namespace Varnholt::TestSupport
