#pragma once

#include <QString>
#include <QStringList>

namespace Varnholt::TestSupport {

/// Everything below a folder, hidden entries too, in alphabetical order: path, kind, size, mode,
/// time of the last change and digest, so that nothing can change without showing.
QStringList FolderListing(QString const& p_Folder);

} // namespace Varnholt::TestSupport
