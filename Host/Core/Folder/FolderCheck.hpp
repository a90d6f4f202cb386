#pragma once

#include "Host/Core/Failures/Failure.hpp"

#include <QString>

#include <optional>
#include <vector>

/// Whether a folder can take a game, found out before anything is downloaded.
namespace Varnholt::Host::FolderCheck {

/// The folder as the module wants it: absolute, without "..", ending in "/".
QString Normalized(QString const& p_Folder);

/// The folder itself, or the nearest above it that exists. \param p_Folder absolute
QString NearestExisting(QString p_Folder);

/// Whether a run of the module has left its pending lists there, finished or not.
bool HasPendingLists(QString const& p_Folder);

/// All that speaks against a game in the folder, the gravest first. Creates nothing but a temporary
/// file, which goes again. \param p_Known the folder of the present installation, empty when there
/// is none
std::vector<Failure> Objections(QString const& p_Folder, QString const& p_Known);

/// Whether a game may be installed there. \param p_Known see `Objections`
/// \param p_Confirmed the user has agreed to a folder that holds other files
std::optional<Failure> ForInstall(QString const& p_Folder, QString const& p_Known,
                                  bool p_Confirmed);

/// Whether an existing folder can be written: files can be created in it.
std::optional<Failure> ForWriting(QString const& p_Folder);

} // namespace Varnholt::Host::FolderCheck
