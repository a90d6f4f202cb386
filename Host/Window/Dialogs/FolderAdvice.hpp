#pragma once

#include "Host/Core/Failures/Failure.hpp"

#include <QCoreApplication>
#include <QString>

#include <vector>

namespace Varnholt::Host {

/// What a player should know of a folder before a game is installed there. Looks at no disk.
class FolderAdvice {
    Q_DECLARE_TR_FUNCTIONS(Varnholt::Host::FolderAdvice)

public:
    /// One thing that speaks against the folder, in whole sentences.
    struct Point {
        QString Text;
        bool Forbids = false; ///< otherwise the player may go on all the same
    };

    FolderAdvice() = default;
    /// \param p_Warnings of a preview, see `RunResult`
    explicit FolderAdvice(std::vector<Failure> const& p_Warnings);

    std::vector<Point> const& Points() const { return Found; }
    /// Whether nothing forbids the installation.
    bool IsPossible() const;
    /// Whether the folder belongs to other things, so that one of its own inside would do.
    bool IsShared() const { return Shared; }

    /// Where a game goes that the player has not said anything of: "/home/me/Games/NAME".
    static QString Proposal(QString const& p_Home, QString const& p_Game);
    /// The game's own folder inside of another.
    static QString Inside(QString const& p_Folder, QString const& p_Game);

private:
    static Point PointOf(Failure const& p_Warning);

    std::vector<Point> Found;
    bool Shared = false;
};

} // namespace Varnholt::Host
