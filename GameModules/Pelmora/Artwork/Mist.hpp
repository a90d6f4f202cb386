#pragma once

#include "GameModules/Pelmora/Artwork/Atmosphere.hpp"
#include "GameModules/Pelmora/Artwork/Canvas.hpp"

#include <cstdint>

namespace Varnholt::Artwork {

/// A bank of mist that lies across the whole scene; lengths in units.
struct MistBank {
    float Height = 0.0F;
    float Thickness = 0.0F;
    /// The share it covers where it is thickest, 0 to 1.
    float Density = 0.0F;
    /// Length of its drifts.
    float Drift = 300.0F;
    std::uint32_t Seed = 0;
};

void PaintMist(Canvas& p_Canvas, const Atmosphere& p_Air, const MistBank& p_Bank);

} // namespace Varnholt::Artwork
