#pragma once

#include <QString>
#include <QtGlobal>

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

} // namespace Varnholt::Host
