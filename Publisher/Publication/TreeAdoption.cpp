#include "Publisher/Publication/TreeAdoption.hpp"

#include "Publisher/Failure.hpp"
#include "Publisher/Tree/BuildCatalog.hpp"
#include "Publisher/Tree/TreeMark.hpp"
#include "Publisher/Tree/TreeTransaction.hpp"
#include "Publisher/Verification/TreeVerification.hpp"

namespace Varnholt::Publisher {

void AdoptTree(QString const& p_Output, QString const& p_AppId, PublicationObserver& p_Observer)
{
    PublishedTree const copy(p_Output, p_AppId);
    TreeMark const mark(p_Output);
    if (mark.IsThere())
        throw Failure(p_Output + QStringLiteral(": is a published tree already"));
    TreeTransaction tree(p_Output);
    QStringList const defects = TreeVerification(copy, &p_Observer).Run().Defects;
    if (!defects.isEmpty()) {
        throw Failure(QStringLiteral("%1: the copy is not whole: %2 defects, the first is: %3")
                          .arg(p_Output, QString::number(defects.size()), defects.first()));
    }
    BuildCatalog const catalog(p_Output, p_AppId);
    BuildRecord record = catalog.Record();
    record.SetOrder(catalog.Builds());
    tree.AddText(record.Text(), record.Path());
    tree.AddText(TreeMark::Text(), mark.Path());
    tree.Commit();
}

} // namespace Varnholt::Publisher
