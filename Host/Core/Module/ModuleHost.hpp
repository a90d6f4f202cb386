#pragma once

#include "Host/Core/Jobs/Job.hpp"
#include "Host/Core/Module/AsyncWorker.hpp"
#include "Host/Core/Module/HostCallbacks.hpp"
#include "Host/Core/Module/ModuleInfo.hpp"
#include "Host/Core/Module/ModuleLoader.hpp"
#include "Host/Core/Module/RunContext.hpp"
#include "Host/Core/Module/TransferLedger.hpp"
#include "Host/Core/Network/NetworkDoor.hpp"
#include "Host/Core/Network/OfflineCopies.hpp"
#include "Host/Core/Session/InstallStatus.hpp"
#include "Host/Core/Settings/HostOptions.hpp"
#include "Host/Core/Settings/InstallRecord.hpp"
#include "Host/Core/Trust/TrustRecord.hpp"

#include <QDeadlineTimer>
#include <QObject>
#include <QTimer>

#include <memory>

namespace Varnholt::Host {

/// Everything that lives on the module thread: the module's object, the thread of its closures, and
/// what watches it. `HostSession` is what programs use.
class ModuleHost : public QObject {
    Q_OBJECT

public:
    ModuleHost(HostOptions p_Options, HostSettings& p_Settings);
    ~ModuleHost() override;

    void Load();
    void ReadStatus();
    /// Answered by one `Ended`, also when it is refused.
    void Start(quint64 p_Id, RunRequest const& p_Request);
    void Pause();
    void SetRateLimit(quint64 p_BytesPerSecond);
    /// Tells the run under way, if there is one, what its user wants of it.
    void Tell(void (Job::*p_What)());
    /// \param p_Code see `HostSession`
    void SetLanguage(QString const& p_Code);
    /// What the module asks before it goes on; any thread.
    RunGate& AnyThreadGate() { return Gate; }
    /// Ends what is under way, deletes the module and emits `Closed`.
    void Close();

Q_SIGNALS:
    void Loaded(ModuleInfo p_Info);
    void LoadFailed(Failure p_Failure);
    void StatusRead(InstallStatus p_Status);
    /// A run that can be paused keeps a folder to itself.
    void FolderTaken(quint64 p_Id, QString p_Folder);
    void Progressed(RunSnapshot p_Snapshot);
    void Noticed(Notice p_Notice);
    void Ended(quint64 p_Id, RunResult p_Result);
    void GameStarted(qint64 p_ProcessId);
    void GameEnded(GameEnd p_End);
    void Closed();

private:
    bool IsLoaded() const { return Loader.Application() != nullptr; }
    std::optional<Failure> LoadModule();
    void Assemble();
    QString ModuleFile() const;
    void Refuse(quint64 p_Id, Failure const& p_Failure);
    void OnEnded(RunResult const& p_Result);
    void Turn();
    void OnError(QString const& p_Message);
    void CloseWhenRested();
    void FinishClose();

    HostOptions Options;
    HostSettings& Settings;
    RunGate Gate;
    HostEnvironment Environment;
    OfflineCopies Copies;
    std::unique_ptr<NetworkDoor> Door; ///< null when another session has one; outlives the module
    ModuleLoader Loader;
    GameWatch Games;
    QTimer TurnTimer;
    bool Closing = false;
    QDeadlineTimer CloseDeadline;

    // In the order of their needs; all null until the module is loaded.
    std::unique_ptr<ModuleView> View;
    ModuleInfo Info;
    std::unique_ptr<InstallRecord> Record;
    std::unique_ptr<TrustRecord> Trust;
    std::unique_ptr<AsyncWorker> Worker;
    std::unique_ptr<TransferLedger> Ledger;
    std::unique_ptr<RunContext> Context;

    std::unique_ptr<Job> Current; ///< null between two runs
    quint64 CurrentId = 0;
    /// What a run that failed has queued must not begin behind the user's back.
    bool QueueHeld = false;
};

} // namespace Varnholt::Host
