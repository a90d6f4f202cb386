#pragma once

#include "Publisher/Publication/PublicationSummary.hpp"
#include "Publisher/Publication/PublishOptions.hpp"

namespace Varnholt::Publisher {

/// Tells on standard output what a publication did.
class BuildReport {
public:
    /// Both arguments must outlive the object.
    BuildReport(PublishOptions const& p_Options, PublicationSummary const& p_Summary);

    void PrintText() const;
    /// Each file that would be written, then a summary.
    void PrintJson() const;

private:
    void PrintHeading() const;
    qint64 BytesPerSecond() const;

    PublishOptions const& Options;
    PublicationSummary const& Summary;
};

} // namespace Varnholt::Publisher
