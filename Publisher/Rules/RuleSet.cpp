#include "Publisher/Rules/RuleSet.hpp"

#include "Publisher/Rules/BuiltInRules.hpp"

namespace Varnholt::Publisher {

FileTreatment RuleSet::TreatmentOf(QString const& p_Path, std::vector<bool>* p_Fitting) const
{
    return Explain(p_Path, p_Fitting).Treatment();
}

FileTreatment RuleExplanation::Treatment() const
{
    FileTreatment treatment;
    if (Flags)
        treatment.Flags = *Flags->Flags;
    if (Locale)
        treatment.Locale = *Locale->Locale;
    if (Streamed)
        treatment.Streamed = *Streamed->Streamed;
    if (Excluded)
        treatment.Excluded = *Excluded->Excluded;
    return treatment;
}

RuleExplanation RuleSet::Explain(QString const& p_Path, std::vector<bool>* p_Fitting) const
{
    RuleExplanation decided;
    bool isNamed = false;
    for (std::size_t i = 0; i < Rules.size(); ++i) {
        Rule const& rule = Rules[i];
        if (!rule.Match.Matches(p_Path))
            continue;
        if (p_Fitting)
            (*p_Fitting)[i] = true;
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
