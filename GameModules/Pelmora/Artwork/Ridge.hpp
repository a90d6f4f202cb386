#pragma once

#include "GameModules/Pelmora/Artwork/Atmosphere.hpp"
#include "GameModules/Pelmora/Artwork/Canvas.hpp"
#include "GameModules/Pelmora/Artwork/Noise.hpp"

#include <vector>

namespace Varnholt::Artwork {

/// One layer of mountains: its outline along x and its rock. Lengths and places are units of the
/// scene, see Atmosphere::Unit.
class Ridge {
public:
    struct Peak {
        float Centre;
        float Height;
        float LeftWidth;
        float RightWidth;
        /// 1 gives a pointed summit, 3 a pillar with a round head.
        float Power;
    };

    struct Style {
        std::vector<Peak> Peaks;
        /// Where the layer melts into mist, from the top.
        float Base = 0.0F;
        /// How rough the outline is.
        float Roughness = 0.0F;
        /// Height of the trees on the outline; 0 for bare rock.
        float TreeHeight = 0.0F;
        Colour Rock;
        /// The share of haze in front of it, 0 to 1.
        float Distance = 0.0F;
        /// How much the rock's structure shows, 0 to 1.
        float Relief = 0.0F;
        /// Over which height the foot fades into mist.
        float MistDepth = 200.0F;
        /// How much of the foot the mist takes, 0 to 1.
        float MistShare = 1.0F;
        std::uint32_t Seed = 0;
    };

    /// Works the outline out for a canvas that is p_Width pixels wide.
    Ridge(Style p_Style, const Atmosphere& p_Air, int p_Width);

    /// The outline in pixels from the top, at a pixel column.
    float TopAt(float p_X) const;

    void Paint(Canvas& p_Canvas) const;

private:
    void AddShoulders();
    float Outline(float p_X) const;
    float Trees(float p_X) const;
    float Coverage(int p_X, int p_Y) const;
    float Structure(float p_X, float p_Y) const;
    Colour RockAt(float p_X, float p_Y, float p_Depth, int p_Column) const;
    float MistAt(float p_X, float p_Y) const;
    Colour ToneAt(int p_X, int p_Y, float p_Mist) const;
    float SlopeAt(float p_X, float p_Reach) const;
    float Light(float p_X, float p_Y, float p_Reach) const;

    Style m_Style;
    Atmosphere m_Air;
    Noise m_Noise;
    std::vector<float> m_Tops;
    std::vector<float> m_BareTops;
};

} // namespace Varnholt::Artwork
