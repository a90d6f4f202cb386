#pragma once

#include <QByteArray>

#include <atomic>
#include <functional>
#include <utility>
#include <vector>

namespace Varnholt::TestSupport {

struct DoorRequest {
    QByteArray Url;        ///< "http://127.0.0.1:4711/a"
    QByteArray Range = {}; ///< "bytes=5-"
    QByteArray Method = "GET";
    QByteArray Target = {}; ///< instead of the address's own path
};

struct DoorReply {
    int Status = 0; ///< 0: no answer
    std::vector<std::pair<QByteArray, QByteArray>> Headers;
    QByteArray Body;
    bool IsWhole = false; ///< nothing is missing of what was announced

    /// The header's value; null when there is none. Names are compared without letter case.
    QByteArray Header(QByteArray const& p_Name) const;
};

/// A client of plain sockets: it sends what it is told to, odd requests too, and hides nothing of
/// the answer. It keeps its connection from one request to the next.
class DoorClient {
public:
    /// What takes the bytes of a body instead of `DoorReply::Body`; the client reads no further
    /// until it returns.
    using Sink = std::function<void(QByteArray const& p_Bytes)>;
    /// Without a byte for so long, an answer is taken for ended.
    static constexpr int c_Patience = 60000;

    explicit DoorClient(Sink p_Sink = {});
    ~DoorClient();
    DoorClient(DoorClient const&) = delete;
    DoorClient& operator=(DoorClient const&) = delete;

    /// \return false when nobody listens
    bool Connect(QByteArray const& p_Url);
    bool Send(QByteArray const& p_Bytes);
    /// Waits for the whole answer.
    DoorReply Ask(DoorRequest const& p_Request);
    /// Ends the connection and an `Ask` that waits, for good; may be called on any thread.
    void Abandon();

private:
    DoorReply ReadReply(bool p_HasBody);
    bool ReadHead(DoorReply& p_Reply);
    bool ReadBody(DoorReply& p_Reply);
    bool ReadChunks(DoorReply& p_Reply);
    bool ReadBytes(DoorReply& p_Reply, qint64 p_Bytes);
    bool ReadLine(QByteArray& p_Line);
    bool ReadMore();
    void Close();

    Sink const Take;
    QByteArray Input;
    bool IsUsable = false; ///< for one more request
    std::atomic<int> Socket{-1};
    std::atomic<bool> IsAbandoned{false};
};

/// One request on a connection of its own.
DoorReply AskDoor(DoorRequest const& p_Request);

} // namespace Varnholt::TestSupport
