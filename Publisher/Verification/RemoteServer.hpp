#pragma once

#include <QByteArray>
#include <QString>

#include <functional>
#include <memory>

namespace Varnholt::Publisher {

/// What a server has answered.
struct RemoteAnswer {
    int Status = 0;     ///< 0: no answer at all
    QString Error;      ///< empty when the answer came whole
    qint64 Length = -1; ///< Content-Length, -1 without one
    QByteArray Range;   ///< Content-Range
    QByteArray Encoding;

    /// What is wrong with it, null when it came whole with that status.
    QString Problem(int p_Status) const;
};

/// A server as clients see it: redirections are not followed, compression is accepted. One thread.
class RemoteServer {
public:
    using Sink = std::function<void(char const* p_Data, std::size_t p_Bytes)>;

    /// \param p_BaseUrl of http or https; ends in "/"
    /// \throws Failure with the status of a usage error when it is none
    explicit RemoteServer(QString const& p_BaseUrl);
    ~RemoteServer();
    RemoteServer(RemoteServer const&) = delete;
    RemoteServer& operator=(RemoteServer const&) = delete;

    /// \param p_Path behind the base address
    RemoteAnswer Head(QString const& p_Path);
    /// \param p_Range "bytes=1-", empty for the whole file
    RemoteAnswer Get(QString const& p_Path, QByteArray const& p_Range, Sink const& p_Sink);
    /// Gets a small file, uncompressed. p_Body is empty after a failure.
    RemoteAnswer Fetch(QString const& p_Path, QByteArray& p_Body);

private:
    class Implementation;
    std::unique_ptr<Implementation> Details;
};

} // namespace Varnholt::Publisher
