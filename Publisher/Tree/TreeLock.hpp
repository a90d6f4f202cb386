#pragma once

#include "Files/FileLock.hpp"

#include <QString>

namespace Varnholt::Publisher {

/// Keeps everybody else from changing a published tree at the same time, by a file that stays
/// there: to lock a tree takes no room on its disk.
class TreeLock {
public:
    /// \param p_Root the tree's folder
    explicit TreeLock(QString const& p_Root);

    /// \throws Failure when another run has it, or the folder cannot be locked
    void Take();
    void Release() { File.Release(); }
    /// Lets go of a folder that is no tree, and takes the file away.
    void Remove() { File.Remove(); }
    bool IsTaken() const { return File.IsTaken(); }

private:
    QString Root;
    FileLock File;
};

} // namespace Varnholt::Publisher
