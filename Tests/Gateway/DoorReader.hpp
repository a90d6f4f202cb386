#pragma once

#include "Tests/Gateway/DoorClient.hpp"

#include <atomic>
#include <thread>

namespace Varnholt::TestSupport {

/// A request that is made on a thread of its own, so that the test can look on.
class DoorReader {
public:
    explicit DoorReader(DoorRequest const& p_Request, DoorClient::Sink p_Sink = {})
        : Client([this, p_Sink](QByteArray const& p_Bytes) {
            if (p_Sink)
                p_Sink(p_Bytes);
            else
                Body += p_Bytes;
            Bytes += p_Bytes.size();
        })
        , Thread([this, p_Request] {
            Answer = Client.Ask(p_Request);
            Done = true;
        })
    {
    }
    ~DoorReader()
    {
        Client.Abandon();
        if (Thread.joinable())
            Thread.join();
    }
    DoorReader(DoorReader const&) = delete;
    DoorReader& operator=(DoorReader const&) = delete;

    bool IsDone() const { return Done; }
    /// Bytes of the body so far.
    qint64 Received() const { return Bytes; }
    void Abandon() { Client.Abandon(); }
    /// Waits for the end.
    DoorReply const& Reply()
    {
        if (Thread.joinable()) {
            Thread.join();
            Answer.Body = Body;
        }
        return Answer;
    }

private:
    QByteArray Body; ///< of the thread, until it has ended
    std::atomic<qint64> Bytes{0};
    std::atomic<bool> Done{false};
    DoorReply Answer;
    DoorClient Client;
    std::thread Thread;
};

} // namespace Varnholt::TestSupport
