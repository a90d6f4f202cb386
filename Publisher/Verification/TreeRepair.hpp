#pragma once

#include "Publisher/Publication/PublicationObserver.hpp"
#include "Publisher/Signatures/DocumentCheck.hpp"
#include "Publisher/Verification/VerificationSummary.hpp"

namespace Varnholt::Publisher {

/// Writes anew what is damaged or missing of the builds on offer, from files of a source folder
/// that lie where the builds have them. \return what was found after that \throws Failure
VerificationSummary RepairTree(QString const& p_Output, QString const& p_AppId,
                               QString const& p_Source, PublicationObserver& p_Observer,
                               DocumentCheck const& p_Check);

} // namespace Varnholt::Publisher
