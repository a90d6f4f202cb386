#pragma once

#include "Publisher/Publication/PublicationObserver.hpp"
#include "Publisher/Signatures/DocumentCheck.hpp"
#include "Publisher/Tree/BuildCatalog.hpp"
#include "Publisher/Verification/VerificationSummary.hpp"

#include <QSet>

namespace Varnholt::Publisher {

/// Looks whether a tree holds every byte of the builds that clients are given.
class TreeVerification {
public:
    /// \param p_Observer null: nobody; must outlive the object, as the tree
    /// \param p_Check of the signatures; off: they are not looked at
    explicit TreeVerification(BuildCatalog const& p_Tree, PublicationObserver* p_Observer = nullptr,
                              DocumentCheck p_Check = DocumentCheck({}, {}));

    /// What the channels offer, and its signatures.
    VerificationSummary Run();
    /// One build, on offer or not.
    VerificationSummary CheckBuild(QString const& p_Build);

private:
    /// A text file's bytes, null with a defect when it cannot be read.
    QByteArray Read(QString const& p_Path);
    QStringList ServedBuilds();
    void CheckSignatures(QStringList const& p_Builds);
    void AddFiles(QString const& p_Build);
    void CheckFiles();

    BuildCatalog const& Tree;
    PublicationObserver* Observer;
    DocumentCheck Check;
    VerificationSummary Summary;
    std::vector<PublishedFile> Files; ///< each content once
    QSet<QString> Known;              ///< what is in `Files`
};

} // namespace Varnholt::Publisher
