#pragma once

#include "Publisher/Publication/ContentIntake.hpp"
#include "Publisher/Publication/PublicationPlan.hpp"
#include "Publisher/Publication/PublicationSummary.hpp"
#include "Publisher/Publication/PublishOptions.hpp"
#include "Publisher/Source/HashIndex.hpp"
#include "Publisher/Source/HashJournal.hpp"
#include "Publisher/Tree/BuildFile.hpp"
#include "Publisher/Tree/TreeMark.hpp"
#include "Publisher/Tree/TreeTransaction.hpp"

#include <vector>

namespace Varnholt::Publisher {

/// Publishes one build: reads a source folder and brings a tree up to date that any HTTP server
/// with byte ranges can serve.
///
/// Clients see the build when the version file changes, which is the last thing to happen. Content
/// files and manifests of earlier builds stay. What a run has read and copied when it fails or is
/// killed saves the next one the work.
class Publication {
public:
    /// Both arguments must outlive the object.
    Publication(PublishOptions const& p_Options, PublicationObserver& p_Observer);

    /// \throws Failure; the tree is then as it was for clients
    PublicationSummary Run();

private:
    void CheckFolders() const;
    void Publish(RuleSet const& p_Rules, std::vector<BuildFile>& p_Files, TreeTransaction* p_Tree);
    void Hash(std::vector<BuildFile>& p_Files);
    void TakeFromIndex(std::vector<BuildFile>& p_Files, HashJournal const& p_Journal);
    void CheckStore(std::vector<BuildFile> const& p_Files);
    void Write(PublicationPlan const& p_Plan, TreeTransaction& p_Tree);
    void StageRest(std::vector<BuildFile> const& p_Content);
    void StageAgain(BuildFile const& p_File);
    void Count(std::vector<BuildFile> const& p_Files, PublicationPlan const& p_Plan);

    PublishOptions const& Options;
    PublicationObserver& Observer;
    QString AppFolder;
    TreeMark Mark;
    HashIndex Index;
    ContentStore Store;
    ContentStaging Staging;
    ContentIntake Intake;
    std::chrono::nanoseconds Scanned{0}; ///< since 1970
    PublicationSummary Summary;
};

} // namespace Varnholt::Publisher
