#pragma once

#include <QString>

namespace Varnholt::Publisher {

/// How one file of the source is published.
struct FileTreatment {
    qint32 Flags = 0; ///< manifest flags
    QString Locale;   ///< tag of the one language it belongs to; empty for all
    bool Streamed = false;
    bool Excluded = false; ///< not published at all
};

} // namespace Varnholt::Publisher
