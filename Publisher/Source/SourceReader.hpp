#pragma once

#include "Publisher/Source/SourceFile.hpp"

#include <QString>

#include <functional>

#include <sys/stat.h>

namespace Varnholt::Publisher::SourceReader {

/// Gets each block as it was read; may throw to stop the reading.
using BlockSink = std::function<void(char const* p_Data, qint64 p_Bytes)>;

/// Reads a file from its start to its end with constant memory. Any thread.
/// \return its MD5 digest, 32 upper-case hexadecimal digits
/// \throws Failure when it cannot be read, or is not the file any more that the scan found
QString Read(SourceFile const& p_File, BlockSink const& p_Sink);

/// When a file's content was changed, since 1970.
std::chrono::nanoseconds ModificationTime(struct stat const& p_Status);

/// When a file was changed in any way, in ns.
qint64 ChangeTime(struct stat const& p_Status);

/// What to report about a file that was altered between two looks at it.
QString ChangedText(SourceFile const& p_File);

} // namespace Varnholt::Publisher::SourceReader
