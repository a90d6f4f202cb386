#pragma once

#include <QString>

/// The pieces that a manual page is made of, in the language of man(7). What a function takes as
/// text is made by others of these.
namespace Varnholt::Pages::Troff {

/// Text that shows as it is, wherever in a line it stands.
QString Plain(QString const& p_Text);
QString Bold(QString const& p_Text);
QString Italic(QString const& p_Text);
/// Lines of their own; adds the full stop.
QString Sentence(QString const& p_Text);
/// A line that stands out, and lines that belong to it.
QString Item(QString const& p_Title, QString const& p_Lines);

} // namespace Varnholt::Pages::Troff
