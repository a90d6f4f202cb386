#pragma once

#include <QString>

#include <functional>
#include <memory>

namespace Varnholt::Publisher {

/// Serves the files of a folder over HTTP, whole or by byte ranges, for trials.
class StaticServer {
public:
    /// Gets one line for each answered request: method, path, range or "-", status. Any thread,
    /// several at once.
    using RequestLog = std::function<void(QString const& p_Line)>;

    /// \param p_Log may be empty
    /// \throws Failure when the folder does not exist
    StaticServer(QString const& p_Root, RequestLog p_Log);
    ~StaticServer();
    StaticServer(StaticServer const&) = delete;
    StaticServer& operator=(StaticServer const&) = delete;

    /// \param p_Port 0 chooses a free one
    /// \return the address under which the folder's content is found, ends with "/"
    /// \throws Failure when the port is taken or the address is not this machine's
    QString Listen(QString const& p_Address, int p_Port);

    /// Answers requests until `Stop()` is called and the last answer has ended. After `Listen()`.
    void Run();

    /// Takes no further request and cuts answers short. Any thread; without effect before `Run()`
    /// has started to work.
    void Stop();

private:
    class Implementation;
    std::unique_ptr<Implementation> Details;
};

} // namespace Varnholt::Publisher
