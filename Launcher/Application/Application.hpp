#pragma once

#include "Launcher/Application/ApplicationManifest.hpp"
#include "Launcher/Application/ApplicationRessource.hpp"
#include "Launcher/Application/ApplicationUISetting.hpp"
#include "Launcher/Application/HTTP_DownloadFileRequest.hpp"
#include "Launcher/Application/HTTP_GetRemotefileContentRequest.hpp"
#include "Launcher/Application/HTTP_GetRemotefileContentSizeRequest.hpp"
#include "Launcher/Application/LauncherLocale.hpp"

#include <QByteArray>
#include <QMutex>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QTime>
#include <QVariant>

#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <queue>
#include <utility>
#include <vector>

namespace Varnholt::Launcher {

class ApplicationLink;

/// The interface of every application module that a launcher loads.
///
/// What a host does with one, in which order, and what of it a host may touch, is numbered in
/// docs/host-guide.md.
///
/// The module never blocks on the network: a step starts a request whose callback queues the next
/// step. Closures that use the network go through `EnqueueSync`, long file work through
/// `EnqueueAsync`.
class Application : public QObject {
    Q_OBJECT

public:
    /// Builds the members and nothing else: no connection, no file, no network.
    Application(QString const& p_Name, QString const& p_AppId);
    /// Releases the members; does not abort requests in flight.
    ~Application() override;

    // The virtual interface; the order of its slots is fixed.

    /// Learns the current build from the content server, then compares and downloads. Returns at
    /// once. Calling it again starts over.
    virtual void Init() = 0;
    virtual void Uninit() = 0;
    /// A presentation value, or a null string for a type that the module does not know.
    virtual QString GetRessource(ApplicationRessource::Type p_Type) = 0;
    /// True while the game runs from the installation folder. May block for two seconds.
    virtual bool IsGameRunning();
    /// Takes the folder (ending in "/") as the installation and starts comparing and downloading.
    /// \param p_Flag true: the folder is known to be as the pending lists tell, skip the first
    ///        build's check; false: check whatever lies there
    virtual void Install(QString const& p_Path, bool p_Flag);
    /// Starts the game, logging in automatically when both texts are given. False when the manifest
    /// names no executable.
    virtual bool Start(QString p_Login, QString p_Password);
    /// Compares every file of an installed game and fetches what is wrong.
    virtual void Repair();
    /// Stops a repair; what is missing by the ordinary comparison is still fetched.
    virtual void AbortRepair();
    /// Forgets the installation. \param p_Flag true: also delete the game's files
    virtual void Uninstall(bool p_Flag);
    /// Stops the file in flight and keeps what has arrived. Returns when the transfer has ended.
    virtual void SuspendDownload();
    /// Goes on with the pending list as soon as the host allows it and the game has quit.
    virtual void ResumeDownload();
    /// The languages that the current build offers, by tag; empty before the first manifest.
    virtual std::vector<ApplicationManifestLocale> GetAvailableLocales() const = 0;
    /// The chosen language of the game, or the launcher's own when none was chosen.
    virtual QString GetAppLocale() = 0;
    /// Chooses the language of the game. The code is not checked.
    virtual void SetAppLocale(QString p_Code) = 0;
    virtual bool IsCASCApp();
    virtual void EnableCASC();
    /// Frames of an animated icon, resource paths; empty: no animation.
    virtual std::vector<QString> GetCustomIconAnimation();
    /// Frames per second.
    virtual int GetCustomIconAnimationFramerate();

    /// The display name.
    QString const& GetName() const { return Name; }

    /// Queues a closure for the application thread. Any thread.
    void EnqueueSync(std::function<void()> p_Closure);
    /// Queues a closure for the host's worker thread. Any thread.
    void EnqueueAsync(std::function<void()> p_Closure);

    /// Fetches a small file into memory. Application thread only.
    /// \param p_OnContent called exactly once with the address and what arrived, whatever the
    ///        outcome: for an HTTP error this is the error page, for a broken transfer its start
    /// \param p_OnError called before that with the `QNetworkReply::NetworkError`, and only for
    ///        RemoteHostClosedError and UnknownContentError
    /// \return the request's record, owned by the application, valid until p_OnContent has returned
    HTTP_GetRemotefileContentRequest* GetRemoteFileContent(
        QString p_Url, std::function<void(QString, QByteArray*)> p_OnContent,
        std::function<void(int)> p_OnError = [](int) {});

    /// Asks for a remote file's size without fetching its body. Application thread only.
    /// \param p_OnSize called with the address and the Content-Length (0 when absent), and never
    ///        called when no header arrives
    void GetRemoteFileSize(QString p_Url,
                           std::function<void(QString, unsigned long long)> p_OnSize);

    /// Ends the size queries that have no answer yet; they never call back. Application thread
    /// only.
    void DropSizeQueries();
    /// Ends a fetch in flight: its callback is called now. Application thread only.
    void AbortFetch(HTTP_GetRemotefileContentRequest const& p_Request);

    /// Downloads a file on a thread of its own. Application thread only.
    /// \param p_Path local destination; its folder is created
    /// \param p_Resume true: continue what lies at the destination; false: remove it first
    /// \return the download's record, see there for how long it is valid. A destination that cannot
    ///         be opened is logged and gives no completion.
    HTTP_DownloadFileRequest* DownloadFile(QString p_Url, QString p_Path, bool p_Resume);

Q_SIGNALS:
    // Emitted on the download thread; connect with a queued or automatic connection.
    void OnHTTPDownloadProgressUpdate(HTTP_DownloadFileRequest* p_Request);
    void OnHTTPDownloadProgressComplete(HTTP_DownloadFileRequest* p_Request);
    void OnHTTPDownloadRestarted(HTTP_DownloadFileRequest* p_Request);

public Q_SLOTS:
    // Called on the download thread by the downloader's signals; they pass the record on.
    void AppInt_OnHTTPDownloadProgressUpdate(HTTP_DownloadFileRequest* p_Request);
    void AppInt_OnHTTPDownloadProgressComplete(HTTP_DownloadFileRequest* p_Request);
    void AppInt_OnHTTPDownloadRestarted(HTTP_DownloadFileRequest* p_Request);
    // Called on the application thread by the replies of fetches and size queries.
    void HTTP_GetContent_OnReadyRead();
    void HTTP_GetContent_DownloadFinished();
    void HTTP_GetContentSize_MedaDataChanged();

public:
    // Host callback table. The flag of ErrorReporter is always false here; it, the settings
    // callbacks, CurrentLauncherLocale, IsDownloadBlocked, NotifyDownloadStarting and
    // ShouldContinue may be called on the application thread, the worker or a download thread. They
    // must not wait for the application thread, which may be waiting for the caller.
    void (*ErrorReporter)(QString p_Message, bool p_Flag) = nullptr;
    QVariant (*ReadSetting)(QString p_Key, QVariant p_Default) = nullptr;
    void (*WriteSetting)(QString p_Key, QVariant p_Value) = nullptr;
    QStringList (*ListSettingKeys)() = nullptr;
    void (*RemoveSetting)(QString p_Key) = nullptr;
    LauncherLocale (*CurrentLauncherLocale)() = nullptr;
    bool (*IsDownloadBlocked)() = nullptr;      ///< polled every 100 ms before a download begins
    void (*NotifyDownloadStarting)() = nullptr; ///< just before a phase asks for sizes
    void (*NotifyDownloadFinished)() = nullptr; ///< a run, or a suspension, has come to its end
    bool (*ShouldContinue)() = nullptr;         ///< false: long loops stop early
    bool (*UseDevChannel)() = nullptr;          ///< true: the development version file

    /// Raised whenever `UISetting` has changed; only the host clears it.
    std::atomic<bool> UISettingChanged{false};
    QString Name;
    QString AppId;    ///< path component of remote addresses, prefix of every setting key
    QString Reserved; ///< unused
    QNetworkAccessManager* NetworkManager;

    // The downloads' map and the write queue stay empty here: downloads run on their own threads.
    std::map<QNetworkReply*, std::shared_ptr<HTTP_DownloadFileRequest>> DownloadRequests;
    QRecursiveMutex DownloadRequestsMutex;
    std::map<QNetworkReply*, HTTP_GetRemotefileContentRequest*> ContentRequests;
    QRecursiveMutex ContentRequestsMutex;
    std::map<QNetworkReply*, HTTP_GetRemotefileContentSizeRequest*> ContentSizeRequests;
    QRecursiveMutex ContentSizeRequestsMutex;
    std::queue<std::function<void()>> AsyncQueue;
    QMutex AsyncQueueMutex;
    std::queue<std::function<void()>> SyncQueue;
    QMutex SyncQueueMutex;
    std::queue<std::pair<std::shared_ptr<HTTP_DownloadFileRequest>, QByteArray>> WriteQueue;
    int WriteQueueSize = 0;
    QRecursiveMutex WriteQueueMutex;

    ApplicationUISetting UISetting;
    QTime Timer; ///< start of the current sample of the shown rate

    /// Called on the application thread for each download, after everything that it posted has been
    /// handled and before its record is given up. A host that puts its own in the place of the
    /// module's calls that one too.
    std::function<void(HTTP_DownloadFileRequest*)> OnDownloadRetired;
    /// Set by the module. Called by the host on the application thread when the current file could
    /// not be begun: leaves it out of the run and goes on behind it. False when nothing follows it,
    /// and when no file waits or one is in flight, which leaves out nothing.
    std::function<bool()> PassOverFile;

private:
    void RenewConnections();

    bool MayHaveLostConnections = false; ///< by an abort

protected:
    /// What download threads hold on to instead of the application, which may go before them.
    std::shared_ptr<ApplicationLink> Link;
};

/// The version of what a host touches of a module's object; it stands as "layout" in the metadata
/// of each plug-in too, where a host compares it before any code of the module runs.
///
/// Raised by every change of the virtual interface and by every change of the order, number or type
/// of the data members that a host may touch: those of `Application`, of `StandartApplication` and
/// of the records in them.
constexpr int c_ApplicationLayout = 1;

} // namespace Varnholt::Launcher

#define Varnholt_Application_iid "Varnholt.Application"
Q_DECLARE_INTERFACE(Varnholt::Launcher::Application, Varnholt_Application_iid)
