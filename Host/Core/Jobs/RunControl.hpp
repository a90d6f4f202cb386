#pragma once

#include "Host/Core/Folder/FolderLock.hpp"
#include "Host/Core/Jobs/Inspection.hpp"
#include "Host/Core/Jobs/MirrorCheck.hpp"
#include "Host/Core/Jobs/ProgressReader.hpp"
#include "Host/Core/Jobs/RoomCheck.hpp"
#include "Host/Core/Jobs/RunContext.hpp"
#include "Host/Core/Jobs/RunRequest.hpp"
#include "Host/Core/Jobs/RunResult.hpp"
#include "Host/Core/Jobs/RunSnapshot.hpp"
#include "Host/Core/Jobs/SizeSurvey.hpp"
#include "Host/Core/Network/DownloadPlan.hpp"

#include <QElapsedTimer>
#include <QObject>

#include <functional>
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
    /// Ends what the module is asking for.
    void AbandonReplies();

Q_SIGNALS:
    void Progressed(RunSnapshot p_Snapshot);
    /// Something went wrong that the run goes on after.
    void Noticed(QString p_Text);
    void Ended(RunResult p_Result);

private:
    enum class Step { Idle, StartingUp, Settling, Running, Inspecting };

    static bool Completes(RunRequest const& p_Request);
    static bool Records(RunRequest const& p_Request);
    std::optional<Failure> Preconditions();
    std::optional<Failure> LockFolder(QString const& p_Folder);
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

    // _StartUp
    std::optional<Failure> OfflinePreconditions() const;
    void OpenDoor();
    void StartUp();
    void OnStartUpFailed(Failure const& p_Failure);
    Failure StartUpFailure() const;
    Failure NothingKept() const;
    void NoticeHostList();
    void NoticeCopies();
    QString VersionFile() const;
    QString ManifestFile(QString const& p_Build) const;
    void AskForVersion();
    void OnVersion(Gateway::Reply const& p_Reply);

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
    void LookAtSizes();
    void TellUpdate();
    void AskMirrors();
    void OnMirrorsAsked();
    RunSnapshot InspectionSnapshot() const;

    // _Verdict
    void OnQuiet();
    void PassOver(Launcher::ApplicationManifestFileEntry const& p_Entry);
    void Verify();
    std::optional<Failure> LinkFailure() const;

    // _Faults
    void OnGaveUp(Failure const& p_Failure);
    void CheckRoom(RunPhase p_Phase);
    QString VolumeInUse() const;
    void NoticeRealmList();
    void NoticeOnce(QString const& p_Text);
    std::size_t ServersBehind() const;
    Failure LatestFailure() const;

    RunContext Context;
    ProgressReader Reader;
    RoomCheck Room;
    DownloadPlan Plan;
    QElapsedTimer Clock;
    std::unique_ptr<FolderLock> Lock;
    RunRequest Request;
    RunResult Result;
    Step CurrentStep = Step::Idle;
    std::function<void()> AfterSettling;
    std::shared_ptr<Inspection> Examiner; ///< shared with the worker
    std::unique_ptr<SizeSurvey> Survey;
    std::unique_ptr<MirrorCheck> Mirrors;
    std::unique_ptr<QObject> Asking; ///< of a quick check; its end is the question's
    bool PumpHeld = false;
    bool Paused = false;
    bool WantsEveryFile = false; ///< the pending lists are not to be trusted
    bool HasInstalled = false;
    std::size_t LastMissing = 0;
    int Passes = 0;
    std::set<QString> PassedOver;   ///< files that could not be begun
    std::optional<Failure> Blocked; ///< why, of the first of them
    std::size_t LastBehind = 0;     ///< servers that had fallen behind when the pass began
    OfflineCopies::Documents Kept;  ///< that the run may go on from
    bool MayUseKept = false;        ///< once the servers have failed
    bool UsesKept = false;          ///< no server is asked
    std::optional<Failure> Missed;  ///< why, when they were to be asked
    std::set<QString> Told;
    RunSnapshot LastSnapshot;
    qint64 LastShown = 0;
    RunPhase LastPhase = RunPhase::Idle;
    qint64 RoomChecked = 0;
};

} // namespace Varnholt::Host
