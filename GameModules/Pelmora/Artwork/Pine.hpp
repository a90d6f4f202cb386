#pragma once

#include <QtCore/QPointF>
#include <QtGui/QColor>
#include <QtGui/QPainter>

#include <cstdint>
#include <vector>

namespace Varnholt::Artwork {

/// An old, wind-bent pine: limbs, and pads of needles at their ends. Places are those of the
/// painter that draws it.
struct Pine {
    struct Limb {
        /// At least two; the limb is a smooth curve through them.
        std::vector<QPointF> Points;
        qreal FootWidth;
        qreal TipWidth;
    };

    struct Pad {
        QPointF Centre;
        qreal HalfWidth;
        qreal HalfHeight;
    };

    std::vector<Limb> Limbs;
    std::vector<Pad> Pads;
    QColor Bark;
    QColor LitBark;
    QColor Needles;
    QColor LitNeedles;
    qreal NeedleLength = 12.0;
    /// Where the light is.
    QPointF Light;
    std::uint32_t Seed = 0;

    void Paint(QPainter& p_Painter) const;

private:
    void PaintLimb(QPainter& p_Painter, const Limb& p_Limb) const;
    void PaintBark(QPainter& p_Painter, const std::vector<QPointF>& p_Curve,
                   const std::vector<QPointF>& p_Lit) const;
    void PaintPad(QPainter& p_Painter, const Pad& p_Pad, std::uint32_t p_Seed) const;
};

} // namespace Varnholt::Artwork
