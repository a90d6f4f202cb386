#include "Tests/Endurance/EnduringGame.hpp"

#include "Tests/Support/FileTools.hpp"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QThread>

#include <algorithm>

namespace Varnholt::TestSupport {

namespace {

using Entry = Launcher::ApplicationManifestFileEntry;

/// A run of this game takes less than a second: a stall shows sooner than at the usual limit.
constexpr int c_Timeout = 30000;

} // namespace

EnduringGame::EnduringGame(TestHost::Worker p_Worker)
    : Folder(QDir(Temporary.path()).canonicalPath() + QStringLiteral("/Game/"))
    , Elsewhere(QDir(Temporary.path()).canonicalPath() + QStringLiteral("/Other game/"))
    , Transfers(App)
    , Host(App, p_Worker)
    , Worker(p_Worker)
    , SearchPath("PATH", Temporary.path().toUtf8() + "/bin:" + qgetenv("PATH"))
    , InCurrentFolder(CurrentFolder.path())
{
    AddFiles();
    InstallProcessList();
    Server.BecomeDefaultContentServer();
    Content.Publish(Server, {&Mirror});
}

EnduringGame::~EnduringGame()
{
    // As a launcher ends, a failed test's too.
    Host.StopWorker();
    App.SuspendDownload();
}

void EnduringGame::AddFiles()
{
    qint32 const executable = Entry::Executable | Launcher::c_GameExecutableFlag;
    Content.Add({"Game.app/MacOS/run", "#!/bin/sh\nexit 0\n", executable});
    Content.Add({"Wow-64.exe", SampleContent::Bytes(900, 1)});
    Content.Add({"Data/large.dat", SampleContent::Bytes(400000, 2), Entry::FirstBuildOnly});
    Content.Add({"Data/Data 2/medium.dat", SampleContent::Bytes(90000, 3), Entry::FirstBuildOnly});
    Content.Add({"Data/empty.dat", "", Entry::FirstBuildOnly});
    Content.Add({"read only", SampleContent::Bytes(5000, 4), Entry::ReadOnly});
    Content.Add({"own server", SampleContent::Bytes(30000, 5), Entry::DefaultServerOnly});
    Content.Add({"kept", SampleContent::Bytes(7000, 6), Entry::KeepIfPresent});
    Content.Add({"Data/fr.dat", "fr", 0, "frFR"});
    Content.Add({"Interface/GlueXMl/AccountLogin.xml.origin", "<{varnholt_autolog_login}>"});
    Content.Add({"Interface/GlueXMl/AccountLogin.lua.origin", "{varnholt_autolog_password}"});
    Content.Add({"Streamed/large.dat", SampleContent::Bytes(250000, 7), 0, {}, true});
    Content.Add({"Streamed/small.dat", SampleContent::Bytes(60, 8), 0, {}, true});
    Content.Add(
        {"Streamed/own.dat", SampleContent::Bytes(9000, 9), Entry::DefaultServerOnly, {}, true});
}

void EnduringGame::InstallProcessList() const
{
    QString const ps = Temporary.path() + QStringLiteral("/bin/ps");
    QByteArray const script = "#!/bin/sh\nd='" + Temporary.path().toUtf8() +
                              "'\n[ -e \"$d/runs\" ] && echo \"$d/Game/wow.exe\"\nexit 0\n";
    if (!WriteFile(ps, script) || !SetMode(ps, 0755))
        qFatal("cannot write %s", qPrintable(ps));
}

void EnduringGame::ShowGameRunning(bool p_Runs) const
{
    QString const mark = Temporary.path() + QStringLiteral("/runs");
    if (!(p_Runs ? WriteFile(mark, "") : !QFile::exists(mark) || QFile::remove(mark)))
        qFatal("cannot change %s", qPrintable(mark));
}

bool EnduringGame::Begin()
{
    App.Init();
    return RunUntil([this] {
        return App.UISetting.State == Launcher::ApplicationUISetting::StateNotInstalled;
    });
}

void EnduringGame::RunEvents()
{
    if (Host.RunNextSync())
        return;
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

bool EnduringGame::RunUntil(std::function<bool()> const& p_Condition)
{
    return Host.RunUntil(
        [&] {
            if (p_Condition())
                return true;
            if (IsByHand())
                Host.RunNextAsync();
            return p_Condition();
        },
        c_Timeout);
}

bool EnduringGame::IsBusy() const
{
    return Host.SyncCount() != 0 || Host.AsyncCount() != 0 || App.CurrentDownload != nullptr ||
           !App.ContentRequests.empty() || App.Transfers.AsideCount() != 0 ||
           std::any_of(App.ContentSizeRequests.begin(), App.ContentSizeRequests.end(),
                       [](auto const& p_Row) { return !p_Row.first->isFinished(); });
}

bool EnduringGame::Finish()
{
    // In a row: what a thread that has just ended has posted is nowhere to be seen for a moment.
    constexpr int c_Looks = 40;
    int looks = 0;
    bool const finished = RunUntil([&] {
        looks = IsBusy() ? 0 : looks + 1;
        return looks > c_Looks;
    });
    return finished && (IsByHand() || Host.RunUntilIdle());
}

QStringList EnduringGame::Faults() const
{
    QStringList faults;
    for (SampleFile const& file : Content.Files) {
        if (!file.Locale.isEmpty() && file.Locale != QLatin1String("enUS"))
            continue;
        QByteArray const bytes = ReadFile(PathOf(file.Path));
        if (bytes.isNull())
            faults += file.Path + QStringLiteral(" is missing");
        else if (bytes != file.Bytes)
            faults += file.Path + QStringLiteral(" is wrong");
    }
    for (char const* const list : {"ToDownloadBase.db", "ToDownload.db"})
        if (!ReadFile(PathOf(list)).isEmpty())
            faults += QString(list) + QStringLiteral(" is not empty");
    if (App.UISetting.State != Launcher::ApplicationUISetting::StateInstalled ||
        !App.FilesToDownload.empty())
        faults += QStringLiteral("the run has not ended");
    return faults;
}

QStringList EnduringGame::Violations()
{
    QStringList violations = Transfers.TakeFaults();
    if (auto* const transfer = App.CurrentDownload) {
        if (App.Transfers.IsAside(transfer))
            violations += QStringLiteral("a transfer of a replaced run is the current one");
        if (!transfer->FilePath.startsWith(App.Folder()))
            violations += transfer->FilePath + QStringLiteral(" is no file of the installation");
    }
    if (!QDir(CurrentFolder.path()).isEmpty())
        violations += QStringLiteral("a file was written into the current folder");
    return violations;
}

ProcessUsage EnduringGame::SettledUsage(ProcessUsage const& p_Expected)
{
    App.NetworkManager->clearConnectionCache();
    static_cast<void>(RunUntil([&] {
        return Server.OpenConnections() == 0 && Mirror.OpenConnections() == 0 &&
               ProcessUsage::Now().IsWithin(p_Expected);
    }));
    return ProcessUsage::Now();
}

QString EnduringGame::Asked(QString const& p_Url) const
{
    QString const path = QUrl(p_Url).path();
    return QStringLiteral("%1, asked for %2 and %3 times")
        .arg(p_Url)
        .arg(Server.Count(path))
        .arg(Mirror.Count(path));
}

QString EnduringGame::Describe() const
{
    QStringList lines;
    lines += QStringLiteral("state %1 mode %2, run %3, file %4 of %5, %6 size answers, %7 restarts")
                 .arg(App.UISetting.State)
                 .arg(App.UISetting.Download.Mode)
                 .arg(App.CurrentRun.load())
                 .arg(App.CurrentDownloadIndex)
                 .arg(App.FilesToDownload.size())
                 .arg(App.SizeRepliesReceived)
                 .arg(App.DownloadRetryCount);
    lines += QStringLiteral("%1 fetches, %2 size queries, %3 transfers aside, queues %4 and %5")
                 .arg(App.ContentRequests.size())
                 .arg(App.ContentSizeRequests.size())
                 .arg(App.Transfers.AsideCount())
                 .arg(App.SyncQueue.size())
                 .arg(App.AsyncQueue.size());
    for (auto const& row : App.ContentRequests)
        lines += QStringLiteral("waits for ") + Asked(row.second->Url);
    for (auto const& row : App.ContentSizeRequests)
        if (!row.first->isFinished())
            lines += QStringLiteral("waits for the size of ") + Asked(row.second->Url);
    if (auto const* const transfer = App.CurrentDownload)
        lines += QStringLiteral("in flight: %1, %2 bytes, aborted %3, acknowledged %4")
                     .arg(transfer->Url)
                     .arg(transfer->BytesOnDisk)
                     .arg(transfer->Aborted.load())
                     .arg(transfer->AbortAcknowledged.load());
    lines += ProcessUsage::Now().Text();
    lines += QStringLiteral("connections: %1, %2")
                 .arg(Server.OpenConnections())
                 .arg(Mirror.OpenConnections());
    return lines.join(QLatin1Char('\n'));
}

} // namespace Varnholt::TestSupport
