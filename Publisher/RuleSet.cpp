#include "Publisher/RuleSet.hpp"

namespace Varnholt::Publisher {

FileTreatment RuleSet::TreatmentOf(QString const& p_Path) const
{
    FileTreatment treatment;
    for (Rule const& rule : Rules) {
        if (!rule.Match.Matches(p_Path))
            continue;
        treatment.Flags = rule.Flags.value_or(treatment.Flags);
        treatment.Locale = rule.Locale.value_or(treatment.Locale);
        treatment.Streamed = rule.Streamed.value_or(treatment.Streamed);
        treatment.Excluded = rule.Excluded.value_or(treatment.Excluded);
    }
    return treatment;
}

} // namespace Varnholt::Publisher
