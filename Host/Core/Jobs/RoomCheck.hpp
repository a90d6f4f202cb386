#pragma once

#include "Host/Core/Failures/Failure.hpp"
#include "Host/Core/Folder/VolumeSpace.hpp"

#include <QString>

#include <optional>
#include <vector>

/// Sees to it that a download does not run into a full disk: the module would fetch each file again
/// and again without keeping it.
namespace Varnholt::Host::RoomCheck {

/// Bytes: with less free even small files fail.
constexpr qint64 c_NearlyNothing = qint64{64} * 1024;

/// \param p_Needed bytes; fewer than none count as none
Failure Full(QString const& p_Folder, qint64 p_Free, qint64 p_Needed);

/// Before the first byte: why the files do not fit on one of their volumes.
std::optional<Failure> BeforeDownload(std::vector<VolumeSpace> const& p_Spaces);

/// While bytes arrive. \param p_Folder on the volume that they arrive on
/// \param p_Free bytes on it; negative when unknown \param p_RemainingBytes still to come
std::optional<Failure> WhileDownloading(QString const& p_Folder, qint64 p_Free,
                                        quint64 p_RemainingBytes);

} // namespace Varnholt::Host::RoomCheck
