#pragma once

#include "Launcher/Application/Application.hpp"
#include "Launcher/Application/ApplicationLink.hpp"
#include "Tests/Support/LogCapture.hpp"
#include "Tests/Support/ScriptedServer.hpp"
#include "Tests/Support/TestHost.hpp"

#include <QElapsedTimer>
#include <QMutex>
#include <QString>
#include <QTemporaryDir>
#include <QThread>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace Varnholt::TestSupport {

/// An application that does nothing but download.
class PlainApplication : public Launcher::Application {
public:
    PlainApplication()
        : Application(QStringLiteral("Plain Game"), QStringLiteral("plain_app"))
    {
    }
    /// Its downloads may outlive it.
    ~PlainApplication() override { Link->Sever(); }
    void Init() override {}
    void Uninit() override {}
    QString GetRessource(Launcher::ApplicationRessource::Type) override { return {}; }
    std::vector<Launcher::ApplicationManifestLocale> GetAvailableLocales() const override
    {
        return {};
    }
    QString GetAppLocale() override { return {}; }
    void SetAppLocale(QString) override {}
};

/// A record as it was when a signal of its download was emitted, or in between.
struct DownloadEvent {
    enum class Kind { Update, Restarted, Complete } What = Kind::Update;
    QThread* Thread = nullptr; ///< that emitted it, or looked
    qint64 Milliseconds = 0;   ///< since the bench was made
    qint64 CurrentBytes = 0;
    qint64 BytesOnDisk = 0;
    qint64 RateSampleBytes = 0;
    qint64 BytesPerSecond = 0;
    quint64 ContentLength = 0;
    int Percent = 0;
    bool Aborted = false;
    bool Resume = false;
    bool Restarting = false;
    bool Continuable = false;
    std::optional<Launcher::FollowingDigest::Result> Digest;
    QByteArray Content; ///< of the file, at a restart and at the completion
};

/// A server, a host and a download from the one to the other, with all its events.
class DownloadBench {
public:
    explicit DownloadBench(TestHost::Worker p_Worker = TestHost::Worker::Running);
    ~DownloadBench();

    /// Serves bytes as the file that is going to be downloaded.
    void Serve(QByteArray const& p_Bytes) { Server.Serve(c_Path, p_Bytes); }
    ScriptedServer::PathScript Script() { return Server.Script(c_Path); }
    /// What lies at the destination.
    QByteArray File() const;
    bool WriteFile(QByteArray const& p_Bytes) const;

    /// Starts the download of the served file, or of another address.
    Launcher::HTTP_DownloadFileRequest* Start(bool p_Resume = true, QString const& p_Url = {});
    /// Waits until the download has ended and its thread is gone. \return false when it never does
    [[nodiscard]] bool RunToEnd();
    /// Start and RunToEnd.
    [[nodiscard]] bool Run(bool p_Resume = true, QString const& p_Url = {});
    /// Waits for a condition without handling a single event of this thread.
    [[nodiscard]] static bool WaitBusy(std::function<bool()> const& p_Condition);

    /// What a host sees when it looks at a download under way.
    static DownloadEvent Look(Launcher::HTTP_DownloadFileRequest const& p_Request);
    std::vector<DownloadEvent> Events() const;
    std::vector<DownloadEvent> Events(DownloadEvent::Kind p_What) const;
    int Count(DownloadEvent::Kind p_What) const;
    /// The only completion; a default one when there was not exactly one.
    DownloadEvent Completion() const;
    /// The "Range" headers of all requests in order, "-" for none.
    QStringList Ranges() const;
    int RequestCount() const { return Server.Count(c_Path); }
    int RetiredCount() const { return Retired; }

    static constexpr char c_Path[] = "/file";

    LogCapture Log;
    QTemporaryDir Folder;
    QString Path; ///< destination
    ScriptedServer Server;
    std::unique_ptr<PlainApplication> App;
    std::unique_ptr<TestHost> Host;
    /// Called on the download thread at every signal. To be set before the start.
    std::function<void(DownloadEvent const&)> OnEvent;

private:
    void Record(DownloadEvent::Kind p_What, Launcher::HTTP_DownloadFileRequest& p_Request);

    QElapsedTimer Clock;
    mutable QMutex Mutex;
    std::vector<DownloadEvent> Recorded;
    int Started = 0;
    int Retired = 0;
};

} // namespace Varnholt::TestSupport
