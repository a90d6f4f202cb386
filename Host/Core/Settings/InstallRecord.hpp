#pragma once

#include "Host/Core/Settings/HostSettings.hpp"

#include <QString>

namespace Varnholt::Host {

/// What the settings know of a module's installation: the module's own keys, read only, and the
/// host's, which begin with "host/". Any thread.
class InstallRecord {
public:
    InstallRecord(HostSettings& p_Settings, QString p_AppId);

    /// The folders of every module's installation.
    static QStringList Folders(HostSettings const& p_Settings);

    /// True when there is a folder too: without one an installation is none.
    bool IsInstalled() const;
    /// Ends in "/"; empty when none is recorded.
    QString Folder() const;

    /// A run was begun and not completed. The pending lists may lack files then: every file has to
    /// be looked at again.
    bool IsUnfinished() const;
    void MarkUnfinished();
    /// \param p_Build the version file's build, all of whose files are in place
    /// \return why that could not be written: the next run would not know of the game
    std::optional<Failure> MarkComplete(QString const& p_Build);
    QString CompletedBuild() const;
    /// Removes the host's own keys; the module removes its own when it uninstalls.
    void Forget();
    /// Why what is recorded could not be kept; none when it will be.
    std::optional<Failure> WriteRefusal() const { return Settings.WriteRefusal(); }
    /// Writes what is not kept yet. \return why that was not possible
    std::optional<Failure> Save() { return Settings.Save(); }
    /// The settings file.
    QString File() const { return Settings.File(); }

private:
    QString ModuleKey(char const* p_Suffix) const { return AppId + QLatin1String(p_Suffix); }
    QString HostKey(char const* p_Name) const;

    HostSettings& Settings;
    QString AppId;
};

} // namespace Varnholt::Host
