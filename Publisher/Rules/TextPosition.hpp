#pragma once

#include <QByteArray>

namespace Varnholt::Publisher {

/// A place in a UTF-8 text, counted as editors count.
struct TextPosition {
    int Line = 1;   ///< from 1
    int Column = 1; ///< from 1, in characters

    /// \param p_Offset in bytes; one beyond the text means its end
    static TextPosition At(QByteArray const& p_Text, int p_Offset);
};

} // namespace Varnholt::Publisher
