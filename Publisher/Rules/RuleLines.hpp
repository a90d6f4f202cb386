#pragma once

#include <QByteArray>

#include <vector>

namespace Varnholt::Publisher {

/// In which line of a rules file each rule begins: of the elements of the top level's "rules", in
/// their order.
/// \param p_Text a well-formed JSON document
std::vector<int> RuleLines(QByteArray const& p_Text);

} // namespace Varnholt::Publisher
