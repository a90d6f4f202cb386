#include "GameModules/Pelmora/Artwork/Landscape.hpp"

#include "GameModules/Pelmora/Artwork/Atmosphere.hpp"
#include "GameModules/Pelmora/Artwork/Birds.hpp"
#include "GameModules/Pelmora/Artwork/Buildings.hpp"
#include "GameModules/Pelmora/Artwork/Canvas.hpp"
#include "GameModules/Pelmora/Artwork/Finish.hpp"
#include "GameModules/Pelmora/Artwork/Foreground.hpp"
#include "GameModules/Pelmora/Artwork/Lantern.hpp"
#include "GameModules/Pelmora/Artwork/Mist.hpp"
#include "GameModules/Pelmora/Artwork/Ridge.hpp"
#include "GameModules/Pelmora/Artwork/Sky.hpp"
#include "GameModules/Pelmora/Artwork/Water.hpp"

namespace Varnholt::Artwork {

namespace {

constexpr int c_Width = 1920;
constexpr int c_Height = 1080;
constexpr QRgb c_Page = 0x09111C;

Atmosphere MoonriseAir()
{
    Atmosphere air;
    air.Moon = QPointF(1392.0, 262.0);
    air.MoonRadius = 92.0F;
    air.Horizon = 742.0F;
    air.Sky = {{0.00F, Colour::FromHex(0x081424)},
               {0.35F, Colour::FromHex(0x10304c)},
               {0.70F, Colour::FromHex(0x2a5d7a)},
               {1.00F, Colour::FromHex(0x6a90a0)}};
    air.CoolHaze = Colour::FromHex(0x4b7c92);
    air.DuskHaze = Colour::FromHex(0x7f7796);
    air.WarmHaze = Colour::FromHex(0xd3a98c);
    air.Glow = Colour::FromHex(0xffc890);
    air.Aura = Colour::FromHex(0x35566e);
    air.MoonTone = Colour::FromHex(0xffedd0) * 0.84F;
    return air;
}

void PaintSummits(Canvas& p_Canvas, const Atmosphere& p_Air)
{
    Ridge::Style style;
    style.Rock = Colour::FromHex(0x1d3a50);
    style.Base = 720.0F;
    style.Roughness = 26.0F;
    style.Distance = 0.66F;
    style.Relief = 0.9F;
    style.MistDepth = 330.0F;
    style.Seed = 101;
    style.Peaks = {
        {250.0F, 330.0F, 190.0F, 170.0F, 1.5F},  {640.0F, 395.0F, 170.0F, 120.0F, 1.4F},
        {865.0F, 300.0F, 100.0F, 130.0F, 1.8F},  {1260.0F, 300.0F, 120.0F, 90.0F, 1.6F},
        {1530.0F, 350.0F, 150.0F, 130.0F, 1.5F}, {1800.0F, 440.0F, 150.0F, 190.0F, 1.6F}};
    Ridge(style, p_Air, c_Width).Paint(p_Canvas);
    PaintMist(p_Canvas, p_Air, {600.0F, 70.0F, 0.55F, 420.0F, 211});

    style.Rock = Colour::FromHex(0x17344a);
    style.Distance = 0.46F;
    style.Relief = 1.0F;
    style.Roughness = 22.0F;
    style.Seed = 102;
    style.Peaks = {{90.0F, 330.0F, 120.0F, 120.0F, 1.7F}, {430.0F, 300.0F, 80.0F, 95.0F, 2.2F},
                   {760.0F, 340.0F, 78.0F, 84.0F, 2.4F},  {900.0F, 235.0F, 60.0F, 70.0F, 2.4F},
                   {1210.0F, 195.0F, 70.0F, 70.0F, 2.4F}, {1580.0F, 270.0F, 62.0F, 60.0F, 2.6F},
                   {1700.0F, 375.0F, 72.0F, 80.0F, 2.4F}, {1880.0F, 330.0F, 80.0F, 90.0F, 2.2F}};
    Ridge(style, p_Air, c_Width).Paint(p_Canvas);
    PaintMist(p_Canvas, p_Air, {640.0F, 62.0F, 0.60F, 360.0F, 212});
}

void PaintCrags(Canvas& p_Canvas, const Atmosphere& p_Air)
{
    Ridge::Style style;
    style.Rock = Colour::FromHex(0x122b3d);
    style.Base = 742.0F;
    style.Roughness = 20.0F;
    style.TreeHeight = 11.0F;
    style.Distance = 0.24F;
    style.Relief = 1.0F;
    style.MistDepth = 240.0F;
    style.Seed = 103;
    style.Peaks = {{200.0F, 380.0F, 150.0F, 110.0F, 2.2F}, {560.0F, 300.0F, 74.0F, 74.0F, 2.8F},
                   {640.0F, 180.0F, 60.0F, 80.0F, 2.4F},   {1004.0F, 262.0F, 80.0F, 116.0F, 2.6F},
                   {1014.0F, 276.0F, 60.0F, 62.0F, 9.0F},  {1105.0F, 150.0F, 60.0F, 70.0F, 2.4F},
                   {1640.0F, 215.0F, 62.0F, 60.0F, 2.8F},  {1780.0F, 330.0F, 86.0F, 100.0F, 2.6F}};
    const Ridge crags(style, p_Air, c_Width);

    QImage sprite = p_Canvas.EmptySprite();
    QPainter painter(&sprite);
    painter.setRenderHint(QPainter::Antialiasing);
    BuildingTones tones;
    tones.Wall = QColor(0x33, 0x3a, 0x44);
    tones.Roof = QColor(0x22, 0x38, 0x49);
    tones.Rim = QColor(0xa8, 0xa6, 0x98);
    tones.Window = QColor(0xff, 0xc0, 0x6c);
    const QPointF foot(1012.0, crags.TopAt(1012.0F) + 3.0);
    PaintPagoda(painter, foot, 172.0, 5, tones);
    painter.end();
    p_Canvas.Overlay(sprite);
    crags.Paint(p_Canvas);
    p_Canvas.AddGlow(static_cast<float>(foot.x()), static_cast<float>(foot.y()) - 60.0F, 130.0F,
                     LampLight() * 0.10F);
    PaintMist(p_Canvas, p_Air, {690.0F, 48.0F, 0.62F, 300.0F, 213});
}

/// The banks that the bridge rests on, in front of its ends.
void PaintBanks(Canvas& p_Canvas, const Atmosphere& p_Air)
{
    Ridge::Style style;
    style.Rock = Colour::FromHex(0x0b1b28);
    style.Base = 744.0F;
    style.Roughness = 9.0F;
    style.TreeHeight = 15.0F;
    style.Distance = 0.02F;
    style.Relief = 0.4F;
    style.MistDepth = 30.0F;
    style.MistShare = 0.12F;
    style.Seed = 106;
    style.Peaks = {{1078.0F, 42.0F, 74.0F, 52.0F, 2.2F}, {1466.0F, 40.0F, 46.0F, 100.0F, 2.8F}};
    Ridge(style, p_Air, c_Width).Paint(p_Canvas);
}

void PaintShore(Canvas& p_Canvas, const Atmosphere& p_Air)
{
    Ridge::Style style;
    style.Rock = Colour::FromHex(0x0d2130);
    style.Base = 748.0F;
    style.Roughness = 10.0F;
    style.TreeHeight = 26.0F;
    style.Distance = 0.08F;
    style.Relief = 0.8F;
    style.MistDepth = 60.0F;
    style.MistShare = 0.75F;
    style.Seed = 104;
    style.Peaks = {{120.0F, 110.0F, 260.0F, 300.0F, 1.6F},
                   {760.0F, 62.0F, 180.0F, 170.0F, 1.8F},
                   {1050.0F, 74.0F, 120.0F, 92.0F, 2.6F},
                   {1500.0F, 60.0F, 84.0F, 90.0F, 2.6F},
                   {1680.0F, 90.0F, 140.0F, 240.0F, 1.8F}};
    Ridge(style, p_Air, c_Width).Paint(p_Canvas);

    QImage sprite = p_Canvas.EmptySprite();
    QPainter painter(&sprite);
    painter.setRenderHint(QPainter::Antialiasing);
    BuildingTones tones;
    tones.Wall = QColor(0x22, 0x33, 0x40);
    tones.Roof = QColor(0x11, 0x20, 0x2c);
    tones.Rim = QColor(0x8d, 0x8c, 0x82);
    PaintBridge(painter, QPointF(1275.0, 741.0), 336.0, 74.0, tones);
    PaintFlock(painter, QPointF(1120.0, 205.0), 34.0, QColor(0x10, 0x22, 0x30, 220));
    painter.end();
    p_Canvas.Overlay(sprite);
    PaintLamp(p_Canvas, QPointF(1107.0, 700.0), 9.0);
    PaintLamp(p_Canvas, QPointF(1443.0, 700.0), 9.0);
    PaintBanks(p_Canvas, p_Air);
    PaintMist(p_Canvas, p_Air, {744.0F, 13.0F, 0.45F, 260.0F, 214});
}

} // namespace

QImage PaintLandscape()
{
    const Atmosphere air = MoonriseAir();
    Canvas canvas(c_Width, c_Height);
    PaintSky(canvas, air);
    PaintMoon(canvas, air);
    PaintClouds(canvas, air, 0.85F);
    PaintSummits(canvas, air);
    PaintCrags(canvas, air);
    PaintShore(canvas, air);
    PaintWater(canvas, air, Colour::FromHex(0x0b1c2a));
    PaintForeground(canvas, air);
    AddBloom(canvas, 26, 0.34F);
    RollOffHighlights(canvas);
    FadeIntoPage(canvas, Colour::FromHex(c_Page));
    return canvas.Develop();
}

} // namespace Varnholt::Artwork
