#pragma once

#include <QtGui/QRgb>

#include <cmath>

namespace Varnholt::Artwork {

/// A colour in linear light, so that haze and glow add up the way light does. 1 is display white;
/// values above it are allowed until the picture is developed.
struct Colour {
    float Red = 0.0F;
    float Green = 0.0F;
    float Blue = 0.0F;

    /// The linear value of one sRGB component, both in 0 to 1.
    static float ToLinear(float p_Encoded)
    {
        return p_Encoded <= 0.04045F ? p_Encoded / 12.92F
                                     : std::pow((p_Encoded + 0.055F) / 1.055F, 2.4F);
    }

    /// The sRGB value of one linear component, both in 0 to 1.
    static float ToEncoded(float p_Linear)
    {
        return p_Linear <= 0.0031308F ? p_Linear * 12.92F
                                      : 1.055F * std::pow(p_Linear, 1.0F / 2.4F) - 0.055F;
    }

    /// The colour written 0xRRGGBB, the way it is written on a web page.
    static Colour FromHex(QRgb p_Hex)
    {
        return {ToLinear(qRed(p_Hex) / 255.0F), ToLinear(qGreen(p_Hex) / 255.0F),
                ToLinear(qBlue(p_Hex) / 255.0F)};
    }

    float Luminance() const { return 0.2126F * Red + 0.7152F * Green + 0.0722F * Blue; }
};

inline Colour operator+(const Colour& p_A, const Colour& p_B)
{
    return {p_A.Red + p_B.Red, p_A.Green + p_B.Green, p_A.Blue + p_B.Blue};
}

inline Colour operator*(const Colour& p_Colour, float p_Factor)
{
    return {p_Colour.Red * p_Factor, p_Colour.Green * p_Factor, p_Colour.Blue * p_Factor};
}

inline Colour operator*(const Colour& p_A, const Colour& p_B)
{
    return {p_A.Red * p_B.Red, p_A.Green * p_B.Green, p_A.Blue * p_B.Blue};
}

/// p_A where p_Share is 0, p_B where it is 1.
inline Colour Mix(const Colour& p_A, const Colour& p_B, float p_Share)
{
    return p_A * (1.0F - p_Share) + p_B * p_Share;
}

} // namespace Varnholt::Artwork
