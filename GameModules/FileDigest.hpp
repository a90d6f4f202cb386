#pragma once

#include <QString>

#include <functional>

namespace Varnholt::Launcher::FileDigest {

/// As which a file's bytes are asked about.
constexpr qint64 c_BlockBytes = 0x2000;

/// The MD5 digest of a file on disk.
struct Digest {
    bool Opened = false;   ///< false: no digest
    bool Complete = false; ///< false: reading was stopped before the file's end
    QString Md5;           ///< of what was read, 32 upper-case hexadecimal digits
};

/// Hashes a file block by block with constant memory. Any thread.
/// \param p_Continue asked before each block; false ends the reading
Digest Of(QString const& p_Path, std::function<bool()> const& p_Continue);

/// Asks and answers as `Of` does for a file whose digest is known.
/// \param p_Size bytes
Digest Known(QString const& p_Md5, qint64 p_Size, std::function<bool()> const& p_Continue);

} // namespace Varnholt::Launcher::FileDigest
