#pragma once

#include "Publisher/Signatures/DocumentCheck.hpp"
#include "Publisher/Signatures/SignatureRecord.hpp"
#include "Publisher/Signatures/SigningOptions.hpp"
#include "Publisher/Tree/BuildCatalog.hpp"
#include "Publisher/Tree/TreeText.hpp"

#include <QStringList>

#include <map>
#include <vector>

namespace Varnholt::Publisher {

class TreeTransaction;

/// Writes the documents of one change of a tree with their signatures.
///
/// All documents that say what is current get a new signature with the change's number, so that
/// clients find them of one age. What the change leaves alone is signed again only as what was
/// signed before: a signature is no voucher for what somebody else has put into the tree.
///
/// A signature takes its place right before its document. Whoever asks in between gets the new
/// signature with the old document, once: the next answer is new, so clients ask again. After a
/// kill or a power failure in between it stays so until the tree is changed or signed again;
/// `verify` tells of it. The other way round would be no better, and the version file would not be
/// the last.
class TreeSigner {
public:
    /// Of a tree that nobody else changes meanwhile.
    /// \param p_AppId empty: nothing of an application is signed again
    /// \throws Failure when the change is not to be made, see `SignatureRecord::CheckMayChange`
    TreeSigner(QString const& p_Output, QString const& p_AppId, SigningOptions const& p_Options);

    /// Whether all that says what is current has good signatures, or needs none.
    bool IsComplete() const;

    /// Adds the documents of the change to a transaction and commits it; the last document is the
    /// last to appear.
    /// \throws Failure also when a signature beside what is left alone is not good
    void Commit(TreeTransaction& p_Tree, std::vector<TreeText> const& p_Change);

    /// Signs all that the tree holds of the application, as it is. \throws Failure
    void CommitAll(TreeTransaction& p_Tree);

    /// Signs all that a tree holds, of all its applications, with another key, and that key with
    /// the old one. \throws Failure also when anything was changed since the old one signed it
    static void ChangeKey(QString const& p_Output, SigningOptions const& p_Old,
                          Signing::SecretKey const& p_New);

    quint64 Sequence() const { return Record.Sequence(); }
    /// How many signatures it has added.
    int Count() const { return Signatures; }

private:
    void CommitUnsigned(TreeTransaction& p_Tree, std::vector<TreeText> const& p_Change) const;
    void AddKeyChange(TreeTransaction& p_Tree, Signing::SecretKey const& p_New);
    void Begin(TreeTransaction& p_Tree);
    std::vector<TreeText> Current() const;
    std::vector<TreeText> Manifests(QStringList const& p_Builds) const;
    QString ForgeryOf(TreeText const& p_Text) const;
    void CheckSigned(std::vector<TreeText> const& p_Texts) const;
    QStringList BuildsOnOffer(std::vector<TreeText> const& p_Texts) const;
    void LearnPlatforms(std::vector<TreeText> const& p_Texts, QStringList const& p_OnOffer);
    void AddSignature(TreeTransaction& p_Tree, TreeText const& p_Text);

    QString Output;
    BuildCatalog Catalog;
    SigningOptions Options;
    QString AppId;
    SignatureRecord Record;
    DocumentCheck Check;
    QDateTime Now;
    std::map<QString, QString> Platforms; ///< by build; by none, of the rest
    int Signatures = 0;
};

} // namespace Varnholt::Publisher
