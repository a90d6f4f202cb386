#pragma once

#include <QLockFile>
#include <QString>

namespace Varnholt::Host {

/// Keeps a folder for one run of one program, by a file in it. A program that was killed leaves the
/// file behind, and the next one takes it over.
class FolderLock {
public:
    static QString const c_File;

    /// \param p_Folder ends in "/"
    explicit FolderLock(QString const& p_Folder);

    /// \return false when another program holds it. A folder that takes no such file is held by
    /// nobody.
    bool Take();

private:
    bool TryFile();

    QString Path;
    QLockFile File;
};

} // namespace Varnholt::Host
