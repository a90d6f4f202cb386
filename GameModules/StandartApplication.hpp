#pragma once

#include "GameModules/LinkWatch.hpp"
#include "GameModules/ResumeGate.hpp"
#include "GameModules/TransferSlot.hpp"
#include "Launcher/Application/Application.hpp"
#include "Launcher/Application/ApplicationManifest.hpp"

#include <QFileDevice>
#include <QMutex>
#include <QString>
#include <QStringList>

#include <atomic>
#include <functional>
#include <optional>
#include <vector>

namespace Varnholt::Launcher {

class ManifestComparison;

/// The standard install, update and launch of a game, shared by the game modules.
///
/// The members stand in the order of a run:
/// \verbatim
///   Init() ─► version file ─► manifest ─► mirrors            application thread
///                                           │
///   Install(), Repair(), AbortRepair() ─► OnManifestReceived()
///                                           │
///             comparison of the base files  │                worker
///          ┌── none to fetch ───────────────┤
///          │      CheckStartDownload: waits for host and game
///          │      RequestBaseSizes: every file's size        application thread
///          │      BeginBaseFiles: file after file
///          └──────────────────────────────► │
///             CompareStreamed: comparison, sizes             worker
///             BeginStreamedFiles: file after file            application thread
///             EndRun
/// \endverbatim
///
/// A run brings one list of files down, base or streamed; there is one run at a time. Each step
/// carries the id of its run. `OnManifestReceived()` begins a new one, as does the change to the
/// streamed files, and what is left of the older run then ends quietly wherever it is: closures
/// return, its transfer is stopped, its completion is dropped. `RunMutex` guards what a worker and
/// the application thread share; it is never held while the network, the disk, the log or the host
/// is waited for.
class StandartApplication : public Application {
    Q_OBJECT

public:
    using RunId = quint64;
    using Entries = std::vector<ApplicationManifestFileEntry>;
    /// A step of a run; does nothing when the run has been replaced.
    using RunStep = void (StandartApplication::*)(RunId);

    StandartApplication(QString const& p_Name, QString const& p_AppId);
    /// Stops the transfers and waits for it: they signal on threads of their own.
    ~StandartApplication() override;

    // Construction and settings ____________________________________________________________

    void Uninit() override;
    /// Reads the host's setting into `InstallationPath` and returns it. Any thread.
    QString GetInstallationPath();
    /// Whether the host's settings know the game as installed. Any thread.
    bool IsInstalled();

    // _Startup _____________________________________________________________________________

    void Init() override;

    // _Comparison __________________________________________________________________________

    /// Begins a run: settles the folder and queues the comparison of the base files. Returns at
    /// once. Application thread.
    void OnManifestReceived();

    // _Phases: the steps of the current run, under the names that hosts know _______________

    void OnManifestReceived_CheckStartDownload();
    void OnManifestReceived_StartDownload();
    void ProcessContentDownload();
    /// \param p_Wait true: wait for host and game before fetching
    void ProcessStreamedContentDownload(bool p_Wait);
    void StartStreamedContentDownload(bool p_Wait);
    void StartStreamedContentDownload_CheckStartDownload();
    void AfterProcessStreamedContentDownload();

public Q_SLOTS:
    // _Completion; called on the application thread, queued from the download thread.

    /// Called when bytes have arrived.
    void App_OnHTTPDownloadProgressUpdate(HTTP_DownloadFileRequest* p_Request);
    /// Called once at the end of a transfer: verifies, places or retries the file, starts the next.
    void App_OnHTTPDownloadProgressComplete(HTTP_DownloadFileRequest* p_Request);
    /// Called when a transfer goes on with a new request.
    void App_OnHTTPDownloadRestarted(HTTP_DownloadFileRequest* p_Request);

public:
    // _Lifecycle ___________________________________________________________________________

    void Install(QString const& p_Path, bool p_Flag) override;
    void Repair() override;
    void AbortRepair() override;
    void Uninstall(bool p_Flag) override;

    // _Suspend _____________________________________________________________________________

    void SuspendDownload() override;
    void ResumeDownload() override; ///< also called on the worker, by its own poll

    // _Launch ______________________________________________________________________________

    bool IsGameRunning() override;
    bool Start(QString p_Login, QString p_Password) override;
    /// Gives the manifest's files the permissions that their flags ask for. Application thread.
    void FixPermissions();

    // _Language ____________________________________________________________________________

    std::vector<ApplicationManifestLocale> GetAvailableLocales() const override;
    QString GetAppLocale() override;
    /// See `TextFilePatch::Apply`.
    void PatchWoWTextFile(QString p_FilePath, QString p_Key, QString p_Line,
                          bool p_CreateIfMissing);

    // Hooks of the game module; the order of their slots is fixed.

    /// Called by `Install` when the folder is set.
    virtual void OnInstall();
    /// Called at the end of `OnManifestReceived`, before the comparison begins.
    virtual void AfterOnManifestReceived();

public:
    QString RemoteBuild;
    QString ContentBaseUrl; ///< server of the current file, ends in "/"
    ApplicationManifest Manifest;
    Entries FilesToDownload;
    quint32 SizeRepliesReceived = 0;
    quint32 CurrentDownloadIndex = 0;                    ///< in `FilesToDownload`
    quint32 DownloadRetryCount = 0;                      ///< restarts so far, of all files together
    quint64 DownloadedBytes = 0;                         ///< of the files finished in this phase
    HTTP_DownloadFileRequest* CurrentDownload = nullptr; ///< in flight, not owned
    bool IsDownloadingBase = false;                      ///< base files, against streamed ones
    bool IsFirstManifestBuild = false;
    QStringList CdnHosts;
    QString InstallationPath; ///< cache of the host's setting

    /// Guards what stands above and is more than a number, between the worker, which reads and
    /// builds it, and the application thread, which replaces it.
    mutable QRecursiveMutex RunMutex;

protected:
    /// Holds `RunMutex` if the run is still the current one; tests false otherwise.
    class RunScope {
    public:
        RunScope(StandartApplication& p_Application, RunId p_Run);
        ~RunScope();
        RunScope(RunScope const&) = delete;
        RunScope& operator=(RunScope const&) = delete;
        explicit operator bool() const { return IsCurrent; }

    private:
        StandartApplication& Owner;
        bool IsCurrent;
    };

    // Construction and settings ____________________________________________________________

    /// Stops what is left of the older run and returns the id of the new one. Application thread.
    RunId BeginRun();
    /// The part of that which concerns the list only. Any thread.
    RunId ReplaceList();
    bool IsCurrentRun(RunId p_Run) const { return CurrentRun == p_Run; }
    /// The installation folder ending in "/", or empty: then no file may be touched. Any thread.
    QString Folder() const;
    /// A host setting of this application.
    QString SettingKey(char const* p_Suffix) const;
    void MarkManifestBuilt();
    void SetFirstManifestBuild(bool p_IsFirst);
    static quint32 PercentOf(quint64 p_Current, quint64 p_Total);
    void ReportFileError(QFileDevice const& p_File);
    void ClearStatusFlags();
    void ShowIdle();

    // _Startup _____________________________________________________________________________

    void FetchVersion();
    void FetchManifest(QString const& p_Build);
    void TakeOver(ApplicationManifest p_Manifest);
    void FetchMirrors();
    void OnMirrorsReceived(QByteArray const& p_Data);

    // _Comparison __________________________________________________________________________

    /// Makes the installation a sub-folder where it is recorded as the program's own folder.
    void LeaveWorkingFolder();
    /// Notes in the folder that a first build owes both lists: until it has recorded all that it
    /// finds in one, whatever becomes of this run or process, the next one looks for it again.
    void NoteFirstBuild(QString const& p_Folder);
    static bool FirstBuildOwes(QString const& p_Folder, QString const& p_List);
    void ShowComparison(std::size_t p_Count);
    ManifestComparison ComparisonFor(RunId p_Run, std::size_t p_Count);
    void CompareBaseFiles(RunId p_Run, bool p_FirstBuild, Entries const& p_Entries);
    void CompareStreamedFiles(RunId p_Run, bool p_FirstBuild, bool p_Wait,
                              Entries const& p_Entries);
    /// Writes what a first build has found into a pending list. \param p_Whole every file was
    /// looked at; else the list also keeps what it names so far, and is still owed
    void RecordFirstBuild(RunId p_Run, QString const& p_Folder, QString const& p_List,
                          QStringList p_Paths, bool p_Whole);
    /// Makes a comparison's result the download list; false when the run was replaced.
    bool PublishList(RunId p_Run, Entries p_Files, bool p_Base);
    /// The pending list of the files being fetched, base or streamed.
    QString CurrentListPath() const;

    // _Phases: their steps for one run _____________________________________________________

    void CheckStartDownload(RunId p_Run, RunStep p_Start);
    void RequestBaseSizes(RunId p_Run);
    void RequestSizes(RunId p_Run, std::function<void()> const& p_Next);
    void RequestSize(RunId p_Run, ApplicationManifestFileEntry const& p_Entry,
                     std::function<void()> const& p_Next);
    void BeginBaseFiles(RunId p_Run);
    void CompareStreamed(RunId p_Run, bool p_Wait);
    void BeginStreamedFiles(RunId p_Run, bool p_Wait);
    void FetchStreamedFiles(RunId p_Run);
    void BeginFiles(RunId p_Run, QString const& p_DetailText);
    void EndRun(RunId p_Run);
    /// Draws the server for an entry. \return the entry's address there
    QString ChooseServer(ApplicationManifestFileEntry const& p_Entry);
    QString RemoteAddress(ApplicationManifestFileEntry const& p_Entry) const;
    /// Queues the start of the current file. A suspension that stops a transfer until then, or has
    /// come since the ticket was taken, voids it.
    void QueueStart(RunId p_Run) { QueueStart(p_Run, Resumes.Now()); }
    void QueueStart(RunId p_Run, ResumeGate::Ticket p_Ticket);
    /// Starts the file at `CurrentDownloadIndex` unless a transfer is in flight.
    void StartCurrentFile(RunId p_Run);
    /// Called when a transfer has ended by an abort: follows it if a resume has come meanwhile.
    void FollowAbortedTransfer();

    // _Completion __________________________________________________________________________

    /// Strikes the current file from its pending list and appends p_Added, unless that is empty.
    void UpdatePendingList(QString const& p_Added);
    /// Verifies a ".part" file and moves it into place. \return null, or why it must be fetched
    /// again, in the words of the log
    char const* PlaceFile(ApplicationManifestFileEntry const& p_Entry, bool p_Continuable,
                          std::optional<FollowingDigest::Result> const& p_Digest);
    /// Takes what stands in a file's place away, of a link the link itself.
    void RemoveOldFile(QString const& p_Path);
    void RetryOrGiveUp(char const* p_Reason, ApplicationManifestFileEntry const& p_Entry,
                       quint64 p_ContentLength);
    /// \param p_UnsampledBytes arrived since the last sample of the rate
    void ShowFileDone(qint64 p_UnsampledBytes);
    void GoOnWithNextFile(RunId p_Run);

    // _Suspend _____________________________________________________________________________

    bool IsFilePending() const;
    void GoOnAfterResume(RunId p_Run, ResumeGate::Ticket p_Ticket);
    bool PassOverCurrentFile();
    void PollResume(ResumeGate::Ticket p_Ticket);

    // _Lifecycle ___________________________________________________________________________

    void RemoveLists(std::vector<QString> const& p_Names);
    void DeleteGameFile(QString const& p_Path);

    // The state of a run beside the interface's.

    LinkWatch Links{Name};
    TransferSlot Transfers{CurrentDownload};
    ResumeGate Resumes;
    std::atomic<RunId> CurrentRun{0};
    std::optional<RunId> CompletingRun; ///< whose transfer's end is being handled
    bool FilesBegun = false;            ///< a file of this run has been started, maybe by a resume
    /// Held while a list is written for a run, so that none of a replaced run comes behind.
    QMutex ListMutex;
};

} // namespace Varnholt::Launcher
