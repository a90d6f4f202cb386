#pragma once

#include <QString>

#include <chrono>
#include <filesystem>

namespace Varnholt::Publisher {

/// A file of the source folder as the scan found it.
struct SourceFile {
    QString Path; ///< relative to the source folder, "/" between components
    /// Where it lies on this machine: the text of a path, as paths take many times its memory.
    std::filesystem::path::string_type Location;
    qint64 Size = 0;                      ///< bytes
    std::chrono::nanoseconds Modified{0}; ///< since 1970
    quint64 Inode = 0;                    ///< tells it from another file that took its place
    qint64 Changed = 0; ///< ns, moves with whatever is done to it, also when `Modified` is set back
};

} // namespace Varnholt::Publisher
