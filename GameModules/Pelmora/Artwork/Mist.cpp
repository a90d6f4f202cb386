#include "GameModules/Pelmora/Artwork/Mist.hpp"

#include "GameModules/Pelmora/Artwork/Noise.hpp"

#include <algorithm>
#include <cmath>

namespace Varnholt::Artwork {

void PaintMist(Canvas& p_Canvas, const Atmosphere& p_Air, const MistBank& p_Bank)
{
    const Noise noise(p_Bank.Seed);
    const float reach = 2.4F * p_Bank.Thickness;
    const int first = std::max(0, static_cast<int>((p_Bank.Height - reach) * p_Air.Unit));
    const int last =
        std::min(p_Canvas.Height(), static_cast<int>((p_Bank.Height + reach) * p_Air.Unit));
    for (int row = first; row < last; ++row) {
        for (int column = 0; column < p_Canvas.Width(); ++column) {
            const float x = static_cast<float>(column) / p_Air.Unit;
            const float y = static_cast<float>(row) / p_Air.Unit;
            const float swell = 0.8F * noise.Fractal(x / (2.0F * p_Bank.Drift), 5.5F, 3);
            const float off = (y - p_Bank.Height) / p_Bank.Thickness + swell;
            const float bend = noise.Fractal(x / p_Bank.Drift, 3.0F * y / p_Bank.Drift, 3);
            const float wisps = noise.Fractal(x / p_Bank.Drift + 0.6F * bend,
                                              4.5F * y / p_Bank.Drift + 0.6F * bend, 6);
            const float density =
                std::exp(-off * off) * (0.45F + 0.55F * SmoothStep(-0.3F, 0.4F, wisps));
            const Colour haze = p_Air.HazeAt(static_cast<float>(column), static_cast<float>(row));
            p_Canvas.Cover(column, row, haze * (1.0F + 0.25F * wisps),
                           std::clamp(p_Bank.Density * density, 0.0F, 1.0F));
        }
    }
}

} // namespace Varnholt::Artwork
