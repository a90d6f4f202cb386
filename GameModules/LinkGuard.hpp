#pragma once

#include <QHash>
#include <QString>

#include <optional>

namespace Varnholt::Launcher {

/// Finds the symbolic links below an installation folder that may not be followed. The folder
/// itself may be reached by a link, and links that stay inside lead where they like.
///
/// Of the links that lead out, those on the way to the build's files are followed when they are the
/// player's, who has moved a folder to another disk; what is behind any other is not the game's: it
/// is neither read nor written, removed or given another mode. Links that lead to nothing, or in a
/// circle, count as leading out: writing through one would make a file who knows where.
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

    /// The link on the way to one of the build's files that is not followed. What stands in the
    /// place of the file itself is not looked at, see `FileLink`. \param p_Path relative
    std::optional<Link> OnTheWay(QString const& p_Path);

    /// The link on the way to a file that the module makes itself, or in its place, that leads out,
    /// whoever has put it there. \param p_Path relative
    std::optional<Link> LeadingOut(QString const& p_Path);

    QString Folder;

private:
    /// The first links of a folder's path: that leads out, and that is not followed.
    struct Way {
        std::optional<Link> Out;
        std::optional<Link> Barred;
    };

    Way const& WayTo(QString const& p_Path);
    void Look(QString const& p_Path, QString const& p_Step, Way& p_Way) const;

    QString Root;             ///< canonical, ends in "/"
    QHash<QString, Way> Ways; ///< by folder
};

} // namespace Varnholt::Launcher
