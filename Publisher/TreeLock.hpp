#pragma once

#include <QLockFile>
#include <QString>

#include <memory>

namespace Varnholt::Publisher {

/// Keeps everybody else from changing a published tree at the same time.
class TreeLock {
public:
    /// \param p_Root the tree's folder
    explicit TreeLock(QString const& p_Root);

    /// \throws Failure when another run has it, or the folder cannot be written
    void Take();
    void Release() { Lock->unlock(); }
    bool IsTaken() const { return Lock->isLocked(); }

private:
    QString Root;
    std::unique_ptr<QLockFile> Lock;
};

} // namespace Varnholt::Publisher
