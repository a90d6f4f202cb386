#include "Host/Window/Style/WindowPalette.hpp"

namespace Varnholt::Host {

namespace {

/// The opaque colour of the panel with a veil of the text's colour over it.
QColor Ground(PagePalette const& p_Page, int p_Veil)
{
    QColor panel = p_Page.Panel;
    panel.setAlpha(255);
    QColor veil = p_Page.Text;
    veil.setAlpha(p_Veil);
    return PagePalette::Over(veil, panel);
}

} // namespace

QPalette WindowPalette(PagePalette const& p_Page)
{
    QColor const window = Ground(p_Page, 16);
    QPalette palette(Ground(p_Page, 58), window);
    for (QPalette::ColorRole const role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText})
        palette.setColor(role, p_Page.Text);
    palette.setColor(QPalette::Base, Ground(p_Page, 44));
    palette.setColor(QPalette::Mid, Ground(p_Page, 90)); // lines
    palette.setColor(QPalette::AlternateBase, window);
    palette.setColor(QPalette::ToolTipBase, Ground(p_Page, 30));
    palette.setColor(QPalette::PlaceholderText, Ground(p_Page, 204));
    palette.setColor(QPalette::Highlight, p_Page.Accent);
    palette.setColor(QPalette::HighlightedText, p_Page.AccentText);
    palette.setColor(QPalette::Link, p_Page.Accent);
    QColor const disabled = Ground(p_Page, 110);
    for (QPalette::ColorRole const role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, disabled);
    palette.setColor(QPalette::Disabled, QPalette::Highlight, Ground(p_Page, 30));
    palette.setColor(QPalette::Disabled, QPalette::HighlightedText, disabled);
    return palette;
}

} // namespace Varnholt::Host
