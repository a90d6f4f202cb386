#pragma once

#include "Files/FileLock.hpp"

#include <QString>

namespace Varnholt::Publisher {

/// Keeps everybody else from changing a published tree at the same time, by a file in it that goes
/// with the lock.
class TreeLock {
public:
    /// \param p_Root the tree's folder
    explicit TreeLock(QString const& p_Root);
    ~TreeLock() { Release(); }

    /// \throws Failure when another run has it, or the folder cannot be locked
    void Take();
    void Release() { File.Remove(); }
    bool IsTaken() const { return File.IsTaken(); }

private:
    QString Root;
    FileLock File;
};

} // namespace Varnholt::Publisher
