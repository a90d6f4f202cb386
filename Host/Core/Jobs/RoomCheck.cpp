#include "Host/Core/Jobs/RoomCheck.hpp"

#include "Host/Core/Failures/ByteText.hpp"
#include "Host/Core/Folder/GameVolumes.hpp"
#include "Launcher/Helper/Paths.hpp"

#include <QCoreApplication>
#include <QFileInfo>

#include <algorithm>

namespace Varnholt::Host {

namespace {

Failure Full(QString const& p_Folder, qint64 p_Free, qint64 p_Needed)
{
    return {
        FailureKind::DiskFull, p_Folder,
        QCoreApplication::translate("Varnholt::Host::RoomCheck", "%1 are free, %2 more are needed")
            .arg(ByteText(static_cast<quint64>(p_Free)), ByteText(static_cast<quint64>(p_Needed)))};
}

} // namespace

RoomCheck::RoomCheck(std::function<qint64(QString const&)> p_FreeBytes)
    : FreeBytes(std::move(p_FreeBytes))
{
}

std::optional<Failure> RoomCheck::BeforeDownload(QString const& p_Folder, Entries const& p_Files,
                                                 quint64 p_TotalBytes) const
{
    qint64 needed = static_cast<qint64>(p_TotalBytes);
    for (Launcher::ApplicationManifestFileEntry const& entry : p_Files) {
        QString const path = p_Folder + entry.Path;
        needed -= QFileInfo(path).isFile() ? QFileInfo(path).size() : 0;
        needed -= QFileInfo(Launcher::Helper::Paths::PartFile(path)).size();
    }
    qint64 free = 0;
    for (GameVolumes::Share const& share : GameVolumes::Of(p_Folder, p_Files)) {
        qint64 const there = FreeBytes(share.Folder);
        if (there < 0)
            return std::nullopt;
        free += there;
    }
    if (needed <= free)
        return std::nullopt;
    return Full(p_Folder, free, needed);
}

std::optional<Failure> RoomCheck::WhileDownloading(QString const& p_Folder,
                                                   quint64 p_RemainingBytes) const
{
    constexpr qint64 c_NearlyNothing = qint64{64} * 1024;

    qint64 const free = FreeBytes(p_Folder);
    qint64 const remaining = static_cast<qint64>(p_RemainingBytes);
    if (free < 0 || free >= std::min(c_NearlyNothing, remaining))
        return std::nullopt;
    return Full(p_Folder, free, remaining);
}

} // namespace Varnholt::Host
