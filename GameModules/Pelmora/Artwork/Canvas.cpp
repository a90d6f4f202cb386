#include "GameModules/Pelmora/Artwork/Canvas.hpp"

#include "GameModules/Pelmora/Artwork/Noise.hpp"

#include <algorithm>
#include <cmath>

namespace Varnholt::Artwork {

namespace {

/// One component as a display value; p_Dither is in -1 to 1 steps of that display.
int DisplayValue(float p_Linear, float p_Dither)
{
    const float encoded = Colour::ToEncoded(std::clamp(p_Linear, 0.0F, 1.0F)) * 255.0F;
    return std::clamp(static_cast<int>(std::lround(encoded + p_Dither)), 0, 255);
}

} // namespace

Canvas::Canvas(int p_Width, int p_Height)
    : m_Width(p_Width)
    , m_Height(p_Height)
    , m_Pixels(static_cast<std::size_t>(p_Width) * static_cast<std::size_t>(p_Height))
{
}

Colour Canvas::Sample(float p_X, float p_Y) const
{
    const float x = std::clamp(p_X, 0.0F, static_cast<float>(m_Width - 1));
    const float y = std::clamp(p_Y, 0.0F, static_cast<float>(m_Height - 1));
    const int left = static_cast<int>(x);
    const int top = static_cast<int>(y);
    const int right = std::min(left + 1, m_Width - 1);
    const int bottom = std::min(top + 1, m_Height - 1);
    const float shareX = x - static_cast<float>(left);
    return Mix(Mix(At(left, top), At(right, top), shareX),
               Mix(At(left, bottom), At(right, bottom), shareX), y - static_cast<float>(top));
}

void Canvas::Cover(int p_X, int p_Y, const Colour& p_Colour, float p_Share)
{
    Colour& pixel = At(p_X, p_Y);
    pixel = Mix(pixel, p_Colour, p_Share);
}

void Canvas::Overlay(const QImage& p_Sprite)
{
    for (int y = 0; y < m_Height; ++y) {
        const QRgb* line = reinterpret_cast<const QRgb*>(p_Sprite.constScanLine(y));
        for (int x = 0; x < m_Width; ++x) {
            if (qAlpha(line[x]) != 0) {
                Cover(x, y, Colour::FromHex(qUnpremultiply(line[x])), qAlpha(line[x]) / 255.0F);
            }
        }
    }
}

void Canvas::AddGlow(float p_X, float p_Y, float p_Radius, const Colour& p_Light)
{
    const int left = std::max(0, static_cast<int>(p_X - p_Radius));
    const int right = std::min(m_Width - 1, static_cast<int>(p_X + p_Radius) + 1);
    const int top = std::max(0, static_cast<int>(p_Y - p_Radius));
    const int bottom = std::min(m_Height - 1, static_cast<int>(p_Y + p_Radius) + 1);
    for (int y = top; y <= bottom; ++y) {
        for (int x = left; x <= right; ++x) {
            const float distance = std::hypot(x - p_X, y - p_Y) / p_Radius;
            const float rest = std::max(0.0F, 1.0F - distance);
            Colour& pixel = At(x, y);
            pixel = pixel + p_Light * (rest * rest / (1.0F + 24.0F * distance * distance));
        }
    }
}

void Canvas::BlurLines(int p_Radius, bool p_Horizontal)
{
    const int length = p_Horizontal ? m_Width : m_Height;
    const int lines = p_Horizontal ? m_Height : m_Width;
    const float weight = 1.0F / static_cast<float>(2 * p_Radius + 1);
    std::vector<Colour> source(static_cast<std::size_t>(length));
    const auto pixel = [&](int p_Line, int p_Place) -> Colour& {
        return p_Horizontal ? At(p_Place, p_Line) : At(p_Line, p_Place);
    };
    const auto clamped = [&](int p_Place) {
        return source[static_cast<std::size_t>(std::clamp(p_Place, 0, length - 1))];
    };
    for (int line = 0; line < lines; ++line) {
        for (int place = 0; place < length; ++place) {
            source[static_cast<std::size_t>(place)] = pixel(line, place);
        }
        Colour sum;
        for (int place = -p_Radius; place <= p_Radius; ++place) {
            sum = sum + clamped(place);
        }
        for (int place = 0; place < length; ++place) {
            pixel(line, place) = sum * weight;
            sum = sum + clamped(place + p_Radius + 1) + clamped(place - p_Radius) * -1.0F;
        }
    }
}

void Canvas::Blur(int p_Radius)
{
    // Three box passes come close to a Gaussian at a cost that does not grow with the radius.
    const int box = std::max(1, p_Radius / 2);
    for (int pass = 0; pass < 3; ++pass) {
        BlurLines(box, true);
        BlurLines(box, false);
    }
}

QImage Canvas::EmptySprite() const
{
    QImage sprite(m_Width, m_Height, QImage::Format_ARGB32_Premultiplied);
    sprite.fill(Qt::transparent);
    return sprite;
}

QImage Canvas::Develop() const
{
    const Noise noise(90210U);
    QImage image(m_Width, m_Height, QImage::Format_ARGB32);
    for (int y = 0; y < m_Height; ++y) {
        QRgb* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < m_Width; ++x) {
            const float dither = 0.5F * (noise.Cell(2 * x, y) - noise.Cell(2 * x + 1, y));
            const Colour& pixel = At(x, y);
            line[x] = qRgb(DisplayValue(pixel.Red, dither), DisplayValue(pixel.Green, dither),
                           DisplayValue(pixel.Blue, dither));
        }
    }
    return image;
}

} // namespace Varnholt::Artwork
