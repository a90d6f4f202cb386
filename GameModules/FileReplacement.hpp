#pragma once

#include <QByteArray>
#include <QString>

namespace Varnholt::Launcher {

/// Puts a small file in the place of another as a whole: nobody sees it half written, and what
/// cannot be written completely (a full disk) leaves the old one as it was. Where no new file can
/// be made beside the old one, because the folder is read-only, it is written in place.
/// \return false when it was not written
bool ReplaceFile(QString const& p_Path, QByteArray const& p_Content);

} // namespace Varnholt::Launcher
