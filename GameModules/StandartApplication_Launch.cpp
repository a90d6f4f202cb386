#include "GameModules/StandartApplication.hpp"

#include "GameModules/PermissionBits.hpp"
#include "Launcher/Application/LogCategories.hpp"
#include "Launcher/Helper/Process.hpp"

#include <QFile>
#include <QMutexLocker>

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
    QString candidate = QStringLiteral("");
    bool const running = Helper::Process::IsProcessRunningIn(folder, names, &candidate);
    qCWarning(LogLaunch) << Name << " IsGameRunning : " << running;
    qCWarning(LogLaunch) << "Candidate is : " << candidate;
    return running;
}

void StandartApplication::FixPermissions()
{
    QString const folder = Folder();
    if (folder.isEmpty())
        return;
    for (std::size_t i = 0; i < Manifest.Files.size() && ShouldContinue(); ++i) {
        ApplicationManifestFileEntry const& entry = Manifest.Files[i];
        if (entry.Flags != 0 && QFile::exists(folder + entry.Path))
            PermissionBits::FixExistingFile(folder + entry.Path, entry);
    }
}

} // namespace Varnholt::Launcher
