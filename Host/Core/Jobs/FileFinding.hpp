#pragma once

#include "Host/Core/Failures/Failure.hpp"
#include "Host/Core/Folder/FileAmount.hpp"
#include "Launcher/Application/ApplicationManifest.hpp"

#include <QString>
#include <QtGlobal>

#include <vector>

namespace Varnholt::Host {

/// A file that is not as the build wants it, and why.
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
    Failure Problem;   ///< what has kept it so, and what to do about it

    FileFinding() = default;
    /// \param p_Folder of the game \param p_WhenThere the cause if the file is there
    FileFinding(QString const& p_Folder, Launcher::ApplicationManifestFileEntry const& p_Entry,
                Cause p_WhenThere);

    /// "missing", "different", "blocked" or "pending".
    QString CauseText() const;
};

/// What is still to fetch.
FileAmount AmountOf(std::vector<FileFinding> const& p_Findings);
/// As the build has them, with path and location only.
std::vector<Launcher::ApplicationManifestFileEntry>
EntriesOf(std::vector<FileFinding> const& p_Findings);

} // namespace Varnholt::Host
