#pragma once

#include <QStringList>

class QWidget;

namespace Varnholt::TestSupport {

/// The content of the column that a part is in and can be scrolled in; null when it is in none.
QWidget const* ScrolledContent(QWidget const& p_Part);

/// What of a window that is shown cannot be read: a part that is smaller than its text, that lies
/// beyond the window, or that another one hides. What can be scrolled to is no such part.
QStringList ClippedParts(QWidget const& p_Window);

} // namespace Varnholt::TestSupport
