#pragma once

#include <QString>
#include <QtGlobal>

#include <cstddef>

namespace Varnholt::Host {

/// Files and their bytes.
struct FileAmount {
    quint32 Files = 0;
    quint64 Bytes = 0;
    bool IsLeast = false; ///< the size of some is not known

    /// Counts a file. \param p_Bytes negative when unknown
    void Add(qint64 p_Bytes);
};

/// "1 file", "3 files".
QString FileCountText(std::size_t p_Count);
/// "3 files (1.2 MiB)"; "at least" when the size of some is not known.
QString AmountText(FileAmount const& p_Amount);

} // namespace Varnholt::Host
