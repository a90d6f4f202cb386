#pragma once

#include "Publisher/Publication/PublicationSummary.hpp"
#include "Publisher/Publication/PublishOptions.hpp"
#include "Publisher/Rules/RuleSet.hpp"
#include "Publisher/Tree/BuildCatalog.hpp"
#include "Publisher/Tree/BuildFile.hpp"
#include "Publisher/Tree/ContentStore.hpp"
#include "Publisher/Tree/TreeText.hpp"

#include <QByteArray>
#include <QString>

#include <vector>

namespace Varnholt::Publisher {

/// What a tree lacks of a build, in the order in which it is to appear. Looks at the tree, changes
/// nothing.
class PublicationPlan {
public:
    using Text = TreeText;

    /// \param p_Files all of them hashed
    /// \throws Failure when the tree holds something in their place
    PublicationPlan(PublishOptions const& p_Options, RuleSet const& p_Rules,
                    std::vector<BuildFile> const& p_Files, ContentStore const& p_Store);

    /// The build that the channel offers when it has these files, this host list and this realm
    /// list already; null otherwise.
    QString UnchangedBuild(RuleSet const& p_Rules, std::vector<BuildFile> const& p_Files) const;

    /// Files whose content is not there yet, one for each content.
    std::vector<BuildFile> Content;
    Text Record;                   ///< of the builds' order, for the publisher, with `Manifest`
    std::vector<Text> Manifest;    ///< none when the build is there already
    std::vector<Text> ServerFiles; ///< those that change
    Text Version;

    qint64 ContentBytes() const;
    /// Everything, for people.
    std::vector<TreeFile> TreeFiles() const;
    /// The small files for clients, the version file last.
    std::vector<Text> Texts() const;

private:
    void AddContent(std::vector<BuildFile> const& p_Files, ContentStore const& p_Store);
    void AddManifest(QByteArray const& p_Manifest);
    void AddServerFiles();
    void AddServerFile(QByteArray const& p_Content, QString const& p_Target);

    PublishOptions const& Options;
    BuildCatalog Tree;
};

} // namespace Varnholt::Publisher
