#pragma once

#include "Publisher/Source/SourceFile.hpp"

#include <QString>

#include <functional>
#include <vector>

#include <sys/stat.h>

namespace Varnholt::Publisher::SourceReader {

/// Gets each block as it was read; may throw to stop the reading.
using BlockSink = std::function<void(char const* p_Data, qint64 p_Bytes)>;

struct Request {
    SourceFile const* File;
    BlockSink Sink;
};

/// So many files are hashed in the time of a few.
constexpr std::size_t c_MostFiles = 16;

/// Reads files side by side, each from its start to its end, with constant memory. Any thread.
/// \param p_Requests at most `c_MostFiles`
/// \return their MD5 digests, 32 upper-case hexadecimal digits
/// \throws Failure when one cannot be read, or is not the file any more that the scan found
std::vector<QString> Read(std::vector<Request> const& p_Requests);

/// The same for one file.
QString Read(SourceFile const& p_File, BlockSink const& p_Sink);

/// When a file's content was changed, since 1970.
std::chrono::nanoseconds ModificationTime(struct stat const& p_Status);

/// When a file was changed in any way, in ns.
qint64 ChangeTime(struct stat const& p_Status);

/// What to report about a file that was altered between two looks at it.
QString ChangedText(SourceFile const& p_File);

} // namespace Varnholt::Publisher::SourceReader
