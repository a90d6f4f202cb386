#include "Publisher/Verification/TreeRepair.hpp"

#include "Publisher/Publication/ContentIntake.hpp"
#include "Publisher/Source/SourceScan.hpp"
#include "Publisher/Tree/TreeMark.hpp"
#include "Publisher/Tree/TreeTransaction.hpp"
#include "Publisher/Verification/TreeVerification.hpp"

#include <QFileInfo>

namespace Varnholt::Publisher {

namespace {

/// Paths in the source folder at which damaged content may be found.
QSet<QString> Candidates(BuildCatalog const& p_Tree, VerificationSummary const& p_Found,
                         QString const& p_Source)
{
    QSet<QString> paths;
    for (QString const& build : p_Found.Builds) {
        for (PublishedFile const& file : p_Tree.ReadBuild(build).Files) {
            if (p_Found.Damaged.contains(file.Md5) &&
                QFileInfo(p_Source + QLatin1Char('/') + file.Path).isFile())
                paths.insert(file.Path);
        }
    }
    return paths;
}

} // namespace

VerificationSummary RepairTree(QString const& p_Output, QString const& p_AppId,
                               QString const& p_Source, PublicationObserver& p_Observer,
                               DocumentCheck const& p_Check)
{
    TreeMark(p_Output).CheckIsTree();
    TreeTransaction transaction(p_Output);
    BuildCatalog const tree(p_Output, p_AppId);
    tree.CheckIsPublished();
    VerificationSummary found = VerifyTree(tree, &p_Observer, p_Check);
    if (found.Damaged.isEmpty())
        return found;
    QSet<QString> const candidates = Candidates(tree, found, p_Source);
    if (candidates.isEmpty())
        return found;
    ContentStore const store(tree.Folder());
    ContentStaging staging(p_Output, p_AppId);
    ContentIntake intake(store, &staging, p_Observer);
    auto const treat = [&](QString const& p_Path) {
        FileTreatment treatment;
        treatment.Excluded = !candidates.contains(p_Path);
        return treatment;
    };
    for (BuildFile const& file : ScanSource(p_Source, treat)) {
        QString const md5 = intake.Stage(file.Source);
        if (found.Damaged.remove(md5))
            transaction.Add(staging.PathOf(md5), store.PathOf(md5));
    }
    transaction.Commit();
    staging.Remove();
    return VerifyTree(tree, &p_Observer, p_Check);
}

} // namespace Varnholt::Publisher
