#pragma once

#include "Publisher/Rules/RuleSet.hpp"
#include "Publisher/Tree/ContentPlatform.hpp"

namespace Varnholt::Publisher {

/// Reads a rules file:
/// {"locales": {"frFR": "Français"}, "rules": [{"match": "Data/frFR/**", "locale": "frFR"}]}
///
/// Whatever is not understood is an error, since a misspelt flag would otherwise publish a build
/// that looks right and does not work.
/// \param p_Platform decides the flag behind "game-executable"
/// \param p_Locales languages declared elsewhere, names by tag; they win over the file's
/// \throws Failure that names the file, the place and the cause
RuleSet ReadRuleSet(QString const& p_FileName, ContentPlatform p_Platform,
                    std::map<QString, QString> const& p_Locales);

} // namespace Varnholt::Publisher
