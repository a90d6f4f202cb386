#include "GameModules/StandartApplication.hpp"

#include "GameModules/ManifestPaths.hpp"
#include "GameModules/MirrorChoice.hpp"
#include "GameModules/PendingList.hpp"
#include "Launcher/Application/ContentServer.hpp"
#include "Launcher/Application/LogCategories.hpp"
#include "Launcher/Application/RemoteText.hpp"

#include <QMutexLocker>

namespace Varnholt::Launcher {

void StandartApplication::Init()
{
    UISetting.State = ApplicationUISetting::StateStartingUp;
    UISettingChanged = true;
    EnqueueSync([this] { FetchVersion(); });
}

void StandartApplication::FetchVersion()
{
    QString url = DefaultContentBaseUrl() + AppId + QLatin1String("/version.json");
    if (UseDevChannel())
        url = DefaultContentBaseUrl() + AppId + QLatin1String("/version_dev.json");
    GetRemoteFileContent(url, [this](QString const&, QByteArray* p_Data) {
        auto const version = RemoteText::ObjectOf(*p_Data);
        if (!version) {
            ErrorReporter(QStringLiteral("Failed to get ") + Name +
                              QStringLiteral(" remote configuration."),
                          false);
            return;
        }
        RemoteBuild = (*version)[QLatin1String("build")].toString();
        EnqueueSync([this, build = RemoteBuild] { FetchManifest(build); });
    });
}

void StandartApplication::FetchManifest(QString const& p_Build)
{
    QString const url = DefaultContentBaseUrl() + AppId + QLatin1String("/builds/") + p_Build +
                        QLatin1String("/info.json");
    GetRemoteFileContent(url, [this](QString const&, QByteArray* p_Data) {
        bool success = false;
        ApplicationManifest manifest = ParseApplicationManifest(*p_Data, success, false);
        TakeOver(std::move(manifest));
        if (success)
            EnqueueSync([this] { FetchMirrors(); });
        else
            ErrorReporter(QStringLiteral("Failed to get ") + Name +
                              QStringLiteral(" remote build infos."),
                          false);
    });
}

void StandartApplication::TakeOver(ApplicationManifest p_Manifest)
{
    ManifestPaths::DropUnsafeEntries(p_Manifest);
    QMutexLocker const lock(&RunMutex);
    Manifest = std::move(p_Manifest);
}

void StandartApplication::FetchMirrors()
{
    GetRemoteFileContent(
        DefaultContentBaseUrl() + QLatin1String("cdns.info"),
        [this](QString const&, QByteArray* p_Data) { OnMirrorsReceived(*p_Data); });
}

void StandartApplication::OnMirrorsReceived(QByteArray const& p_Data)
{
    QString server;
    {
        QMutexLocker const lock(&RunMutex);
        CdnHosts = MirrorChoice::HostsOf(p_Data);
        server = MirrorChoice::BaseUrlOf(MirrorChoice::DrawHost(CdnHosts));
        ContentBaseUrl = server;
    }
    qCWarning(LogStartup) << "Selected CDN " << Name << " " << server;

    GetInstallationPath();
    bool first = IsInstalled() && FirstBuildOwes(Folder(), PendingList::c_Base);
    if (!ReadSetting(SettingKey(".ManifestBuilt"), false).toBool()) {
        if (IsInstalled())
            NoteFirstBuild(Folder());
        WriteSetting(SettingKey(".ManifestBuilt"), true);
        first = true;
    }
    SetFirstManifestBuild(first);
    OnManifestReceived();
}

} // namespace Varnholt::Launcher
