#pragma once

#include "Tests/Hostile/AccessWatch.hpp"

#include <QString>
#include <QStringList>

#include <memory>

namespace Varnholt::TestSupport {

/// A tree of files that are nobody's but the user's, beside a game's folder: whatever is done to it
/// shows.
class OutsideTree {
public:
    /// Makes the tree: a folder, a file of each kind that a game's folder holds, and others.
    /// \param p_Folder ends in no "/"; does not exist
    explicit OutsideTree(QString const& p_Folder);

    QString Path(QString const& p_Name = {}) const;
    /// Looks at everything and watches from now on.
    void Watch();
    /// What was read, changed, made or removed since then; empty when nothing was.
    QStringList Disturbances();

private:
    QStringList Listing() const;

    QString Folder;
    QStringList Before;
    std::unique_ptr<AccessWatch> Accesses;
};

} // namespace Varnholt::TestSupport
