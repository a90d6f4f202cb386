#pragma once

#include "Publisher/Rules/RuleSet.hpp"
#include "Publisher/Tree/ContentPlatform.hpp"

#include <QString>

#include <map>

namespace Varnholt::Publisher {

/// What a game folder is published by when no rules file is given: the game's executable, the
/// folders of its languages, and nothing of what players and their systems leave in it.
/// \param p_Locales the languages on offer, display name by tag
RuleSet BuiltInRules(ContentPlatform p_Platform, std::map<QString, QString> const& p_Locales);

} // namespace Varnholt::Publisher
