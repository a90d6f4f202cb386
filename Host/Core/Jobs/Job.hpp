#pragma once

#include "Host/Core/Failures/Notice.hpp"
#include "Host/Core/Folder/FolderLock.hpp"
#include "Host/Core/Jobs/ProgressReader.hpp"
#include "Host/Core/Jobs/RunRequest.hpp"
#include "Host/Core/Jobs/RunResult.hpp"
#include "Host/Core/Jobs/RunSnapshot.hpp"
#include "Host/Core/Module/RunContext.hpp"

#include <QElapsedTimer>
#include <QObject>

#include <functional>
#include <memory>
#include <optional>
#include <set>

namespace Varnholt::Host {

/// One thing that a host does with a module. A job is made for one request, tells once by `Ended`
/// what has come of it, and is deleted then. Module thread.
///
///   Begin ─ Prepare ── failure ──────────────────────────────────────────┐
///              │ Start                                                   │
///              ▼                                                         │
///          StartingUp ──── no build ──► from what is kept? ── no ──────► │
///              │    ▲                        │ yes                       │
///              │    └────────────────────────┘                           │
///              │ OnBuildKnown                                            ▼
///              ├───► Settling ── the module is silent ──┐              Ended
///              ▼                                        ▼                ▲
///           Working ◄───────────────────────────────────┘                │
///              │ Work, in each turn                                      │
///              └──── Finish, Fail, Interrupt, OnGaveUp ──────────────────┘
///
/// The module starts comparing and downloading as soon as its start-up chain has ended. When
/// something else is wanted, the gate is closed until then: what it starts ends at once, and is
/// replaced by what is wanted.
class Job : public QObject {
    Q_OBJECT

public:
    /// What is to be known of a job beforehand; none or several.
    enum Trait : unsigned {
        NeedsServers = 1, ///< it is refused offline
        UsesCopies = 2,   ///< it goes on with what is kept of a build when the servers fail
        IsPreview = 4,    ///< the module shall see no installation, see `RunGate`
        CanPause = 8,
        Records = 16, ///< what it does must be known to the next one
    };

    Job(RunContext const& p_Context, RunRequest p_Request, unsigned p_Traits);
    ~Job() override;

    void Begin();
    bool Is(Trait p_Trait) const { return (Traits & p_Trait) != 0; }
    /// Called in each turn before the module's closures are run.
    virtual void BeforeQueue() {}
    /// Called in each turn after the module's closures were run.
    void AfterQueue();
    /// True when the module's closures must not be run.
    virtual bool HoldsQueue() const { return false; }

    /// Stops the transfer in flight, or else the next one, until `Continue`.
    virtual void Pause() {}
    virtual void Continue() {}
    /// Leaves a repair to the ordinary comparison.
    virtual void StopRepair() {}
    /// Ends the run; nothing that has arrived is lost.
    virtual void Interrupt();

Q_SIGNALS:
    void Progressed(RunSnapshot p_Snapshot);
    /// The run keeps this folder to itself until its end.
    void FolderTaken(QString p_Folder);
    /// Something went wrong that the run goes on after.
    void Noticed(Notice p_Notice);
    void Ended(RunResult p_Result);

protected:
    /// Called first. \return why the request cannot be met; nothing has been changed then
    virtual std::optional<Failure> Prepare() = 0;
    /// Called when the door is open.
    virtual void Start() { StartUp(); }
    /// Called when the build is known, and perhaps the module at work already.
    virtual void OnBuildKnown() = 0;
    /// Called in each turn once the module has started.
    virtual void Work() {}
    /// Called when nothing has come through the door for as long as is allowed.
    virtual void OnGaveUp(Failure const& p_Failure);
    /// The phase, and a snapshot of it.
    virtual RunPhase Phase() const { return RunPhase::Connecting; }
    virtual RunSnapshot Look() { return Reader.Read(Phase()); }
    /// Files and bytes that have been fetched until now, or compared; the rest is left at 0.
    virtual RunTotals Count() const;
    /// Whether bytes move at the moment, for the average rate.
    virtual bool MovesBytes() const { return IsDownloading(Phase()); }
    /// Called at the end.
    virtual void Release() {}

    /// Whether the module has fallen silent. It does not tell when it is done, nor when a server
    /// gave no answer or a file could not be opened. Called once in each turn. \return true when
    /// nothing has been queued, running or in flight for two turns: what one has finished may have
    /// posted work
    bool IsSilent();
    /// Counts the turns anew.
    void AwaitSilence() { SilentTurns = 0; }
    /// Calls p_Next once the module has fallen silent.
    void Settle(std::function<void()> p_Next);
    void Finish();
    void Fail(Failure const& p_Failure);
    /// Ends the run: what has come is not what the publisher has signed. Nothing else does for it.
    void Distrust(Failure const& p_Failure);
    /// Whether its success tells that every file of the game is what the build wants.
    virtual bool ProvesGame() const { return false; }
    void NoticeOnce(Notice const& p_Notice);
    bool IsOver() const { return Over; }
    bool IsWorking() const { return State == Step::Working; }
    QString Folder() const { return Context.Record.Folder(); }
    /// Fails when the build, which is known, holds nothing; tells when it lacks the language.
    bool CanUseBuild();
    /// Why the game is not there, or cannot be had for this run alone.
    std::optional<Failure> GameFailure() const;
    std::optional<Failure> LockFolder(QString const& p_Folder);
    void RemoveLockFile();
    /// A game whose files are partly elsewhere, where the module leaves them alone, is not
    /// complete.
    std::optional<Failure> LinkFailure(QString const& p_Folder) const;

    // _StartUp
    void StartUp();
    /// Opens the module's gate at once: it goes on behind its start as it would by itself.
    void LetChainGoOn() { ChainGoesOn = true; }
    bool IsFromCopies() const { return UsesKept; }
    OfflineCopies::Documents const& KeptDocuments() const { return Kept; }
    Failure NothingKept() const;
    /// Reads the build that a version file names. \return why it names none
    std::optional<Failure> ReadBuild(std::string const& p_VersionFile, QString& p_Build) const;
    QString VersionFile() const;
    QString ManifestFile(QString const& p_Build) const;
    /// Of the run's documents; null when every one is believed.
    TrustJudge* Verifier() const { return Trusted.get(); }
    /// The latest thing that went wrong on the network.
    Failure LatestFailure() const;
    void NoticeRealmList();
    /// Asks a server one question past the module. \param p_OnReply not called once the job is over
    void Ask(Gateway::Question p_Question, std::function<void(Gateway::Reply const&)> p_OnReply);

    RunContext Context;
    RunRequest Request;
    RunResult Result;
    ProgressReader Reader;

private:
    enum class Step { StartingUp, Settling, Working };

    void Go();
    void End();
    void ShowProgress();
    void Measure();

    // _StartUp
    void OpenDoor();
    void OpenDoor(Gateway::Gateway::Source p_Source);
    void OnConnected();
    void OnStartUpFailed(Failure const& p_Failure);
    Failure StartUpFailure() const;
    void NoticeHostList();
    void NoticeCopies();

    unsigned Traits;
    Step State = Step::Working;
    bool Over = false;
    bool ChainGoesOn = false;
    int SilentTurns = 0;
    std::function<void()> AfterSettling;
    std::unique_ptr<FolderLock> Lock;
    std::set<QString> Told;
    std::shared_ptr<TrustJudge> Trusted;
    OfflineCopies::Documents Kept; ///< that the run may go on from
    bool MayUseKept = false;       ///< once the servers have failed
    bool UsesKept = false;         ///< no server is asked
    std::optional<Failure> Missed; ///< why, when they were to be asked
    QElapsedTimer Clock;
    quint32 TransfersBefore = 0; ///< that the ledger had counted when the run began
    qint64 Measured = 0;         ///< when the totals were measured; of the clock
    qint64 Moving = 0;           ///< milliseconds in which bytes moved
    qint64 LastShown = 0;
    RunPhase LastPhase = RunPhase::Idle;
    RunSnapshot LastSnapshot;
};

/// Makes a job of one kind.
using JobMaker = std::unique_ptr<Job> (*)(RunContext const&, RunRequest const&, unsigned p_Traits);

template <typename Which>
std::unique_ptr<Job> MakeJob(RunContext const& p_Context, RunRequest const& p_Request,
                             unsigned p_Traits)
{
    return std::make_unique<Which>(p_Context, p_Request, p_Traits);
}

} // namespace Varnholt::Host
