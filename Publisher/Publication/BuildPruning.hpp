#pragma once

#include "Publisher/Tree/BuildCatalog.hpp"

#include <QSet>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

namespace Varnholt::Publisher {

class TreeTransaction;

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
class BuildPruning {
public:
    /// Must outlive the object.
    explicit BuildPruning(PruneOptions const& p_Options);

    /// \throws Failure
    PruneSummary Run();

private:
    QSet<QString> Served() const;
    QStringList Chosen() const;
    void CheckNamed(QSet<QString> const& p_Served) const;
    QSet<QString> ContentOf(QStringList const& p_Builds) const;
    void Note(TreeTransaction& p_Tree) const;
    void RemoveBuild(QString const& p_Build) const;
    void RemoveStaged();
    void RemoveContent(QSet<QString> const& p_Used);

    PruneOptions const& Options;
    BuildCatalog Catalog;
    PruneSummary Summary;
};

} // namespace Varnholt::Publisher
