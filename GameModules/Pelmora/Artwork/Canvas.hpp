#pragma once

#include "GameModules/Pelmora/Artwork/Colour.hpp"

#include <QtGui/QImage>

#include <vector>

namespace Varnholt::Artwork {

/// The picture while it is being painted: floating point colours in linear light, opaque.
class Canvas {
public:
    /// A black canvas; both sides in pixels, at least 1.
    Canvas(int p_Width, int p_Height);

    int Width() const { return m_Width; }
    int Height() const { return m_Height; }

    Colour& At(int p_X, int p_Y) { return m_Pixels[Index(p_X, p_Y)]; }
    const Colour& At(int p_X, int p_Y) const { return m_Pixels[Index(p_X, p_Y)]; }

    /// The colour between pixels; outside the canvas its border goes on.
    Colour Sample(float p_X, float p_Y) const;

    /// Covers a share of a pixel, 0 to 1, with a colour.
    void Cover(int p_X, int p_Y, const Colour& p_Colour, float p_Share);

    /// Lays an image of the canvas's size, premultiplied ARGB, over the picture.
    void Overlay(const QImage& p_Sprite);

    /// Adds light that is brightest at a point and falls off over p_Radius pixels.
    void AddGlow(float p_X, float p_Y, float p_Radius, const Colour& p_Light);

    /// Softens the picture by about p_Radius pixels.
    void Blur(int p_Radius);

    /// A transparent image of the canvas's size for Overlay().
    QImage EmptySprite() const;

    /// The picture in sRGB, with noise below one step against banding; alpha is 255 throughout.
    QImage Develop() const;

private:
    std::size_t Index(int p_X, int p_Y) const
    {
        return static_cast<std::size_t>(p_Y) * static_cast<std::size_t>(m_Width) +
               static_cast<std::size_t>(p_X);
    }
    void BlurLines(int p_Radius, bool p_Horizontal);

    int m_Width;
    int m_Height;
    std::vector<Colour> m_Pixels;
};

} // namespace Varnholt::Artwork
