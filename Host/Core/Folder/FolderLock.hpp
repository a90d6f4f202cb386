#pragma once

#include "Files/FileLock.hpp"
#include "Host/Core/Failures/Failure.hpp"
#include "Host/Core/Failures/Notice.hpp"

#include <QString>

#include <optional>

namespace Varnholt::Host {

/// Keeps a folder for one run of one program, by a file in it that stays there.
class FolderLock {
public:
    static QString const c_File;

    /// \param p_Folder ends in "/"
    explicit FolderLock(QString const& p_Folder);

    /// \return why nothing may be done in the folder; none when the lock is held, and also where
    /// there can be none, see `Warning`
    std::optional<Failure> Take();
    /// What the user should know when others are not kept out; empty when they are.
    std::optional<Notice> Warning() const;
    /// Takes the file away and lets go: the game is gone.
    void Remove() { File.Remove(); }

private:
    QString Folder;
    FileLock File;
};

} // namespace Varnholt::Host
