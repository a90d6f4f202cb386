#pragma once

#include <QString>
#include <QtGlobal>

#include <cstddef>
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

/// "1 file", "3 files".
QString FileCountText(std::size_t p_Count);

/// What is still to fetch.
struct FetchAmount {
    std::size_t Files = 0;
    quint64 Bytes = 0;
    bool IsWhole = true; ///< every size is known

    explicit FetchAmount(std::vector<FileFinding> const& p_Findings);
    /// "3 files (1.2 MiB)"; "at least" when a server did not tell every size.
    QString Text() const;
};

} // namespace Varnholt::Host
