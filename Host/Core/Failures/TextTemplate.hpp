#pragma once

#include <QString>

namespace Varnholt::Host {

/// Puts subject and detail in the places of {s} and {d}, in one pass: a path that holds "{d}" stays
/// itself.
QString FillTemplate(QString const& p_Template, QString const& p_Subject, QString const& p_Detail);

} // namespace Varnholt::Host
