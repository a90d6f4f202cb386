#pragma once

#include <QString>

namespace Varnholt::Launcher::FileLink {

/// What stands in the place of a file, as far as symbolic links are concerned.
enum class Kind {
    None,    ///< no link: a file, a folder, nothing
    Players, ///< put there by the player, and leads to a file: as good as one of the same content
    Strange, ///< of another user, or leads to no file: gives way to the file
};

/// Looks at the link itself. Any thread.
Kind At(QString const& p_Path);

/// Whether a file stands there, or a link of the player's that leads to one.
bool IsFile(QString const& p_Path);

/// Whether the link belongs to the user who runs this program, or to root, which is taken for their
/// consent. False when there is no link. Any thread.
bool IsPlayers(QString const& p_Path);

} // namespace Varnholt::Launcher::FileLink
