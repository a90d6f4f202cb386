#include "GameModules/StandartApplication.hpp"

#include "Launcher/Helper/Paths.hpp"

#include <QMutexLocker>

namespace Varnholt::Launcher {

StandartApplication::StandartApplication(QString const& p_Name, QString const& p_AppId)
    : Application(p_Name, p_AppId)
{
    connect(this, SIGNAL(OnHTTPDownloadProgressUpdate(HTTP_DownloadFileRequest*)), this,
            SLOT(App_OnHTTPDownloadProgressUpdate(HTTP_DownloadFileRequest*)));
    connect(this, SIGNAL(OnHTTPDownloadProgressComplete(HTTP_DownloadFileRequest*)), this,
            SLOT(App_OnHTTPDownloadProgressComplete(HTTP_DownloadFileRequest*)));
    connect(this, SIGNAL(OnHTTPDownloadRestarted(HTTP_DownloadFileRequest*)), this,
            SLOT(App_OnHTTPDownloadRestarted(HTTP_DownloadFileRequest*)));
    // Also for a download that gave no completion because its file could not be opened.
    OnDownloadRetired = [this](HTTP_DownloadFileRequest* p_Request) {
        if (Transfers.Retire(p_Request))
            FollowAbortedTransfer();
    };
    PassOverFile = [this] { return PassOverCurrentFile(); };
}

StandartApplication::~StandartApplication()
{
    Transfers.Replace();
    Transfers.StopAside();
}

void StandartApplication::Uninit() {}

QString StandartApplication::GetInstallationPath()
{
    QString path = ReadSetting(SettingKey(".InstallFolder"), QString()).toString();
    QMutexLocker const lock(&RunMutex);
    InstallationPath = path;
    return path;
}

bool StandartApplication::IsInstalled()
{
    return ReadSetting(SettingKey(".Installed"), false).toBool();
}

QString StandartApplication::SettingKey(char const* p_Suffix) const
{
    return AppId + QLatin1String(p_Suffix);
}

QString StandartApplication::Folder() const
{
    QMutexLocker const lock(&RunMutex);
    return InstallationPath.isEmpty() ? QString() : Helper::Paths::WithSlash(InstallationPath);
}

void StandartApplication::MarkManifestBuilt()
{
    if (!ReadSetting(SettingKey(".ManifestBuilt"), false).toBool())
        WriteSetting(SettingKey(".ManifestBuilt"), true);
}

void StandartApplication::SetFirstManifestBuild(bool p_IsFirst)
{
    QMutexLocker const lock(&RunMutex);
    IsFirstManifestBuild = p_IsFirst;
}

quint32 StandartApplication::PercentOf(quint64 p_Current, quint64 p_Total)
{
    return static_cast<quint32>(p_Current * 100 / (p_Total == 0 ? 1 : p_Total));
}

void StandartApplication::ReportFileError(QFileDevice const& p_File)
{
    ErrorReporter(QStringLiteral("File ") + p_File.fileName() + QStringLiteral(" error : ") +
                      p_File.errorString(),
                  false);
}

void StandartApplication::ClearStatusFlags()
{
    UISetting.Download.StatusFlags = 0;
    UISetting.Download.StatusFlag = false;
}

void StandartApplication::ShowIdle()
{
    QMutexLocker const lock(&RunMutex);
    UISetting.State = ApplicationUISetting::StateInstalled;
    ClearStatusFlags();
    UISetting.Download.ModeFlag = false;
    UISettingChanged = true;
}

StandartApplication::RunScope::RunScope(StandartApplication& p_Application, RunId p_Run)
    : Owner(p_Application)
{
    Owner.RunMutex.lock();
    IsCurrent = Owner.IsCurrentRun(p_Run);
    if (!IsCurrent)
        Owner.RunMutex.unlock();
}

StandartApplication::RunScope::~RunScope()
{
    if (IsCurrent)
        Owner.RunMutex.unlock();
}

StandartApplication::RunId StandartApplication::BeginRun()
{
    Transfers.Replace();
    // Silent, they would keep the few connections that a server is given from the new run.
    DropSizeQueries();
    return ReplaceList();
}

StandartApplication::RunId StandartApplication::ReplaceList()
{
    QMutexLocker const lock(&RunMutex);
    FilesToDownload.clear();
    FilesBegun = false;
    Transfers.ForgetStart();
    Resumes.VoidAll();
    return ++CurrentRun;
}

void StandartApplication::OnInstall() {}

void StandartApplication::AfterOnManifestReceived() {}

} // namespace Varnholt::Launcher
