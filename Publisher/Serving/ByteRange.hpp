#pragma once

#include <QtGlobal>

#include <optional>

namespace Varnholt::Publisher {

/// A part of a file.
struct ByteRange {
    qint64 Offset = 0;
    qint64 Length = 0;

    /// What a requested range means for a file.
    /// \param p_First its first byte; -1 for "the last p_Last bytes"
    /// \param p_Last its last byte; -1 for "up to the end"
    /// \param p_Size the file's size in bytes
    /// \return nothing when the file holds no byte of it
    static std::optional<ByteRange> Of(qint64 p_First, qint64 p_Last, qint64 p_Size);
};

} // namespace Varnholt::Publisher
