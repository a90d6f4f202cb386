#pragma once

#include "Publisher/Tree/BuildFile.hpp"

#include <QByteArray>

#include <optional>

namespace Varnholt::Publisher {

/// A file's digest and what tells that it still is that file: "SIZE TIME INODE MD5 PATH".
struct HashLine {
    QByteArray Signature; ///< size, time and inode
    QByteArray Md5;
    QByteArray Path;

    /// More bytes than any line has.
    static constexpr qint64 c_MostBytes = 64LL * 1024;

    /// Of a file that is hashed.
    static HashLine Of(BuildFile const& p_File);
    /// None for what is no such line. \param p_Text without a line end
    static std::optional<HashLine> Parse(QByteArray const& p_Text);

    /// With a line end.
    QByteArray Text() const { return Signature + ' ' + Md5 + ' ' + Path + '\n'; }
    /// Whether it tells of the file as it is now.
    bool IsOf(SourceFile const& p_File) const;
};

/// Whether a file cannot change any more without a visible change of its time: it may when it was
/// written just before the scan. \param p_Scanned since 1970
bool IsSettled(SourceFile const& p_File, std::chrono::nanoseconds p_Scanned);

} // namespace Varnholt::Publisher
