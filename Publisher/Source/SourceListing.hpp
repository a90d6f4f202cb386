#pragma once

#include "Publisher/Publication/PublicationObserver.hpp"
#include "Publisher/Publication/PublishOptions.hpp"
#include "Publisher/Rules/RuleSet.hpp"
#include "Publisher/Tree/BuildFile.hpp"

#include <vector>

namespace Varnholt::Publisher::SourceListing {

/// The rules of a publication, built-in ones when it names no file. \throws Failure
RuleSet ReadRules(PublishOptions const& p_Options);

/// The files that are published, ordered by the UTF-8 bytes of their paths. The observer is warned
/// of rules of the rules file that fit no path.
/// \throws Failure for a folder or a file that cannot be published
std::vector<BuildFile> PublishedFiles(PublishOptions const& p_Options, RuleSet const& p_Rules,
                                      PublicationObserver& p_Observer);

/// The same with those that the rules exclude.
std::vector<BuildFile> AllFiles(PublishOptions const& p_Options, RuleSet const& p_Rules,
                                PublicationObserver& p_Observer);

/// Sees to it that clients find exactly one file to start.
/// \throws Failure
void CheckGameExecutable(PublishOptions const& p_Options, std::vector<BuildFile> const& p_Files,
                         PublicationObserver& p_Observer);

} // namespace Varnholt::Publisher::SourceListing
