#pragma once

#include <QString>

#include <map>

namespace Varnholt::Publisher {

/// Reads the value of --locales, "TAG=NAME,...".
/// \return names by tag
/// \throws Failure with the status of a usage error
std::map<QString, QString> ParseLocales(QString const& p_Text);

} // namespace Varnholt::Publisher
