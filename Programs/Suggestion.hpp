#pragma once

#include <QStringList>

namespace Varnholt::Programs {

/// "did you mean "update"?" for a word that nearly is one of those known; empty otherwise.
QString Suggestion(QString const& p_Word, QStringList const& p_Known);

} // namespace Varnholt::Programs
