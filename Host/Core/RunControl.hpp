#pragma once

#include "Host/Core/DropWatch.hpp"
#include "Host/Core/FolderLock.hpp"
#include "Host/Core/Inspection.hpp"
#include "Host/Core/MirrorCheck.hpp"
#include "Host/Core/ProgressReader.hpp"
#include "Host/Core/RoomCheck.hpp"
#include "Host/Core/RunContext.hpp"
#include "Host/Core/RunRequest.hpp"
#include "Host/Core/RunResult.hpp"
#include "Host/Core/RunSnapshot.hpp"
#include "Host/Core/SizeSurvey.hpp"
#include "Host/Core/StallWatch.hpp"

#include <QElapsedTimer>
#include <QObject>

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>

namespace Varnholt::Host {

/// Drives the module through one request after another and judges the outcome. Module thread.
///
/// The module starts comparing and downloading as soon as its start-up chain has ended. When
/// something else is wanted, the gate is closed until then: what it starts ends at once, and is
/// replaced by what is wanted.
class RunControl : public QObject {
    Q_OBJECT

public:
    explicit RunControl(RunContext const& p_Context);
    ~RunControl() override;

    /// Nothing happens while another request is under way.
    void Begin(RunRequest const& p_Request);
    /// Called in each turn before the module's closures are run.
    void BeforePump();
    /// Called in each turn after the module's closures were run.
    void AfterPump();
    /// True when the module's closures must not be run: a run was stopped.
    bool HoldsPump() const { return PumpHeld; }

    /// Stops the transfer in flight, or else the next one, until `Continue`.
    void Pause();
    void Continue();
    /// Ends the request under way; nothing that has arrived is lost.
    void Interrupt();

Q_SIGNALS:
    void Progressed(RunSnapshot p_Snapshot);
    /// Something went wrong that the run goes on after.
    void Noticed(QString p_Text);
    void Ended(RunResult p_Result);

private:
    enum class Step { Idle, StartingUp, Settling, Running, Inspecting, BackingOff };

    std::optional<Failure> Preconditions();
    std::optional<Failure> LockFolder(QString const& p_Folder);
    void StartUp();
    void OnConnected();
    std::optional<Failure> BeginInstall();
    void BeginRepair();
    /// Calls p_Next once the module has fallen silent.
    void Settle(std::function<void()> p_Next);
    void Finish();
    void Fail(Failure const& p_Failure);
    void DiscardQueue();
    void End();
    void ShowProgress();
    RunPhase CurrentPhase() const;
    QString Folder() const { return Context.Record.Folder(); }

    // _Pause
    bool IsSuspended() const;
    void StopTransfer();

    // _Commands
    std::optional<Failure> PlayPreconditions();
    std::optional<Failure> UninstallPreconditions();
    void AnswerLocales();
    void BeginUninstall();
    void FinishUninstall(QString const& p_Folder);
    void Play();
    void JudgeLogin(bool p_WasRunning);

    // _Inspection
    static bool IsInspection(RunRequest const& p_Request);
    std::optional<Failure> InspectionPreconditions() const;
    void BeginInspection();
    void Inspect(bool p_EveryFile);
    void OnInspected();
    void OnSized();
    void AskMirrors();
    void OnMirrorsAsked();
    RunSnapshot InspectionSnapshot() const;

    // _Verdict
    void OnQuiet();
    void PassOver(Launcher::ApplicationManifestFileEntry const& p_Entry);
    void Verify();
    std::optional<Failure> LinkFailure() const;

    // _Faults
    void OnStartUpFailed();
    void Retry(Failure const& p_Failure);
    void CheckRoom(RunPhase p_Phase);
    QString VolumeInUse() const;
    void WatchForStall(RunPhase p_Phase);
    void WatchFetches();
    void WatchForDrops(RunPhase p_Phase);
    void GiveUpTransfer(Failure const& p_Failure);
    std::vector<QNetworkReply*> UnfinishedReplies() const;
    void StopSilentReplies();
    void AbandonReplies();
    void CleanMirrors();
    void NoticeRealmList();
    void NoticeOnce(QString const& p_Text);
    std::optional<FetchNote> UnansweredSize() const;
    Failure ExplainFetch(FetchNote const& p_Note) const;
    std::size_t CountMissing() const;

    RunContext Context;
    ProgressReader Reader;
    RoomCheck Room;
    StallWatch Stall;
    DropWatch Drops;
    QElapsedTimer Clock;
    std::unique_ptr<FolderLock> Lock;
    RunRequest Request;
    RunResult Result;
    Step CurrentStep = Step::Idle;
    std::function<void()> AfterSettling;
    /// How far a fetch has come, and since when, as `Clock` has it.
    struct FetchProgress {
        int Bytes = 0;
        qint64 Since = 0;
    };
    std::map<QNetworkReply*, FetchProgress> Fetches;
    std::shared_ptr<Inspection> Examiner; ///< shared with the worker
    std::unique_ptr<SizeSurvey> Survey;
    std::unique_ptr<MirrorCheck> Mirrors;
    bool PumpHeld = false;
    bool Paused = false;
    bool WantsEveryFile = false; ///< the pending lists are not to be trusted
    bool HasInstalled = false;
    int Attempts = 0; ///< repetitions since the last file arrived
    std::size_t LastMissing = 0;
    int Passes = 0;
    QStringList CleanHosts;         ///< the mirrors when they were looked at last
    QSet<QString> CleanDead;        ///< those of them that were out of use
    std::set<QString> PassedOver;   ///< files that could not be begun
    std::optional<Failure> Blocked; ///< why, of the first of them
    int LastDead = 0;               ///< dead mirrors when the pass began
    std::optional<Failure> Pending; ///< why the transfer was stopped, told when it has ended
    std::set<QString> Told;
    RunSnapshot LastSnapshot;
    qint64 LastShown = 0;
    RunPhase LastPhase = RunPhase::Idle;
    qint64 RoomChecked = 0;
};

} // namespace Varnholt::Host
