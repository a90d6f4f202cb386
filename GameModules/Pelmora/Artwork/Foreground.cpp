#include "GameModules/Pelmora/Artwork/Foreground.hpp"

#include "GameModules/Pelmora/Artwork/Lantern.hpp"
#include "GameModules/Pelmora/Artwork/Pine.hpp"
#include "GameModules/Pelmora/Artwork/Ridge.hpp"

namespace Varnholt::Artwork {

namespace {

void PaintCliff(Canvas& p_Canvas, const Atmosphere& p_Air)
{
    Ridge::Style style;
    style.Rock = Colour::FromHex(0x06121b);
    style.Base = 1130.0F;
    style.Roughness = 34.0F;
    style.TreeHeight = 9.0F;
    style.Distance = 0.03F;
    style.Relief = 0.55F;
    style.MistShare = 0.0F;
    style.Seed = 105;
    style.Peaks = {{1960.0F, 440.0F, 190.0F, 300.0F, 2.4F},
                   {1740.0F, 215.0F, 110.0F, 120.0F, 2.0F}};
    Ridge(style, p_Air, p_Canvas.Width()).Paint(p_Canvas);
}

Pine OldPine(const Atmosphere& p_Air)
{
    Pine pine;
    pine.Bark = QColor(0x0c, 0x14, 0x1c);
    pine.LitBark = QColor(0x6b, 0x66, 0x5c);
    pine.Needles = QColor(0x07, 0x13, 0x19);
    pine.LitNeedles = QColor(0x3d, 0x58, 0x56);
    pine.NeedleLength = 13.0;
    pine.Light = p_Air.Moon;
    pine.Seed = 307;
    pine.Limbs = {
        {{{1930, 840},
          {1884, 700},
          {1880, 610},
          {1816, 510},
          {1834, 410},
          {1772, 322},
          {1786, 240}},
         66.0,
         9.0},
        {{{1870, 630}, {1806, 578}, {1734, 590}, {1672, 552}, {1606, 560}}, 27.0, 4.0},
        {{{1822, 486}, {1752, 436}, {1700, 440}, {1630, 398}}, 21.0, 4.0},
        {{{1826, 440}, {1884, 382}, {1940, 376}}, 18.0, 6.0},
        {{{1796, 356}, {1732, 306}, {1676, 300}}, 13.0, 3.0},
    };
    pine.Pads = {{{1912, 366}, 82, 34}, {{1862, 398}, 44, 18}, {{1600, 556}, 62, 22},
                 {{1672, 544}, 84, 32}, {{1758, 572}, 52, 20}, {{1624, 402}, 56, 20},
                 {{1676, 394}, 72, 30}, {{1742, 424}, 44, 18}, {{1676, 300}, 52, 20},
                 {{1716, 286}, 62, 26}, {{1826, 290}, 58, 24}, {{1792, 232}, 88, 38}};
    return pine;
}

} // namespace

void PaintForeground(Canvas& p_Canvas, const Atmosphere& p_Air)
{
    PaintFloatingLantern(p_Canvas, QPointF(1128.0, 788.0), 5.0);
    PaintFloatingLantern(p_Canvas, QPointF(1212.0, 812.0), 7.0);
    PaintFloatingLantern(p_Canvas, QPointF(1030.0, 826.0), 8.0);
    PaintFloatingLantern(p_Canvas, QPointF(1530.0, 798.0), 5.6);
    PaintFloatingLantern(p_Canvas, QPointF(1290.0, 862.0), 11.0);

    QImage sprite = p_Canvas.EmptySprite();
    QPainter painter(&sprite);
    painter.setRenderHint(QPainter::Antialiasing);
    OldPine(p_Air).Paint(painter);
    painter.end();
    p_Canvas.Overlay(sprite);
    PaintCliff(p_Canvas, p_Air);
    PaintHangingLantern(p_Canvas, QPointF(1630.0, 562.0), 34.0, 20.0);
    PaintHangingLantern(p_Canvas, QPointF(1728.0, 588.0), 56.0, 24.0);
    PaintHangingLantern(p_Canvas, QPointF(1672.0, 414.0), 30.0, 16.0);
}

} // namespace Varnholt::Artwork
