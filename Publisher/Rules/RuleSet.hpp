#pragma once

#include "Publisher/Rules/FileTreatment.hpp"
#include "Publisher/Rules/Rule.hpp"

#include <QString>

#include <map>
#include <vector>

namespace Varnholt::Publisher {

/// Which rule decided each property of a path; null where none did.
struct RuleExplanation {
    Rule const* Flags = nullptr;
    Rule const* Locale = nullptr;
    Rule const* Streamed = nullptr;
    Rule const* Excluded = nullptr;

    /// What they decided; the plain treatment where none did.
    FileTreatment Treatment() const;
};

/// The rules of a build and the languages that it offers.
struct RuleSet {
    std::vector<Rule> Rules;
    std::map<QString, QString> Locales; ///< display name by tag

    /// Asks every rule in order; a later one overrides an earlier one property by property. What
    /// `BuiltInExcludes()` name stays excluded unless a rule's pattern is the very path.
    /// \param p_Fitting as many as `Rules`; those that fit the path are set
    FileTreatment TreatmentOf(QString const& p_Path, std::vector<bool>* p_Fitting = nullptr) const;

    /// \return pointers into `Rules` and `BuiltInExcludes()`
    RuleExplanation Explain(QString const& p_Path, std::vector<bool>* p_Fitting = nullptr) const;
};

} // namespace Varnholt::Publisher
