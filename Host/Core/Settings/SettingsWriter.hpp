#pragma once

#include "Files/FileLock.hpp"
#include "Host/Core/Failures/Failure.hpp"
#include "Host/Core/Settings/SettingsFile.hpp"

#include <QString>

#include <optional>

namespace Varnholt::Host {

/// Changes a settings file as a whole or not at all, one program at a time. What is there already
/// must be settings, and such as may be written: a file without the right to write stays, although
/// its folder would let it be replaced.
class SettingsWriter {
public:
    /// Where a password is kept. A file with it is its owner's alone, whatever its mode was.
    static constexpr char c_PasswordKey[] = "options/content-password";

    /// Creates the folder of the file, and keeps other programs from writing as long as it lives.
    /// \param p_File absolute; of a link the file that it leads to is meant
    explicit SettingsWriter(QString const& p_File);
    ~SettingsWriter();
    SettingsWriter(SettingsWriter const&) = delete;
    SettingsWriter& operator=(SettingsWriter const&) = delete;

    /// Why nothing can be written, as `Write` tells too.
    std::optional<Failure> const& Problem() const { return Hindrance; }
    /// \param p_Changes an invalid value removes its key
    /// \return why the file is as it was
    std::optional<Failure> Write(SettingsFile::Values const& p_Changes);
    /// All that the file holds, after `Write`.
    SettingsFile::Values const& Written() const { return Merged; }

private:
    std::optional<Failure> Prepare();
    std::optional<Failure> WaitForOthers();
    Failure Because(int p_Error) const;
    bool ReadValues();
    bool SetMode(QString const& p_Fresh) const;
    QString NewName() const;

    QString const File;
    QString const Target;
    QString const Folder; ///< nobody else enters it
    FileLock Lock;
    bool HasFolder = false;
    std::optional<Failure> Hindrance;
    QByteArray Before;
    SettingsFile::Values Merged;
};

} // namespace Varnholt::Host
