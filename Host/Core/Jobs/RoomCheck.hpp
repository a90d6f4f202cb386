#pragma once

#include "Host/Core/Failures/Failure.hpp"
#include "Host/Core/Folder/VolumeSpace.hpp"

#include <QString>

#include <functional>
#include <optional>
#include <vector>

namespace Varnholt::Host {

/// Sees to it that a download does not run into a full disk: the module would fetch each file again
/// and again without keeping it.
class RoomCheck {
public:
    /// Bytes: with less free even small files fail.
    static constexpr qint64 c_NearlyNothing = qint64{64} * 1024;

    /// \param p_Needed bytes; fewer than none count as none
    static Failure Full(QString const& p_Folder, qint64 p_Free, qint64 p_Needed);

    explicit RoomCheck(std::function<qint64(QString const&)> p_FreeBytes);

    /// Before the first byte: why the files do not fit on one of their volumes.
    static std::optional<Failure> BeforeDownload(std::vector<VolumeSpace> const& p_Spaces);
    /// While bytes arrive. \param p_Folder on the volume that they arrive on
    /// \param p_RemainingBytes still to come
    std::optional<Failure> WhileDownloading(QString const& p_Folder,
                                            quint64 p_RemainingBytes) const;

private:
    std::function<qint64(QString const&)> FreeBytes;
};

} // namespace Varnholt::Host
