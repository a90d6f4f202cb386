#pragma once

#include "Host/Core/Session/HostSession.hpp"
#include "Tests/Host/HostGame.hpp"
#include "Tests/Support/LogCapture.hpp"

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace Varnholt::TestSupport {

using RequestType = Host::RunRequest::Type;

/// A game with a session of this process, and everything that the session has said.
class SessionGame : public HostGame {
public:
    /// The options are those of a plain start with short pauses; a test may change them until it
    /// opens the session.
    SessionGame();
    ~SessionGame();

    /// Begins the session, after the end of the one before. \return true when the module is loaded
    bool Open();
    /// Ends the session, as a program that quits.
    void Close();
    Host::HostSession& Session() { return *Current; }

    void Start(RequestType p_Kind, QString const& p_Argument = {});
    void Start(Host::RunRequest const& p_Request);
    /// Starts, waits for the end and tells how it ended: "done", or the identifier of the failure.
    QString Run(RequestType p_Kind, QString const& p_Argument = {});
    QString Run(Host::RunRequest const& p_Request);
    /// Waits for the end of what was started; tells how it ended, or "still" and the phase.
    QString End();
    /// A check of the build's number only.
    static Host::RunRequest QuickCheck();
    /// Installs into the folder. \return how it ended
    QString Install() { return Run(RequestType::Install, Folder); }
    /// The same though it holds other files.
    QString InstallOver();
    Host::InstallStatus Status();

    /// Handles events until the condition holds. \return false when it never did
    [[nodiscard]] bool WaitUntil(std::function<bool()> const& p_Condition);
    [[nodiscard]] bool WaitForPhase(Host::RunPhase p_Phase);
    /// Waits until a download shows so many bytes as done.
    [[nodiscard]] bool WaitForBytes(quint64 p_Bytes);
    /// Waits until a transfer has put so many bytes of a file on the disk.
    [[nodiscard]] bool WaitForPart(QString const& p_File, qint64 p_Bytes);

    /// Of the last run that ended.
    Host::RunResult const& Result() const { return Results.back(); }
    /// Of its failure; empty when there was none, or no end.
    QString Sentence() const;
    /// The phases since the last start, each as often as it was entered.
    std::vector<Host::RunPhase> Phases() const;
    /// Whether a snapshot since the last start told that a server is waited for, and why.
    bool HasWaitedFor(QString const& p_Cause) const;
    /// Forgets all that was said.
    void Forget();

    Host::HostOptions Options;
    LogCapture Log;
    std::vector<Host::RunSnapshot> Snapshots; ///< since the last start
    std::vector<Host::RunResult> Results;
    std::vector<quint64> EndedIds; ///< of the requests, beside `Results`
    std::vector<Host::InstallStatus> Statuses;
    QStringList Notices; ///< their texts
    std::vector<Host::Notice> NoticeValues;
    std::optional<Host::ModuleInfo> Info;
    std::optional<Host::Failure> OpenFailure;

private:
    void Listen();

    std::unique_ptr<Host::HostSession> Current;
};

} // namespace Varnholt::TestSupport
