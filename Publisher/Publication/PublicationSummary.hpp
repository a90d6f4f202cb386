#pragma once

#include <QString>

#include <vector>

namespace Varnholt::Publisher {

/// A file of the tree.
struct TreeFile {
    QString Path; ///< relative to the tree
    qint64 Bytes = 0;
};

/// What a publication did, or would do.
struct PublicationSummary {
    int Files = 0; ///< of the build
    int StreamedFiles = 0;
    qint64 Bytes = 0;        ///< of the build's files
    int NewContentFiles = 0; ///< that no earlier build had
    qint64 NewContentBytes = 0;
    int IndexedFiles = 0; ///< that were not read, since the index knew them
    qint64 IndexedBytes = 0;
    qint64 Milliseconds = 0;          ///< from the scan to the end
    QString UnchangedBuild;           ///< the build on offer that made publishing needless, or null
    std::vector<TreeFile> WouldWrite; ///< of a dry run: the files for clients
};

} // namespace Varnholt::Publisher
