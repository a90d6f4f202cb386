#pragma once

#include "Publisher/Rules/RuleSet.hpp"
#include "Publisher/Tree/ContentPlatform.hpp"

#include <QString>

#include <map>

namespace Varnholt::Publisher {

/// What a game folder is published by when no rules file is given: the game's executable and the
/// folders of its languages.
/// \param p_Locales the languages on offer, display name by tag
RuleSet BuiltInRules(ContentPlatform p_Platform, std::map<QString, QString> const& p_Locales);

/// What players, their systems and clients leave in a game folder. No rule set publishes it unless
/// one of its rules names the very path. Any thread.
std::vector<Rule> const& BuiltInExcludes();

} // namespace Varnholt::Publisher
