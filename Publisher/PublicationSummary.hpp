#pragma once

#include <QtGlobal>

namespace Varnholt::Publisher {

/// What a publication did.
struct PublicationSummary {
    int Files = 0; ///< of the build
    int StreamedFiles = 0;
    qint64 Bytes = 0;        ///< of the build's files
    int NewContentFiles = 0; ///< that no earlier build had
    qint64 NewContentBytes = 0;
    qint64 Milliseconds = 0; ///< from the scan to the end
};

} // namespace Varnholt::Publisher
