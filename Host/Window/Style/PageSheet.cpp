#include "Host/Window/Style/PageSheet.hpp"

namespace Varnholt::Host {

namespace {

constexpr char c_Sheet[] = R"(
#panel, #strip { background: {panel}; border-radius: 12px; }
#panel QLabel, #strip QLabel { color: {text}; background: transparent; font-size: 14px; }
#panel QLabel[quiet="true"], #strip QLabel[quiet="true"] { color: {quiet}; }
#panel #name { font-size: 20px; font-weight: 600; }
#panel #headline, #panel #percent { font-size: 15px; font-weight: 600; }
#strip { border-left: 4px solid {warning}; border-top-left-radius: 3px;
    border-bottom-left-radius: 3px; }
#strip #stripTitle { font-size: 15px; font-weight: 600; }
QProgressBar { background: {veil}; border: none; border-radius: 3px; }
QProgressBar::chunk { background: {accent}; border-radius: 3px; }
QPushButton { color: {text}; background: {veil}; border: 2px solid transparent;
    border-radius: 8px; padding: 6px 16px; font-size: 14px; outline: none; }
QPushButton:hover { background: {veil2}; }
QPushButton:focus, QToolButton:focus { border-color: {text}; }
QPushButton:disabled { color: {quiet}; }
QPushButton#primary { color: {accentText}; background: {accent}; font-size: 20px;
    font-weight: 600; padding: 12px 24px; border-radius: 10px; }
QPushButton#primary:hover { background: {accentLight}; }
QPushButton#primary:disabled { color: {quiet}; background: {veil}; }
QToolButton { color: {text}; background: {veil}; border: 2px solid transparent;
    border-radius: 8px; padding: 6px; }
QToolButton:hover, QToolButton:checked { background: {veil2}; }
QToolButton::menu-indicator { image: none; }
QListView { color: {text}; background: transparent; border: none; font-size: 13px; }
QListView::item { padding: 2px 0; }
QListView::item:selected { color: {accentText}; background: {accent}; }
)";

/// As style sheets write it, with its translucency.
QString Rgba(QColor const& p_Color)
{
    return QStringLiteral("rgba(%1, %2, %3, %4)")
        .arg(p_Color.red())
        .arg(p_Color.green())
        .arg(p_Color.blue())
        .arg(p_Color.alpha());
}

QString Veil(QColor p_Text, int p_Alpha)
{
    p_Text.setAlpha(p_Alpha);
    return Rgba(p_Text);
}

} // namespace

QString PageSheet(PagePalette const& p_Palette)
{
    constexpr int c_Veil = 30;
    constexpr int c_StrongVeil = 60;
    constexpr int c_Lighter = 112;

    QString sheet = QString::fromLatin1(c_Sheet);
    sheet.replace(QLatin1String("{panel}"), Rgba(p_Palette.Panel));
    sheet.replace(QLatin1String("{text}"), Rgba(p_Palette.Text));
    sheet.replace(QLatin1String("{quiet}"), Rgba(p_Palette.Quiet));
    sheet.replace(QLatin1String("{warning}"), Rgba(p_Palette.Warning));
    sheet.replace(QLatin1String("{accent}"), Rgba(p_Palette.Accent));
    sheet.replace(QLatin1String("{accentLight}"), Rgba(p_Palette.Accent.lighter(c_Lighter)));
    sheet.replace(QLatin1String("{accentText}"), Rgba(p_Palette.AccentText));
    sheet.replace(QLatin1String("{veil}"), Veil(p_Palette.Text, c_Veil));
    sheet.replace(QLatin1String("{veil2}"), Veil(p_Palette.Text, c_StrongVeil));
    return sheet;
}

} // namespace Varnholt::Host
