#pragma once

#include <QSet>
#include <QStringList>

namespace Varnholt::Publisher {

/// What a verification has found.
struct VerificationSummary {
    QStringList Builds;
    QStringList Servers;   ///< that were asked; none for a tree
    int Files = 0;         ///< looked at, of all servers together
    int FilesRead = 0;     ///< of these, every byte
    int Signatures = 0;    ///< looked at
    quint64 Sequence = 0;  ///< the highest number of a signature that is good
    QStringList Defects;   ///< one sentence each
    QSet<QString> Damaged; ///< digests of content that is missing or wrong in a tree
};

} // namespace Varnholt::Publisher
