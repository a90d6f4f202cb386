#pragma once

#include <QHash>
#include <QString>

#include <optional>

namespace Varnholt::Launcher {

/// Finds the symbolic links below an installation folder that lead out of it. What is behind them
/// is not the game's: it is neither read nor written, removed or given another mode. The folder
/// itself may be reached by a link, and links that stay inside lead where they like.
///
/// Folders are looked at once, files each time they are asked for. Not for two threads at once.
class LinkGuard {
public:
    struct Link {
        QString Path;   ///< of the link, in full
        QString Target; ///< where it leads to
    };

    LinkGuard() = default;
    /// \param p_Folder ends in "/"; need not exist
    explicit LinkGuard(QString const& p_Folder);

    /// The link on the way to a file, or in its place, that leads out. One that leads to nothing,
    /// or in a circle, counts: writing through it would make a file who knows where. \param p_Path
    /// relative to the folder
    std::optional<Link> LeadingOut(QString const& p_Path);

    QString Folder;

private:
    std::optional<Link> LookedUp(QString const& p_Path);
    std::optional<Link> Look(QString const& p_Path) const;

    QString Root; ///< canonical, ends in "/"
    QHash<QString, std::optional<Link>> Folders;
};

} // namespace Varnholt::Launcher
