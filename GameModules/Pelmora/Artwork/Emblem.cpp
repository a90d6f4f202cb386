#include "GameModules/Pelmora/Artwork/Emblem.hpp"

#include "GameModules/Pelmora/Artwork/Atmosphere.hpp"
#include "GameModules/Pelmora/Artwork/Canvas.hpp"
#include "GameModules/Pelmora/Artwork/Finish.hpp"
#include "GameModules/Pelmora/Artwork/Mist.hpp"
#include "GameModules/Pelmora/Artwork/Noise.hpp"
#include "GameModules/Pelmora/Artwork/Pine.hpp"
#include "GameModules/Pelmora/Artwork/Ridge.hpp"
#include "GameModules/Pelmora/Artwork/Sky.hpp"

#include <algorithm>
#include <cmath>

namespace Varnholt::Artwork {

namespace {

/// The emblem is painted at this size and then scaled down, which smooths every edge.
constexpr int c_PaintedSize = 1024;
constexpr float c_Centre = 512.0F;
constexpr float c_SceneRadius = 388.0F;
constexpr float c_RingRadius = 424.0F;

struct EmblemTones {
    Colour Ring;
    Colour Halo;
    float HaloStrength;
};

Atmosphere EmblemAir(EmblemState p_State)
{
    const bool active = p_State == EmblemState::Active;
    Atmosphere air;
    air.Moon = QPointF(462.0, 400.0);
    air.MoonRadius = 196.0F;
    air.Horizon = 820.0F;
    if (active) {
        air.Sky = {{0.0F, Colour::FromHex(0x0d2442)},
                   {0.55F, Colour::FromHex(0x3a5470)},
                   {1.0F, Colour::FromHex(0xf09a4c)}};
        air.CoolHaze = Colour::FromHex(0x8a6f62);
        air.DuskHaze = Colour::FromHex(0xa86a5c);
        air.WarmHaze = Colour::FromHex(0xffb060);
        air.Glow = Colour::FromHex(0xffa040) * 1.3F;
        air.Aura = Colour::FromHex(0x4c2c1c);
        air.MoonTone = Colour::FromHex(0xffe6ac);
    } else {
        air.Sky = {{0.0F, Colour::FromHex(0x0a1828)},
                   {0.55F, Colour::FromHex(0x1c3c56)},
                   {1.0F, Colour::FromHex(0x5d8496)}};
        air.CoolHaze = Colour::FromHex(0x3d6179);
        air.DuskHaze = Colour::FromHex(0x5a7a92);
        air.WarmHaze = Colour::FromHex(0x86a0ae);
        air.Glow = Colour::FromHex(0x9fc0d4) * 0.5F;
        air.Aura = Colour::FromHex(0x1c3547);
        air.MoonTone = Colour::FromHex(0xd6e0e4) * 0.80F;
    }
    return air;
}

void PaintPeaks(Canvas& p_Canvas, const Atmosphere& p_Air)
{
    Ridge::Style style;
    style.Rock = Colour::FromHex(0x163248);
    style.Base = 800.0F;
    style.Roughness = 34.0F;
    style.Distance = 0.45F;
    style.Relief = 0.8F;
    style.MistDepth = 260.0F;
    style.Seed = 401;
    style.Peaks = {{240.0F, 270.0F, 120.0F, 120.0F, 1.8F},
                   {610.0F, 330.0F, 110.0F, 130.0F, 1.7F},
                   {830.0F, 380.0F, 120.0F, 120.0F, 1.9F}};
    Ridge(style, p_Air, c_PaintedSize).Paint(p_Canvas);
    PaintMist(p_Canvas, p_Air, {720.0F, 60.0F, 0.6F, 300.0F, 411});

    style.Rock = Colour::FromHex(0x0b1d2b);
    style.Base = 900.0F;
    style.Distance = 0.08F;
    style.MistDepth = 150.0F;
    style.MistShare = 0.6F;
    style.Seed = 402;
    style.Peaks = {{330.0F, 190.0F, 150.0F, 130.0F, 2.0F}, {740.0F, 250.0F, 170.0F, 260.0F, 2.2F}};
    Ridge(style, p_Air, c_PaintedSize).Paint(p_Canvas);
}

Pine EmblemPine(const Atmosphere& p_Air)
{
    Pine pine;
    pine.Bark = QColor(0x09, 0x12, 0x1b);
    pine.LitBark = QColor(0x4a, 0x4a, 0x48);
    pine.Needles = QColor(0x06, 0x11, 0x17);
    pine.LitNeedles = QColor(0x26, 0x42, 0x44);
    pine.NeedleLength = 24.0;
    pine.Light = p_Air.Moon;
    pine.Seed = 409;
    pine.Limbs = {{{{800, 840}, {720, 690}, {744, 580}, {640, 460}, {650, 350}}, 84.0, 24.0},
                  {{{728, 640}, {620, 584}, {500, 592}}, 40.0, 12.0},
                  {{{712, 540}, {790, 460}, {840, 450}}, 36.0, 12.0}};
    pine.Pads = {{{800, 432}, 116, 54}, {{510, 568}, 136, 54}, {{636, 320}, 158, 70}};
    return pine;
}

/// How far the brush has come at an angle: 0 where it touches down, 1 where it lifts off.
float StrokeAt(float p_Angle)
{
    return std::fmod((p_Angle + 3.14159265F) / 6.2831853F + 0.66F, 1.0F);
}

/// Half the thickness of the brushed ring; the stroke starts full and thins out.
float RingHalfWidth(const Noise& p_Noise, float p_Stroke)
{
    const float body = 9.0F + 15.0F * std::pow(1.0F - p_Stroke, 0.7F);
    const float ends = SmoothStep(-0.004F, 0.05F, p_Stroke) * SmoothStep(1.01F, 0.90F, p_Stroke);
    return std::sqrt(ends) * body * (1.0F + 0.22F * p_Noise.Fractal(9.0F * p_Stroke, 3.0F, 3));
}

float RingCover(const Noise& p_Noise, float p_X, float p_Y)
{
    const float angle = std::atan2(p_Y, p_X);
    const float stroke = StrokeAt(angle);
    const float radius = c_RingRadius + 10.0F * (0.5F - stroke) +
                         5.0F * p_Noise.At(1.4F * std::cos(angle), 1.4F * std::sin(angle));
    const float off = std::hypot(p_X, p_Y) - radius;
    const float half = RingHalfWidth(p_Noise, stroke);
    // The bristles part as the brush runs dry.
    const float bristles = p_Noise.Fractal(stroke * 14.0F, off / 4.0F, 3);
    const float dry = SmoothStep(0.55F, 1.0F, stroke);
    return SmoothStep(half + 2.5F, half - 2.5F, std::abs(off)) *
           std::clamp(1.0F - dry * SmoothStep(-0.25F, 0.35F, bristles), 0.0F, 1.0F);
}

/// The lacquer of the ring: streaks along the stroke, a sheen towards the upper left.
Colour RingTone(const Noise& p_Noise, const Colour& p_Tone, float p_X, float p_Y)
{
    const float stroke = StrokeAt(std::atan2(p_Y, p_X));
    const float streaks = p_Noise.Fractal(stroke * 12.0F, std::hypot(p_X, p_Y) / 9.0F, 3);
    const float sheen = -0.35F * (p_X + p_Y) / c_RingRadius;
    return p_Tone * std::max(0.2F, 0.85F + 0.45F * streaks + 0.4F * sheen);
}

/// Sets one pixel of the emblem: the scene, the ring over it and the halo behind both.
QRgb EmblemPixel(const Canvas& p_Scene, const EmblemTones& p_Tones, const Noise& p_Noise, int p_X,
                 int p_Y)
{
    const float x = static_cast<float>(p_X) - c_Centre;
    const float y = static_cast<float>(p_Y) - c_Centre;
    const float radius = std::hypot(x, y);
    const float scene = SmoothStep(c_SceneRadius + 12.0F, c_SceneRadius - 12.0F, radius);
    const float ring = std::clamp(RingCover(p_Noise, x, y), 0.0F, 1.0F);
    const float edge = std::abs(radius - c_RingRadius) / 88.0F;
    const float halo = p_Tones.HaloStrength * std::exp(-2.2F * edge) *
                       SmoothStep(c_Centre, c_Centre - 60.0F, radius);

    Colour tone = p_Tones.Halo * halo;
    float alpha = halo;
    tone = Mix(tone, p_Scene.At(p_X, p_Y), scene);
    alpha = alpha + (1.0F - alpha) * scene;
    tone = Mix(tone, RingTone(p_Noise, p_Tones.Ring, x, y), ring);
    alpha = std::max(alpha, ring);
    const float inverse = alpha > 0.0F ? 1.0F / alpha : 0.0F;
    const auto component = [&](float p_Value) {
        return static_cast<int>(
            std::lround(255.0F * Colour::ToEncoded(std::clamp(p_Value * inverse, 0.0F, 1.0F))));
    };
    return qRgba(component(tone.Red), component(tone.Green), component(tone.Blue),
                 static_cast<int>(std::lround(255.0F * std::clamp(alpha, 0.0F, 1.0F))));
}

EmblemTones TonesFor(EmblemState p_State)
{
    if (p_State == EmblemState::Active) {
        return {Colour::FromHex(0xffd890) * 1.2F, Colour::FromHex(0xff9e3e), 0.62F};
    }
    return {Colour::FromHex(0x8ea4b2), Colour::FromHex(0x05090f), 0.45F};
}

} // namespace

QImage PaintEmblem(EmblemState p_State, int p_Size)
{
    const Atmosphere air = EmblemAir(p_State);
    Canvas scene(c_PaintedSize, c_PaintedSize);
    PaintSky(scene, air);
    PaintMoon(scene, air);
    PaintPeaks(scene, air);
    QImage sprite = scene.EmptySprite();
    QPainter painter(&sprite);
    painter.setRenderHint(QPainter::Antialiasing);
    EmblemPine(air).Paint(painter);
    painter.end();
    scene.Overlay(sprite);
    AddBloom(scene, 40, p_State == EmblemState::Active ? 0.4F : 0.2F);
    RollOffHighlights(scene);

    const Noise noise(419U);
    const EmblemTones tones = TonesFor(p_State);
    QImage emblem(c_PaintedSize, c_PaintedSize, QImage::Format_ARGB32);
    for (int y = 0; y < c_PaintedSize; ++y) {
        QRgb* line = reinterpret_cast<QRgb*>(emblem.scanLine(y));
        for (int x = 0; x < c_PaintedSize; ++x) {
            line[x] = EmblemPixel(scene, tones, noise, x, y);
        }
    }
    return emblem.convertToFormat(QImage::Format_ARGB32_Premultiplied)
        .scaled(p_Size, p_Size, Qt::KeepAspectRatio, Qt::SmoothTransformation)
        .convertToFormat(QImage::Format_ARGB32);
}

} // namespace Varnholt::Artwork
