#pragma once

#include <QString>

namespace Varnholt::Publisher {

/// Returns when everything that was written to the file system of a folder is on its disk, so that
/// a power failure cannot keep what is done next and lose what was done before.
/// \throws Failure when the disk has reported an error
void StorageSync(QString const& p_Folder);

} // namespace Varnholt::Publisher
