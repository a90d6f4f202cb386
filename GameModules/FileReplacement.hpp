#pragma once

#include <QByteArray>
#include <QString>

namespace Varnholt::Launcher::FileReplacement {

/// Puts a small file in the place of another as a whole, with the permissions of the old one:
/// nobody sees it half written, and what cannot be written completely (a full disk) leaves the old
/// one as it was. Symbolic links are followed. Where no new file can be made beside the old one,
/// because the folder is read-only, it is written in place. Nothing is written when that content
/// stands there already.
/// \return false when it does not stand there in the end
bool Replace(QString const& p_Path, QByteArray const& p_Content);

/// Behind the name of a file: the new one until it takes its place. Always the same, so that a
/// process that is killed in between leaves one at most, which the next replacement takes away.
constexpr char c_Suffix[] = ".varnholt-new";

} // namespace Varnholt::Launcher::FileReplacement
