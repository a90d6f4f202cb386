#include "GameModules/Pelmora/Artwork/Finish.hpp"

#include "GameModules/Pelmora/Artwork/Noise.hpp"

#include <algorithm>
#include <cmath>

namespace Varnholt::Artwork {

namespace {

/// The share of the picture that is left at a place, both coordinates 0 to 1; 0 is all page.
float Kept(float p_X, float p_Y)
{
    const float fromLeft = SmoothStep(0.02F, 0.52F, p_X);
    const float fromBottom = SmoothStep(0.985F, 0.80F, p_Y);
    return std::pow(fromLeft, 1.15F) * fromBottom;
}

float Shoulder(float p_Value)
{
    constexpr float c_Start = 0.62F;
    constexpr float c_Room = 1.0F - c_Start;
    return p_Value <= c_Start ? p_Value
                              : c_Start + c_Room * (1.0F - std::exp(-(p_Value - c_Start) / c_Room));
}

} // namespace

void AddBloom(Canvas& p_Canvas, int p_Radius, float p_Strength)
{
    constexpr float c_Threshold = 0.32F;
    Canvas bright = p_Canvas;
    for (int y = 0; y < bright.Height(); ++y) {
        for (int x = 0; x < bright.Width(); ++x) {
            Colour& pixel = bright.At(x, y);
            const float luminance = pixel.Luminance();
            pixel = pixel * (std::max(0.0F, luminance - c_Threshold) / std::max(luminance, 0.001F));
        }
    }
    bright.Blur(p_Radius);
    for (int y = 0; y < bright.Height(); ++y) {
        for (int x = 0; x < bright.Width(); ++x) {
            p_Canvas.At(x, y) = p_Canvas.At(x, y) + bright.At(x, y) * p_Strength;
        }
    }
}

void RollOffHighlights(Canvas& p_Canvas)
{
    for (int y = 0; y < p_Canvas.Height(); ++y) {
        for (int x = 0; x < p_Canvas.Width(); ++x) {
            Colour& pixel = p_Canvas.At(x, y);
            pixel = {Shoulder(pixel.Red), Shoulder(pixel.Green), Shoulder(pixel.Blue)};
        }
    }
}

void FadeIntoPage(Canvas& p_Canvas, const Colour& p_Page)
{
    const Noise noise(97U);
    for (int y = 0; y < p_Canvas.Height(); ++y) {
        const float shareY = static_cast<float>(y) / static_cast<float>(p_Canvas.Height() - 1);
        for (int x = 0; x < p_Canvas.Width(); ++x) {
            const float shareX = static_cast<float>(x) / static_cast<float>(p_Canvas.Width() - 1);
            const float corner = std::hypot(1.1F * (shareX - 0.62F), 0.9F * (shareY - 0.42F));
            const float vignette = 1.0F - 0.42F * SmoothStep(0.28F, 0.75F, corner);
            const float grain =
                1.0F + 0.045F * (noise.Cell(2 * x, y) + noise.Cell(2 * x + 1, y) - 1.0F);
            const Colour picture = p_Canvas.At(x, y) * (vignette * grain);
            p_Canvas.At(x, y) = Mix(p_Page, picture, Kept(shareX, shareY));
        }
    }
}

} // namespace Varnholt::Artwork
