#include "Publisher/Publication/BuildRollback.hpp"

#include "Publisher/Failure.hpp"
#include "Publisher/Signatures/TreeSigner.hpp"
#include "Publisher/Tree/BuildCatalog.hpp"
#include "Publisher/Tree/TreeMark.hpp"
#include "Publisher/Tree/TreeTransaction.hpp"
#include "Publisher/Verification/TreeVerification.hpp"

namespace Varnholt::Publisher {

namespace {

QStringList DefectsOf(BuildCatalog const& p_Catalog, RollbackOptions const& p_Options,
                      PublicationObserver* p_Observer)
{
    if (p_Options.Quick)
        return p_Catalog.Read(p_Options.Build).Missing;
    return VerifyBuild(p_Catalog, p_Options.Build, p_Observer).Defects;
}

void CheckBuild(BuildCatalog const& p_Catalog, RollbackOptions const& p_Options,
                PublicationObserver* p_Observer)
{
    p_Catalog.CheckHas(p_Options.Build);
    QStringList const defects = DefectsOf(p_Catalog, p_Options, p_Observer);
    if (!defects.isEmpty()) {
        throw Failure(
            QStringLiteral("%1: the build %2 is not whole: %3 content files are missing or "
                           "damaged, the first is %4")
                .arg(p_Catalog.ManifestPath(p_Options.Build), p_Options.Build,
                     QString::number(defects.size()), defects.first()));
    }
}

QString Before(BuildCatalog const& p_Catalog, bool p_DevChannel)
{
    try {
        return p_Catalog.BuildOn(p_DevChannel);
    } catch (Failure const&) {
        // A version file that is damaged is what this replaces.
        return QString();
    }
}

} // namespace

QString RollBack(RollbackOptions const& p_Options, PublicationObserver* p_Observer)
{
    TreeMark(p_Options.Output).CheckIsTree();
    SignatureRecord(p_Options.Output).CheckMayChange(p_Options.Signing);
    TreeTransaction tree(p_Options.Output);
    BuildCatalog const catalog(p_Options.Output, p_Options.AppId);
    CheckBuild(catalog, p_Options, p_Observer);
    QString before = Before(catalog, p_Options.DevChannel);
    TreeSigner(p_Options.Output, p_Options.AppId, p_Options.Signing)
        .Commit(tree, {{catalog.VersionPath(p_Options.DevChannel),
                        BuildCatalog::VersionText(p_Options.Build)}});
    return before;
}

} // namespace Varnholt::Publisher
