#pragma once

#include "Publisher/Publication/PublicationObserver.hpp"
#include "Publisher/Signatures/DocumentCheck.hpp"
#include "Publisher/Tree/BuildCatalog.hpp"
#include "Publisher/Verification/VerificationSummary.hpp"

namespace Varnholt::Publisher {

/// Looks whether a tree holds every byte of the builds that its channels offer.
/// \param p_Observer null: nobody
/// \param p_Check of the signatures; off: they are not looked at
VerificationSummary VerifyTree(BuildCatalog const& p_Tree, PublicationObserver* p_Observer,
                               DocumentCheck const& p_Check);

/// The same for one build, on offer or not, without signatures.
VerificationSummary VerifyBuild(BuildCatalog const& p_Tree, QString const& p_Build,
                                PublicationObserver* p_Observer);

} // namespace Varnholt::Publisher
