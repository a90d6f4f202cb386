#include "GameModules/StandartApplication.hpp"

#include "GameModules/FileLink.hpp"
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
        if (!PermissionBits::IsAskedFor(entry))
            continue;
        QString const path = folder + entry.Path;
        // Not through a link: what it leads to has the player's own mode.
        if (QFile::exists(path) && !Links.IsBarred(folder, entry.Path) &&
            FileLink::At(path) == FileLink::Kind::None)
            PermissionBits::FixExistingFile(path, entry);
    }
}

bool StandartApplication::Start(QString, QString)
{
    SuspendDownload();
    QString const folder = Folder();
    Links.Begin(folder);
    FixPermissions();
    auto const executable = std::find_if(Manifest.Files.begin(), Manifest.Files.end(),
                                         [](ApplicationManifestFileEntry const& p_Entry) {
                                             return p_Entry.Has(c_GameExecutableFlag);
                                         });
    if (executable == Manifest.Files.end() || folder.isEmpty())
        return false;
    QString const path = folder + executable->Path;
    if (Links.IsBarred(folder, executable->Path) || FileLink::At(path) == FileLink::Kind::Strange)
        return false;
    qCWarning(LogLaunch) << "Start " << path;
    // Handed to the system is started: whether it runs shows in IsGameRunning().
    QProcess::startDetached(path, {QStringLiteral("-noautolaunch64bit")});
    return true;
}

} // namespace Varnholt::Launcher
