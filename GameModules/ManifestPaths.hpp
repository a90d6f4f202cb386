#pragma once

#include "Launcher/Application/ApplicationManifest.hpp"

#include <QString>

namespace Varnholt::Launcher::ManifestPaths {

/// True when the path, joined to the installation folder, names something below that folder: it is
/// not empty, not absolute, does not climb out, ends at no NUL character and is made of whole
/// characters. "\" counts as a separator too, since some systems take it for one.
bool IsInsideFolder(QString const& p_Path);

/// True when the path has more than 1,023 bytes in UTF-8, or a name of more than 255: no file of
/// that name can be made on the systems that the game knows.
bool IsTooLong(QString const& p_Path);

/// Removes every entry whose path is not inside the folder, or too long, with a warning for each: a
/// manifest comes from outside, and its paths are read, written, removed and given new modes.
void DropUnsafeEntries(ApplicationManifest& p_Manifest);

} // namespace Varnholt::Launcher::ManifestPaths
