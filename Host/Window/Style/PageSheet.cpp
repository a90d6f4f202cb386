#include "Host/Window/Style/PageSheet.hpp"

#include <QFontInfo>
#include <QGuiApplication>

#include <utility>

namespace Varnholt::Host {

namespace {

constexpr char c_Sheet[] = R"(
#panel, #strip, #history { background: {panel}; border-radius: 12px; }
#panel QLabel, #strip QLabel { color: {text}; background: transparent; font-size: {normal}; }
#panel QLabel[quiet="true"], #strip QLabel[quiet="true"] { color: {quiet}; }
#panel #name { font-size: {large}; font-weight: 600; }
#panel #headline, #panel #percent, #strip #stripTitle { font-size: {strong}; font-weight: 600; }
#strip { border-left: 4px solid {warning}; border-top-left-radius: 3px;
    border-bottom-left-radius: 3px; }
QProgressBar { background: {veil}; border: none; border-radius: 3px; }
QProgressBar::chunk { background: {accent}; border-radius: 3px; }
QPushButton { color: {text}; background: {veil}; border: 2px solid transparent;
    border-radius: 8px; padding: 6px 16px; font-size: {normal}; outline: none; }
QPushButton:hover { background: {veil2}; }
QPushButton:focus, QToolButton:focus { border-color: {text}; }
QPushButton:disabled { color: {quiet}; }
QPushButton#primary { color: {accentText}; background: {accent}; font-size: {large};
    font-weight: 600; padding: 12px 16px; border-radius: 10px; }
QPushButton#primary:hover { background: {accentLight}; }
QPushButton#primary:disabled { color: {quiet}; background: {veil}; }
QToolButton { color: {text}; background: {veil}; border: 2px solid transparent;
    border-radius: 8px; padding: 6px; }
QToolButton:hover, QToolButton:checked { background: {veil2}; }
QToolButton::menu-indicator { image: none; }
QListView { color: {text}; background: transparent; border: none; font-size: {small}; }
#history { padding: 10px 4px 10px 16px; }
QListView::item { padding: 2px 0; }
QListView::item:selected { color: {accentText}; background: {accent}; }
QMenu { color: {text}; background: palette(window); border: 1px solid palette(mid); padding: 6px; }
QMenu::item { padding: 6px 28px 6px 16px; border-radius: 4px; }
QMenu::item:selected { color: {accentText}; background: {accent}; }
QMenu::item:disabled { color: {dim}; background: transparent; }
QMenu::separator { height: 1px; background: {veil}; margin: 6px 8px; }
QScrollBar { background: transparent; width: 10px; }
QScrollBar::handle { background: {veil2}; border-radius: 3px; margin: 2px; min-height: 24px; }
QScrollBar::handle:hover { background: {quiet}; }
QScrollBar::add-line, QScrollBar::sub-line { height: 0; }
QScrollBar::add-page, QScrollBar::sub-page { background: transparent; }
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

QString Veil(QColor p_Color, int p_Alpha)
{
    p_Color.setAlpha(p_Alpha);
    return Rgba(p_Color);
}

} // namespace

QString PageSheet(PagePalette const& p_Palette)
{
    constexpr int c_Veil = 30;
    constexpr int c_StrongVeil = 60;
    constexpr int c_Dim = 150;
    constexpr int c_Lighter = 112;

    QString sheet = QString::fromLatin1(c_Sheet);
    int const size = QFontInfo(QGuiApplication::font()).pixelSize(); // that the user reads well
    for (auto const& [name, percent] : {std::pair("{small}", 108), std::pair("{normal}", 116),
                                        std::pair("{strong}", 125), std::pair("{large}", 167)})
        sheet.replace(QLatin1String(name), QStringLiteral("%1px").arg(size * percent / 100));
    sheet.replace(QLatin1String("{panel}"), Rgba(p_Palette.Panel));
    sheet.replace(QLatin1String("{text}"), Rgba(p_Palette.Text));
    sheet.replace(QLatin1String("{quiet}"), Rgba(p_Palette.Quiet));
    sheet.replace(QLatin1String("{dim}"), Veil(p_Palette.Quiet, c_Dim));
    sheet.replace(QLatin1String("{warning}"), Rgba(p_Palette.Warning));
    sheet.replace(QLatin1String("{accent}"), Rgba(p_Palette.Accent));
    sheet.replace(QLatin1String("{accentLight}"), Rgba(p_Palette.Accent.lighter(c_Lighter)));
    sheet.replace(QLatin1String("{accentText}"), Rgba(p_Palette.AccentText));
    sheet.replace(QLatin1String("{veil}"), Veil(p_Palette.Text, c_Veil));
    sheet.replace(QLatin1String("{veil2}"), Veil(p_Palette.Text, c_StrongVeil));
    return sheet;
}

} // namespace Varnholt::Host
