#pragma once

#include <QString>

/// The pieces that a manual page is made of, in the language of man(7). What a function takes as
/// text is made by others of these.
namespace Varnholt::Host::Pages::Troff {

/// Text that shows as it is, wherever in a line it stands.
QString Plain(QString const& p_Text);
QString Bold(QString const& p_Text);
QString Italic(QString const& p_Text);
/// Lines of their own; adds the full stop.
QString Sentence(QString const& p_Text);

QString Title(QString const& p_Program, QString const& p_Version);
QString Section(QString const& p_Name);
/// Between two paragraphs.
QString Paragraph();
/// A line that stands out, and lines that belong to it.
QString Item(QString const& p_Title, QString const& p_Lines);
/// Items below an item; empty stays empty.
QString Indented(QString const& p_Items);

} // namespace Varnholt::Host::Pages::Troff
