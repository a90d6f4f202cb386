#include "Publisher/Publication/TreeAdoption.hpp"

#include "Publisher/Failure.hpp"
#include "Publisher/Signatures/SignatureRecord.hpp"
#include "Publisher/Tree/BuildCatalog.hpp"
#include "Publisher/Tree/TreeMark.hpp"
#include "Publisher/Tree/TreeTransaction.hpp"
#include "Publisher/Verification/TreeVerification.hpp"

#include <QFileInfo>

namespace Varnholt::Publisher {

namespace {

bool IsSigned(BuildCatalog const& p_Catalog)
{
    return QFileInfo::exists(DocumentCheck::SignatureOf(p_Catalog.VersionPath(false))) ||
           QFileInfo::exists(DocumentCheck::SignatureOf(p_Catalog.VersionPath(true)));
}

/// \return the number of the latest change, as far as there are keys
quint64 CheckWhole(BuildCatalog const& p_Copy, DocumentCheck const& p_Check,
                   PublicationObserver& p_Observer)
{
    VerificationSummary const found = VerifyTree(p_Copy, &p_Observer, p_Check);
    if (!found.Defects.isEmpty()) {
        throw Failure(
            QStringLiteral("%1: the copy is not whole: %2 defects, the first is: %3")
                .arg(p_Copy.Root(), QString::number(found.Defects.size()), found.Defects.first()));
    }
    return found.Sequence;
}

} // namespace

void AdoptTree(QString const& p_Output, QString const& p_AppId,
               std::optional<Signing::PublicKey> const& p_Key, PublicationObserver& p_Observer)
{
    BuildCatalog const copy(p_Output, p_AppId);
    copy.CheckIsPublished();
    TreeMark const mark(p_Output);
    if (mark.IsThere())
        throw Failure(p_Output + QStringLiteral(": is a published tree already"));
    if (!p_Key && IsSigned(copy)) {
        throw Failure(p_Output + QStringLiteral(": the copy is signed: name its key with "
                                                "--trust-key"),
                      Failure::c_Usage);
    }
    TreeTransaction tree(p_Output);
    QList<Signing::PublicKey> keys;
    if (p_Key)
        keys += *p_Key;
    quint64 const sequence = CheckWhole(copy, {keys, p_AppId}, p_Observer);
    if (p_Key) {
        SignatureRecord signatures(p_Output);
        signatures.SetKey(*p_Key);
        signatures.SetSequence(sequence);
        tree.AddText(signatures.Text(), signatures.Path());
    }
    BuildRecord record = copy.Record();
    record.SetOrder(copy.Builds());
    tree.AddText(record.Text(), record.Path());
    tree.AddText(TreeMark::Text(), mark.Path());
    tree.Commit();
}

} // namespace Varnholt::Publisher
