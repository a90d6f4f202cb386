#pragma once

#include "Publisher/BuildFile.hpp"
#include "Publisher/ContentStore.hpp"
#include "Publisher/PublicationObserver.hpp"
#include "Publisher/PublicationSummary.hpp"
#include "Publisher/PublishOptions.hpp"
#include "Publisher/RuleSet.hpp"
#include "Publisher/TreeTransaction.hpp"

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
    RuleSet ReadRules() const;
    std::vector<BuildFile> ListFiles(RuleSet const& p_Rules) const;
    void CheckGameExecutable(std::vector<BuildFile> const& p_Files) const;
    void Hash(std::vector<BuildFile>& p_Files);
    void AddContent(std::vector<BuildFile> const& p_Files, TreeTransaction& p_Tree);
    void CopyTo(QString const& p_Target, BuildFile const& p_File);
    void AddManifest(QByteArray const& p_Manifest, TreeTransaction& p_Tree) const;
    void AddServerFiles(TreeTransaction& p_Tree) const;
    void AddVersion(TreeTransaction& p_Tree) const;

    PublishOptions const& Options;
    PublicationObserver& Observer;
    QString AppFolder;
    ContentStore Store;
    PublicationSummary Summary;
};

} // namespace Varnholt::Publisher
