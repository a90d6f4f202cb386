#include "Host/Core/Folder/GameVolumes.hpp"

#include <QFile>
#include <QFileInfo>
#include <QHash>

#include <sys/stat.h>

namespace Varnholt::Host::GameVolumes {

namespace {

dev_t VolumeOf(QString const& p_Folder)
{
    struct stat status {};
    return ::stat(QFile::encodeName(p_Folder).constData(), &status) == 0 ? status.st_dev : 0;
}

/// The folder itself, or the nearest above it that exists.
QString Existing(QString p_Folder, QString const& p_Top)
{
    while (!QFileInfo::exists(p_Folder) && p_Folder.size() > p_Top.size())
        p_Folder = QFileInfo(p_Folder).path();
    return p_Folder;
}

} // namespace

std::vector<Share> Of(QString const& p_Folder, Entries const& p_Files)
{
    std::vector<Share> shares{{p_Folder, {}}};
    std::vector<dev_t> volumes{VolumeOf(p_Folder)};
    QHash<QString, std::size_t> shareOfFolder;
    for (Launcher::ApplicationManifestFileEntry const& entry : p_Files) {
        QString const folder = QFileInfo(p_Folder + entry.Path).path();
        auto known = shareOfFolder.constFind(folder);
        if (known == shareOfFolder.constEnd()) {
            QString const existing = Existing(folder, p_Folder);
            dev_t const volume = VolumeOf(existing);
            std::size_t share = 0;
            while (share < volumes.size() && volumes[share] != volume)
                ++share;
            if (share == volumes.size()) {
                volumes.push_back(volume);
                shares.push_back({existing, {}});
            }
            known = shareOfFolder.insert(folder, share);
        }
        shares[*known].Files.push_back(entry);
    }
    return shares;
}

} // namespace Varnholt::Host::GameVolumes
