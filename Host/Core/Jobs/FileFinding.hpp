#pragma once

#include "Host/Core/Folder/FileAmount.hpp"
#include "Launcher/Application/ApplicationManifest.hpp"

#include <QString>
#include <QtGlobal>

#include <vector>

namespace Varnholt::Host {

/// A file that an update or repair would fetch, and why.
struct FileFinding {
    enum class Cause {
        Missing,
        Different, ///< its digest is not the build's, or it cannot be read
        Blocked,   ///< a folder stands in its place
        Pending,   ///< a run before has put it on its list
    };

    QString Path;     ///< in the game folder
    QString Location; ///< on a server
    bool IsDefaultServerOnly = false;
    Cause Why = Cause::Missing;
    qint64 Bytes = -1; ///< still to fetch; negative when unknown

    /// "missing", "different", "blocked" or "pending".
    QString CauseText() const;
};

/// What is still to fetch.
FileAmount AmountOf(std::vector<FileFinding> const& p_Findings);
/// As the build has them, with path and location only.
std::vector<Launcher::ApplicationManifestFileEntry>
EntriesOf(std::vector<FileFinding> const& p_Findings);

} // namespace Varnholt::Host
