#pragma once

#include "Tests/Support/Answer.hpp"
#include "Tests/Support/RecordedRequest.hpp"

#include <QByteArray>
#include <QString>

#include <memory>
#include <vector>

namespace Varnholt::TestSupport {

/// An HTTP/1.1 server on a loopback port that serves bytes from memory, misbehaves as it is told
/// and records every request; one that is asked for the same without end ends the program. It runs
/// on a thread of its own, so that it answers while the test's thread blocks. Every member function
/// is to be called on the test's thread.
///
/// \code
/// ScriptedServer server;
/// server.Serve("/file", bytes);
/// server.Script("/file").Then(Answer::Truncated(100)).Then(Answer::Status(500));
/// \endcode
/// When a script is used up, the file is served normally.
class ScriptedServer {
public:
    /// The script of one path.
    class PathScript {
    public:
        PathScript(ScriptedServer& p_Server, QString const& p_Path)
            : Server(p_Server)
            , Path(p_Path)
        {
        }
        PathScript& Then(Answer const& p_Answer);
        PathScript& Then(Answer const& p_Answer, int p_Times);
        /// Answers so for ever when the script is used up.
        void Always(Answer const& p_Answer);

    private:
        ScriptedServer& Server;
        QString Path;
    };

    /// Listens on a free port; fails the whole program when there is none.
    explicit ScriptedServer(QString const& p_Address = QStringLiteral("127.0.0.1"));
    ~ScriptedServer();
    ScriptedServer(ScriptedServer const&) = delete;
    ScriptedServer& operator=(ScriptedServer const&) = delete;

    /// "127.0.0.1:4711", as a list of mirrors names it.
    QString Host() const;
    /// "http://127.0.0.1:4711/"
    QString BaseUrl() const;
    /// The address of a path that begins with "/".
    QString Url(QString const& p_Path) const;
    /// The address of a port that nothing listens on.
    static QString RefusingUrl(QString const& p_Path);

    /// Makes this the module's default content server as long as it lives.
    void BecomeDefaultContentServer();

    void Serve(QString const& p_Path, QByteArray const& p_Bytes);
    void Remove(QString const& p_Path);
    /// Adds to the script of a path; "*" is for every path without answers of its own, "HEAD /a"
    /// and "HEAD *" for one method only.
    PathScript Script(QString const& p_Path);
    void ClearScript(QString const& p_Path);
    /// Lets so many answers that wait for the path's gate, now or later, go on.
    void OpenGate(QString const& p_Path, int p_Times = 1);

    std::vector<RecordedRequest> Requests() const;
    std::vector<RecordedRequest> Requests(QString const& p_Path) const;
    int Count(QString const& p_Path) const;
    /// Requests of a path that its script has answered so far; not forgotten with the script.
    int ScriptedAnswers(QString const& p_Path) const;
    /// Body bytes of a path that were handed to the network, all answers together.
    qint64 BodyBytes(QString const& p_Path) const;
    /// Requests of a method that are being answered at the moment: until the last byte has been
    /// handed to the network.
    int AnswersNow(QByteArray const& p_Method = "GET") const;
    /// As many as were at the same time so far.
    int MostAnswers(QByteArray const& p_Method = "GET") const;
    /// Connections that are open at the moment.
    int OpenConnections() const;

    /// Accepts no more connections and closes those there are.
    void Stop();
    /// Is there again, at the same address.
    void Restart();

private:
    class Listener;
    struct Core;
    std::unique_ptr<Core> Inner;
};

} // namespace Varnholt::TestSupport
