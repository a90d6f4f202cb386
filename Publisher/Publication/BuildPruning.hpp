#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace Varnholt::Publisher {

/// Which builds are to go.
struct PruneOptions {
    QString Output;
    QString AppId;
    std::optional<int> Keep; ///< all but so many of the newest
    QStringList Builds;      ///< these
    bool DryRun = false;     ///< change nothing, only answer what would go
};

/// What went, or would go.
struct PruneSummary {
    QStringList Builds;
    int KeptBuilds = 0;
    int ContentFiles = 0;
    qint64 ContentBytes = 0;
};

/// Removes builds, and content that no build uses any more. What a channel offers stays in any
/// case.
///
/// Manifests go first: whenever the work is interrupted, what is left of it is content without a
/// use, which the next pruning finds.
/// \throws Failure
PruneSummary PruneBuilds(PruneOptions const& p_Options);

} // namespace Varnholt::Publisher
