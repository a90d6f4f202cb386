#include "Publisher/Publication/BuildRollback.hpp"

#include "Publisher/Failure.hpp"
#include "Publisher/Tree/BuildCatalog.hpp"
#include "Publisher/Tree/TreeMark.hpp"
#include "Publisher/Tree/TreeTransaction.hpp"

namespace Varnholt::Publisher {

namespace {

void CheckBuild(BuildCatalog const& p_Catalog, QString const& p_Build)
{
    p_Catalog.CheckHas(p_Build);
    CatalogedBuild const build = p_Catalog.Read(p_Build);
    if (!build.Missing.isEmpty()) {
        throw Failure(QStringLiteral("%1: the build %2 is not complete: %3 content files are "
                                     "missing, the first is %4")
                          .arg(p_Catalog.ManifestPath(p_Build), p_Build,
                               QString::number(build.Missing.size()), build.Missing.first()));
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

QString RollBack(RollbackOptions const& p_Options)
{
    TreeMark(p_Options.Output).CheckIsTree();
    TreeTransaction tree(p_Options.Output);
    BuildCatalog const catalog(p_Options.Output, p_Options.AppId);
    CheckBuild(catalog, p_Options.Build);
    QString before = Before(catalog, p_Options.DevChannel);
    tree.AddText(BuildCatalog::VersionText(p_Options.Build),
                 catalog.VersionPath(p_Options.DevChannel));
    tree.Commit();
    return before;
}

} // namespace Varnholt::Publisher
