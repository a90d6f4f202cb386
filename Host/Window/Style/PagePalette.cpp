#include "Host/Window/Style/PagePalette.hpp"

#include <QStringList>

#include <algorithm>
#include <cmath>

namespace Varnholt::Host {

namespace {

constexpr int c_Full = 255;
constexpr int c_PanelAlpha = 214;

QColor ThemeColor(QString const& p_Text)
{
    QStringList const parts = p_Text.split(QLatin1Char(','));
    int values[3] = {};
    for (int i = 0; i < 3; ++i) {
        bool isNumber = false;
        values[i] = parts.value(i).trimmed().toInt(&isNumber);
        if (!isNumber || values[i] < 0 || values[i] > c_Full || parts.size() != 3)
            return {24, 27, 33};
    }
    return {values[0], values[1], values[2]};
}

QColor Mixed(QColor const& p_One, QColor const& p_Other, double p_ShareOfOther)
{
    auto const mix = [&](int p_A, int p_B) {
        return static_cast<int>(std::lround(p_A + (p_B - p_A) * p_ShareOfOther));
    };
    return {mix(p_One.red(), p_Other.red()), mix(p_One.green(), p_Other.green()),
            mix(p_One.blue(), p_Other.blue())};
}

double Luminance(QColor const& p_Color)
{
    auto const linear = [](double p_Value) {
        return p_Value <= 0.03928 ? p_Value / 12.92 : std::pow((p_Value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(p_Color.redF()) + 0.7152 * linear(p_Color.greenF()) +
           0.0722 * linear(p_Color.blueF());
}

/// On any picture: white and black are the worst that there can be behind a panel.
double WorstContrast(QColor const& p_Text, QColor const& p_Panel)
{
    return std::min(PagePalette::Contrast(p_Text, PagePalette::Over(p_Panel, Qt::white)),
                    PagePalette::Contrast(p_Text, PagePalette::Over(p_Panel, Qt::black)));
}

/// A colour that goes towards another one until it has the contrast.
template <typename ContrastOf>
QColor Pushed(QColor const& p_Color, QColor const& p_Towards, double p_Least,
              ContrastOf p_ContrastOf)
{
    constexpr double c_Step = 0.04;

    QColor color = p_Color;
    for (double share = c_Step; p_ContrastOf(color) < p_Least && share < 1; share += c_Step)
        color = Mixed(p_Color, p_Towards, share);
    return color;
}

QColor Translucent(QColor p_Color)
{
    p_Color.setAlpha(c_PanelAlpha);
    return p_Color;
}

/// The mean of a picture's vivid pixels, made a little more vivid.
QColor VividOf(QImage const& p_Icon)
{
    constexpr int c_Side = 48;
    constexpr int c_LeastSaturation = 60;
    constexpr int c_LeastValue = 120;

    if (p_Icon.isNull())
        return {74, 144, 217};
    QImage const small = p_Icon.scaled(c_Side, c_Side).convertToFormat(QImage::Format_ARGB32);
    qint64 red = 0;
    qint64 green = 0;
    qint64 blue = 0;
    qint64 count = 0;
    for (int y = 0; y < c_Side; ++y)
        for (int x = 0; x < c_Side; ++x) {
            QColor const pixel = small.pixelColor(x, y);
            if (pixel.alpha() < c_Full / 2 || pixel.saturation() < c_LeastSaturation ||
                pixel.value() < c_LeastValue)
                continue;
            red += pixel.red();
            green += pixel.green();
            blue += pixel.blue();
            ++count;
        }
    if (count == 0)
        return {74, 144, 217};
    QColor const mean(static_cast<int>(red / count), static_cast<int>(green / count),
                      static_cast<int>(blue / count));
    return QColor::fromHsv(mean.hue(), std::min(c_Full, mean.saturation() * 5 / 4),
                           std::max(mean.value(), 200));
}

} // namespace

PagePalette PagePalette::Of(QString const& p_Theme, QString const& p_Ground, QImage const& p_Icon)
{
    constexpr double c_GoodContrast = 7;
    constexpr double c_QuietShare = 0.28;
    constexpr double c_BarContrast = 3;

    PagePalette palette;
    QColor const theme = ThemeColor(p_Theme);
    bool const isDark = Luminance(theme) < 0.4;
    QColor const far = isDark ? Qt::black : Qt::white;
    palette.Text = isDark ? QColor(244, 246, 248) : QColor(18, 21, 25);
    QColor const panel = Pushed(theme, far, c_GoodContrast, [&](QColor const& p_Color) {
        return WorstContrast(palette.Text, Translucent(p_Color));
    });
    palette.Panel = Translucent(panel);
    auto const onPanel = [&](QColor const& p_Color) {
        return WorstContrast(p_Color, palette.Panel);
    };
    palette.Quiet =
        Pushed(Mixed(palette.Text, panel, c_QuietShare), palette.Text, c_LeastContrast, onPanel);
    palette.Warning = Pushed({242, 184, 75}, palette.Text, c_LeastContrast, onPanel);
    palette.Accent = Pushed(VividOf(p_Icon), palette.Text, c_BarContrast, onPanel);
    palette.AccentText =
        Contrast(palette.Accent, {18, 21, 25}) >= c_LeastContrast ? QColor(18, 21, 25) : Qt::white;
    QColor const ground(p_Ground);
    palette.Ground = ground.isValid() ? ground : panel;
    return palette;
}

double PagePalette::Contrast(QColor const& p_One, QColor const& p_Other)
{
    double const one = Luminance(p_One) + 0.05;
    double const other = Luminance(p_Other) + 0.05;
    return std::max(one, other) / std::min(one, other);
}

QColor PagePalette::Over(QColor const& p_Upper, QColor const& p_Lower)
{
    return Mixed(p_Lower, p_Upper, p_Upper.alphaF());
}

} // namespace Varnholt::Host
