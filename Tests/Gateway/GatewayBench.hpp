#pragma once

#include "Host/Gateway/Gateway.hpp"
#include "Tests/Gateway/DoorReader.hpp"
#include "Tests/Support/ScriptedServer.hpp"

#include <QtTest>

#include <functional>
#include <memory>
#include <vector>

namespace Varnholt::TestSupport {

using Gateway::FetchProblem;
using Gateway::PlannedFile;

/// A content server, mirrors and a door in front of them, with times that suit tests.
///
/// Paths are those below a server's base address, without a slash in front.
class GatewayBench {
public:
    using Source = Gateway::Gateway::Source;
    using Documents = Gateway::Gateway::Documents;

    explicit GatewayBench(int p_Mirrors = 2);

    /// Puts a file on every mirror and on the content server.
    void Serve(QString const& p_Path, QByteArray const& p_Bytes);
    /// Lets every server answer so to the first requests of a rule, see `ScriptedServer::Script`.
    void ScriptAll(QString const& p_Rule, Answer const& p_Answer, int p_Times = 1);
    void ScriptMirrorsForEver(QString const& p_Rule, Answer const& p_Answer);
    void ScriptForEver(QString const& p_Rule, Answer const& p_Answer);

    /// Opens the door, begins a run and fetches the host list.
    void Open(Source p_Source = Source::Server, Documents const& p_Copies = {});
    /// Fetches the host list, as each run does at its start.
    DoorReply FetchHosts();

    QByteArray DocumentUrl(QByteArray const& p_Path) const;
    QByteArray ContentUrl(QByteArray const& p_Path) const;
    DoorReply Document(QByteArray const& p_Path) const;
    DoorReply Content(QByteArray const& p_Path, QByteArray const& p_Range = {}) const;
    /// Why a path was not fetched; `Url` is empty when it was.
    FetchProblem ProblemOf(QByteArray const& p_Path) const;

    /// The content server, then the mirrors.
    std::vector<ScriptedServer*> Servers() const;
    /// What every server was asked for of a path, in no order.
    std::vector<RecordedRequest> Requests(QString const& p_Path, QByteArray const& p_Method) const;
    /// Bytes of a path that all servers have sent.
    qint64 SentBytes(QString const& p_Path) const;
    /// Answers of all servers that are under way at the moment.
    int AnswersNow(QByteArray const& p_Method = "GET") const;

    std::unique_ptr<ScriptedServer> Server = std::make_unique<ScriptedServer>();
    std::vector<std::unique_ptr<ScriptedServer>> Mirrors;
    Gateway::GatewayOptions Options;
    std::unique_ptr<Gateway::Gateway> Door;

private:
    QByteArray MirrorUrl; ///< of the door
};

/// What a silence has to last for an answer that a test expects. Short only where it is one: a busy
/// machine's good servers are silent for a second now and then.
inline std::chrono::seconds StallFor(Answer const& p_Answer)
{
    bool const isSilent = p_Answer.IsHeldBeforeHeaders || p_Answer.HeldAfter;
    return std::chrono::seconds{isSilent ? 1 : 30};
}

/// Waits for a condition, as long as a busy machine may need.
inline bool Becomes(std::function<bool()> const& p_Condition)
{
    return QTest::qWaitFor(p_Condition, DoorClient::c_Patience);
}

/// Whether a condition, which must not come true, does so within some time.
inline bool Happens(std::function<bool()> const& p_Condition, int p_Milliseconds = 1000)
{
    return QTest::qWaitFor(p_Condition, p_Milliseconds);
}

/// A file of the plan, from its start.
inline PlannedFile Planned(QByteArray const& p_Path)
{
    return {p_Path.toStdString(), 0, false};
}

/// Bytes of which no two blocks of 4 KiB are alike; fast to make.
QByteArray LargeBytes(int p_Size);

constexpr int c_MiB = 1024 * 1024;

} // namespace Varnholt::TestSupport

Q_DECLARE_METATYPE(Varnholt::Gateway::FetchProblem::Cause)
Q_DECLARE_METATYPE(Varnholt::Gateway::FetchProblem::Type)
