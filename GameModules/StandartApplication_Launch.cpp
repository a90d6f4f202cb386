#include "GameModules/StandartApplication.hpp"

#include "GameModules/PermissionBits.hpp"
#include "Launcher/Application/LogCategories.hpp"
#include "Launcher/Helper/Process.hpp"

#include <QFile>
#include <QMutexLocker>
#include <QProcess>

#include <algorithm>

namespace Varnholt::Launcher {

bool StandartApplication::IsGameRunning()
{
    QString folder;
    {
        QMutexLocker const lock(&RunMutex);
        folder = InstallationPath;
    }
    // In lower case, as the process list is compared.
    QStringList const names{QStringLiteral("wow.exe"), QStringLiteral("wow-64.exe"),
                            QStringLiteral("macos/world of warcraft")};
    QString line;
    bool const running = Helper::Process::IsProcessRunningIn(folder, names, &line);
    qCWarning(LogLaunch) << Name << " IsGameRunning : " << running;
    qCWarning(LogLaunch) << "Candidate is : " << Helper::Process::NameAndId(line, names);
    return running;
}

void StandartApplication::FixPermissions()
{
    QString const folder = Folder();
    if (folder.isEmpty())
        return;
    for (std::size_t i = 0; i < Manifest.Files.size() && ShouldContinue(); ++i) {
        ApplicationManifestFileEntry const& entry = Manifest.Files[i];
        if (entry.Flags != 0 && QFile::exists(folder + entry.Path) && !LeadsOut(entry.Path))
            PermissionBits::FixExistingFile(folder + entry.Path, entry);
    }
}

bool StandartApplication::Start(QString, QString)
{
    SuspendDownload();
    LookAtLinksAnew();
    FixPermissions();
    QString const folder = Folder();
    auto const executable = std::find_if(Manifest.Files.begin(), Manifest.Files.end(),
                                         [](ApplicationManifestFileEntry const& p_Entry) {
                                             return p_Entry.Has(c_GameExecutableFlag);
                                         });
    if (executable == Manifest.Files.end() || folder.isEmpty())
        return false;
    if (LeadsOut(executable->Path))
        return false;
    QString const path = folder + executable->Path;
    qCWarning(LogLaunch) << "Start " << path;
    // Handed to the system is started: whether it runs shows in IsGameRunning().
    QProcess::startDetached(path, {QStringLiteral("-noautolaunch64bit")});
    return true;
}

} // namespace Varnholt::Launcher
