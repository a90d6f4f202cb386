#include "GameModules/Pelmora/Artwork/Birds.hpp"

#include <QtGui/QPainterPath>

namespace Varnholt::Artwork {

namespace {

/// A bird seen from the side and a little below; p_Beat is 1 with the wings up, 0 with them level.
QPainterPath BirdPath(const QPointF& p_Body, qreal p_Span, qreal p_Beat)
{
    const auto place = [&](qreal p_X, qreal p_Y) { return p_Body + p_Span * QPointF(p_X, p_Y); };
    QPainterPath path(place(-0.26, -0.035));
    path.cubicTo(place(-0.16, -0.01), place(-0.10, -0.02), place(-0.05, -0.04));
    path.cubicTo(place(-0.10, -0.18 * p_Beat), place(-0.22, -0.34 * p_Beat),
                 place(-0.34, -0.40 * p_Beat));
    path.cubicTo(place(-0.16, -0.36 * p_Beat), place(0.02, -0.22 * p_Beat), place(0.06, -0.03));
    path.cubicTo(place(0.10, -0.20 * p_Beat), place(0.24, -0.30 * p_Beat),
                 place(0.40, -0.27 * p_Beat));
    path.cubicTo(place(0.26, -0.20 * p_Beat), place(0.17, -0.06 * p_Beat), place(0.13, 0.01));
    path.cubicTo(place(0.20, 0.01), place(0.28, 0.02), place(0.34, 0.03));
    path.cubicTo(place(0.20, 0.06), place(0.02, 0.06), place(-0.10, 0.02));
    path.cubicTo(place(-0.16, 0.01), place(-0.22, -0.01), place(-0.26, -0.035));
    return path;
}

} // namespace

void PaintFlock(QPainter& p_Painter, const QPointF& p_Lead, qreal p_Span, const QColor& p_Tone)
{
    struct Bird {
        qreal X;
        qreal Y;
        qreal Size;
        qreal Beat;
    };
    constexpr Bird c_Flock[] = {{0.0, 0.0, 1.0, 1.0},    {1.25, 0.42, 0.92, 0.55},
                                {1.9, -0.55, 0.84, 0.8}, {2.7, 0.62, 0.86, 0.22},
                                {3.9, 0.25, 0.76, 0.95}, {4.5, 1.15, 0.72, 0.4}};
    for (const Bird& bird : c_Flock) {
        p_Painter.fillPath(
            BirdPath(p_Lead + p_Span * QPointF(bird.X, bird.Y), p_Span * bird.Size, bird.Beat),
            p_Tone);
    }
}

} // namespace Varnholt::Artwork
