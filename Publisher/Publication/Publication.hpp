#pragma once

#include "Publisher/Publication/PublicationObserver.hpp"
#include "Publisher/Publication/PublicationPlan.hpp"
#include "Publisher/Publication/PublicationSummary.hpp"
#include "Publisher/Publication/PublishOptions.hpp"
#include "Publisher/Source/HashIndex.hpp"
#include "Publisher/Tree/BuildFile.hpp"
#include "Publisher/Tree/TreeMark.hpp"
#include "Publisher/Tree/TreeTransaction.hpp"

#include <QSet>

#include <vector>

namespace Varnholt::Publisher {

/// Publishes one build: reads a source folder and brings a tree up to date that any HTTP server
/// with byte ranges can serve.
///
/// Clients see the build when the version file changes, which is the last thing to happen. Content
/// files and manifests of earlier builds stay.
class Publication {
public:
    /// Both arguments must outlive the object.
    Publication(PublishOptions const& p_Options, PublicationObserver& p_Observer);

    /// \throws Failure; the tree is then as it was
    PublicationSummary Run();

private:
    void CheckFolders() const;
    void Hash(std::vector<BuildFile>& p_Files);
    void TakeFromIndex(std::vector<BuildFile>& p_Files);
    void Write(PublicationPlan const& p_Plan, std::vector<BuildFile> const& p_Files,
               TreeTransaction& p_Tree);
    void WriteContent(std::vector<BuildFile> const& p_Missing, TreeTransaction& p_Tree);
    void CopyTo(QString const& p_Target, BuildFile const& p_File);
    void Count(std::vector<BuildFile> const& p_Files, PublicationPlan const& p_Plan);

    PublishOptions const& Options;
    PublicationObserver& Observer;
    QString AppFolder;
    TreeMark Mark;
    HashIndex Index;
    std::filesystem::file_time_type Scanned;
    QSet<QString> FromIndex; ///< paths
    PublicationSummary Summary;
};

} // namespace Varnholt::Publisher
