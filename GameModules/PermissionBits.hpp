#pragma once

#include "Launcher/Application/ApplicationManifest.hpp"

#include <QFileDevice>
#include <QString>

namespace Varnholt::Launcher::PermissionBits {

constexpr QFileDevice::Permissions c_Write{QFileDevice::WriteOwner | QFileDevice::WriteUser |
                                           QFileDevice::WriteGroup | QFileDevice::WriteOther};
constexpr QFileDevice::Permissions c_All{c_Write | QFileDevice::ReadOwner | QFileDevice::ReadUser |
                                         QFileDevice::ReadGroup | QFileDevice::ReadOther |
                                         QFileDevice::ExeOwner | QFileDevice::ExeUser |
                                         QFileDevice::ExeGroup | QFileDevice::ExeOther};

/// Whether an entry asks for any.
bool IsAskedFor(ApplicationManifestFileEntry const& p_Entry);

/// Gives a file that has just been moved into place the permissions that its entry asks for:
/// 0444 for a read-only file, 0777 for an executable one; an entry with both ends as 0777.
void ApplyToNewFile(QString const& p_Path, ApplicationManifestFileEntry const& p_Entry);

/// Does the same for a file that has been in place before.
void FixExistingFile(QString const& p_Path, ApplicationManifestFileEntry const& p_Entry);

} // namespace Varnholt::Launcher::PermissionBits
