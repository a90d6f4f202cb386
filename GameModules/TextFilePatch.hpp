#pragma once

#include <QString>

namespace Varnholt::Launcher {

/// Edits whole lines of a game text file.
class TextFilePatch {
public:
    /// Drops every line that contains the key (anywhere, in any letter case) and appends the line.
    ///
    /// The other lines keep their order; line ends become "\n". A missing file is created with its
    /// folders, holding the line without a line end, or left missing. The file is replaced as a
    /// whole; one that cannot be written stays as it was. An existing file is read and written in
    /// the local 8-bit encoding, a created one is UTF-8. Reports nothing.
    static void Apply(QString const& p_FilePath, QString const& p_Key, QString const& p_Line,
                      bool p_CreateIfMissing);
};

} // namespace Varnholt::Launcher
