#pragma once

#include "Publisher/Publication/PublicationSummary.hpp"
#include "Publisher/Publication/PublishOptions.hpp"

/// Tells on standard output what a publication did.
namespace Varnholt::Publisher::BuildReport {

void PrintText(PublishOptions const& p_Options, PublicationSummary const& p_Summary);
/// Each file that would be written, then a summary.
void PrintJson(PublishOptions const& p_Options, PublicationSummary const& p_Summary);

} // namespace Varnholt::Publisher::BuildReport
