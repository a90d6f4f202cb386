#include "Host/Core/Folder/GameVolumes.hpp"

#include "Host/Core/Folder/FolderCheck.hpp"
#include "Launcher/Helper/Paths.hpp"

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

} // namespace

std::vector<Share> Of(QString const& p_Folder, Entries const& p_Files)
{
    std::vector<Share> shares{{FolderCheck::NearestExisting(p_Folder), {}}};
    std::vector<dev_t> volumes{VolumeOf(shares.front().Folder)};
    QHash<QString, std::size_t> shareOfFolder;
    for (Launcher::ApplicationManifestFileEntry const& entry : p_Files) {
        QString const folder = QFileInfo(p_Folder + entry.Path).path();
        auto known = shareOfFolder.constFind(folder);
        if (known == shareOfFolder.constEnd()) {
            QString const existing = FolderCheck::NearestExisting(folder);
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

std::vector<VolumeSpace> SpaceFor(QString const& p_Folder, Entries const& p_Files,
                                  SizeOf const& p_SizeOf,
                                  std::function<qint64(QString const&)> const& p_FreeBytes)
{
    std::vector<VolumeSpace> spaces;
    for (Share const& share : Of(p_Folder, p_Files)) {
        VolumeSpace space;
        space.Folder = share.Folder;
        space.Files = static_cast<quint32>(share.Files.size());
        space.Free = p_FreeBytes(share.Folder);
        for (Launcher::ApplicationManifestFileEntry const& entry : share.Files) {
            auto const size = p_SizeOf(entry.Location);
            if (!size) {
                ++space.Unsized;
                continue;
            }
            QFileInfo const old(p_Folder + entry.Path);
            space.Needed += static_cast<qint64>(*size) - (old.isFile() ? old.size() : 0);
            space.Needed -= QFileInfo(Launcher::Helper::Paths::PartFile(old.filePath())).size();
        }
        spaces.push_back(space);
    }
    return spaces;
}

} // namespace Varnholt::Host::GameVolumes
