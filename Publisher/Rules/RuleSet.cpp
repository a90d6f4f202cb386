#include "Publisher/Rules/RuleSet.hpp"

#include "Publisher/Rules/BuiltInRules.hpp"

namespace Varnholt::Publisher {

FileTreatment RuleSet::TreatmentOf(QString const& p_Path) const
{
    RuleExplanation const decided = Explain(p_Path);
    FileTreatment treatment;
    if (decided.Flags)
        treatment.Flags = *decided.Flags->Flags;
    if (decided.Locale)
        treatment.Locale = *decided.Locale->Locale;
    if (decided.Streamed)
        treatment.Streamed = *decided.Streamed->Streamed;
    if (decided.Excluded)
        treatment.Excluded = *decided.Excluded->Excluded;
    return treatment;
}

RuleExplanation RuleSet::Explain(QString const& p_Path) const
{
    RuleExplanation decided;
    bool isNamed = false;
    for (Rule const& rule : Rules) {
        if (!rule.Match.Matches(p_Path))
            continue;
        isNamed = isNamed || rule.Pattern == p_Path;
        decided.Flags = rule.Flags ? &rule : decided.Flags;
        decided.Locale = rule.Locale ? &rule : decided.Locale;
        decided.Streamed = rule.Streamed ? &rule : decided.Streamed;
        decided.Excluded = rule.Excluded ? &rule : decided.Excluded;
    }
    if (isNamed)
        return decided;
    for (Rule const& rule : BuiltInExcludes())
        decided.Excluded = rule.Match.Matches(p_Path) ? &rule : decided.Excluded;
    return decided;
}

} // namespace Varnholt::Publisher
