#include "Host/Core/Jobs/RoomCheck.hpp"

#include "Host/Core/Failures/ByteText.hpp"

#include <QCoreApplication>

#include <algorithm>

namespace Varnholt::Host::RoomCheck {

Failure Full(QString const& p_Folder, qint64 p_Free, qint64 p_Needed)
{
    auto const text = [](qint64 p_Bytes) {
        return ByteText(static_cast<quint64>(std::max<qint64>(0, p_Bytes)));
    };
    return {
        FailureKind::DiskFull, p_Folder,
        QCoreApplication::translate("Varnholt::Host::RoomCheck", "%1 are free, %2 more are needed")
            .arg(text(p_Free), text(p_Needed))};
}

std::optional<Failure> BeforeDownload(std::vector<VolumeSpace> const& p_Spaces)
{
    auto const full =
        std::find_if(p_Spaces.begin(), p_Spaces.end(), [](VolumeSpace const& p_Space) {
            return p_Space.IsKnown() && p_Space.After() < 0;
        });
    if (full == p_Spaces.end())
        return std::nullopt;
    return Full(full->Folder, full->Free, full->Needed);
}

std::optional<Failure> WhileDownloading(QString const& p_Folder, qint64 p_Free,
                                        quint64 p_RemainingBytes)
{
    qint64 const remaining = static_cast<qint64>(p_RemainingBytes);
    if (p_Free < 0 || p_Free >= std::min(c_NearlyNothing, remaining))
        return std::nullopt;
    return Full(p_Folder, p_Free, remaining);
}

} // namespace Varnholt::Host::RoomCheck
