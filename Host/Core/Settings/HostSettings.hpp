#pragma once

#include "Host/Core/Settings/SettingsFile.hpp"
#include "Host/Core/Settings/SettingsWriter.hpp"

#include <QMutex>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <optional>

namespace Varnholt::Host {

/// The settings store of host and module, an INI file. All operations from any thread.
class HostSettings {
public:
    static constexpr auto& c_PasswordKey = SettingsWriter::c_PasswordKey;

    /// Only reads. \param p_File absolute, or seen from the current folder
    explicit HostSettings(QString const& p_File);
    /// Writes what has not found room until now.
    ~HostSettings();
    HostSettings(HostSettings const&) = delete;
    HostSettings& operator=(HostSettings const&) = delete;

    QVariant Value(QString const& p_Key, QVariant const& p_Default = {}) const;
    void SetValue(QString const& p_Key, QVariant const& p_Value);
    QStringList Keys() const { return All().keys(); }
    SettingsFile::Values All() const;
    void Remove(QString const& p_Key);

    /// Takes up what another program has written meanwhile; what is not in the file yet stays. Of a
    /// file that cannot be read any more, what it held goes on to hold.
    void ReadAgain();

    /// Why the file could not be read at first: nothing is known then, and nothing is overwritten.
    /// None when there is no file.
    std::optional<Failure> const& ReadFailure() const { return Unreadable; }
    /// Why the file may not be written, known without writing it; none when there is only no room
    /// for it, as there may be some later.
    std::optional<Failure> WriteRefusal() const;
    /// Writes what has changed. \return why that was not possible
    std::optional<Failure> Save();
    QString File() const { return Path; }

private:
    std::optional<Failure> Write();

    QString const Path;
    std::optional<Failure> const Unreadable;
    mutable QMutex StoreMutex;
    SettingsFile::Values Values;    ///< as the file was last seen, with what is not in it yet
    SettingsFile::Values Unwritten; ///< the latter; an invalid value removes its key
};

} // namespace Varnholt::Host
