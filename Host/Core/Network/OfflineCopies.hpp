#pragma once

#include "Host/Gateway/Gateway.hpp"

#include <QString>

namespace Varnholt::Host {

/// The version file, manifest and host list of the last build that was completed, kept for starts
/// without a server. They lie beside the settings file, in a folder of its name with ".offline" in
/// the place of its suffix; a file is named as its path on the server, percent-encoded.
class OfflineCopies {
public:
    using Documents = Gateway::Gateway::Documents;

    explicit OfflineCopies(QString const& p_SettingsFile);

    /// Replaces what was kept. A kill at any moment leaves a set that can be used, the old or the
    /// new one. \param p_VersionPath the version file's path, which names the set
    /// \return false when something could not be written
    bool Keep(Documents const& p_Documents, std::string const& p_VersionPath) const;
    /// Empty when nothing is kept.
    Documents Read() const;
    void Forget() const;
    QString const& Folder() const { return Where; }

private:
    bool Write(std::string const& p_Path, std::string const& p_Content) const;
    QString FileOf(std::string const& p_Path) const;

    QString Where; ///< ends in "/"
};

} // namespace Varnholt::Host
