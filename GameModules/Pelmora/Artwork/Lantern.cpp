#include "GameModules/Pelmora/Artwork/Lantern.hpp"

#include "GameModules/Pelmora/Artwork/Noise.hpp"

#include <QtGui/QLinearGradient>
#include <QtGui/QPainter>
#include <QtGui/QPainterPath>
#include <QtGui/QRadialGradient>

#include <algorithm>
#include <cmath>

namespace Varnholt::Artwork {

namespace {

const QColor c_Frame(0x14, 0x0d, 0x0c);

QPainterPath BodyPath(const QPointF& p_Centre, qreal p_Radius)
{
    QPainterPath path;
    path.addRoundedRect(QRectF(p_Centre.x() - p_Radius, p_Centre.y() - 1.12 * p_Radius,
                               2.0 * p_Radius, 2.24 * p_Radius),
                        0.82 * p_Radius, 0.88 * p_Radius);
    return path;
}

void PaintPaper(QPainter& p_Painter, const QPointF& p_Centre, qreal p_Radius)
{
    QRadialGradient paper(p_Centre + QPointF(0.0, 0.30 * p_Radius), 1.35 * p_Radius);
    paper.setColorAt(0.00, QColor(0xff, 0xf3, 0xc8));
    paper.setColorAt(0.30, QColor(0xff, 0xc8, 0x6a));
    paper.setColorAt(0.65, QColor(0xee, 0x7c, 0x2c));
    paper.setColorAt(1.00, QColor(0x98, 0x33, 0x18));
    p_Painter.fillPath(BodyPath(p_Centre, p_Radius), paper);
    p_Painter.setBrush(Qt::NoBrush);
    p_Painter.setPen(QPen(QColor(0x5a, 0x1c, 0x0c, 90), std::max(0.6, 0.045 * p_Radius)));
    p_Painter.setClipPath(BodyPath(p_Centre, p_Radius));
    for (int rib = -2; rib <= 2; ++rib) {
        p_Painter.drawEllipse(p_Centre, std::abs(rib) * 0.40 * p_Radius + 0.01, 1.5 * p_Radius);
    }
    for (int hoop = -2; hoop <= 2; ++hoop) {
        const qreal y = p_Centre.y() + 0.38 * hoop * p_Radius;
        p_Painter.drawArc(
            QRectF(p_Centre.x() - p_Radius, y - 0.1 * p_Radius, 2.0 * p_Radius, 0.2 * p_Radius),
            180 * 16, 180 * 16);
    }
    p_Painter.setClipping(false);
}

void PaintFittings(QPainter& p_Painter, const QPointF& p_Top, const QPointF& p_Centre,
                   qreal p_Radius)
{
    const qreal line = std::max(1.0, 0.09 * p_Radius);
    p_Painter.setPen(QPen(c_Frame, line));
    p_Painter.drawLine(p_Top, p_Centre - QPointF(0.0, 1.2 * p_Radius));
    p_Painter.setPen(Qt::NoPen);
    p_Painter.setBrush(c_Frame);
    for (const qreal side : {-1.0, 1.0}) {
        p_Painter.drawRoundedRect(QRectF(p_Centre.x() - 0.52 * p_Radius,
                                         p_Centre.y() + side * 1.12 * p_Radius - 0.11 * p_Radius,
                                         1.04 * p_Radius, 0.22 * p_Radius),
                                  0.08 * p_Radius, 0.08 * p_Radius);
    }
    p_Painter.setPen(QPen(QColor(0x8c, 0x2c, 0x1a), line, Qt::SolidLine, Qt::RoundCap));
    for (int thread = -1; thread <= 1; ++thread) {
        p_Painter.drawLine(p_Centre + QPointF(0.05 * thread * p_Radius, 1.25 * p_Radius),
                           p_Centre + QPointF(0.13 * thread * p_Radius, 2.0 * p_Radius));
    }
}

} // namespace

Colour LampLight()
{
    return Colour::FromHex(0xff9a3c);
}

void PaintLamp(Canvas& p_Canvas, const QPointF& p_Place, qreal p_Radius)
{
    const float x = static_cast<float>(p_Place.x());
    const float y = static_cast<float>(p_Place.y());
    const float radius = static_cast<float>(p_Radius);
    p_Canvas.AddGlow(x, y, 7.0F * radius, LampLight() * 0.20F);
    p_Canvas.AddGlow(x, y, radius, LampLight() * 1.6F);
}

void PaintHangingLantern(Canvas& p_Canvas, const QPointF& p_Top, qreal p_Cord, qreal p_Radius)
{
    const QPointF centre = p_Top + QPointF(0.0, p_Cord + 1.2 * p_Radius);
    const float x = static_cast<float>(centre.x());
    const float y = static_cast<float>(centre.y());
    const float radius = static_cast<float>(p_Radius);
    p_Canvas.AddGlow(x, y, 9.0F * radius, LampLight() * 0.30F);
    QImage sprite = p_Canvas.EmptySprite();
    QPainter painter(&sprite);
    painter.setRenderHint(QPainter::Antialiasing);
    PaintPaper(painter, centre, p_Radius);
    PaintFittings(painter, p_Top, centre, p_Radius);
    painter.end();
    p_Canvas.Overlay(sprite);
    p_Canvas.AddGlow(x, y + 0.2F * radius, 2.2F * radius, LampLight() * 0.35F);
}

void PaintFloatingLantern(Canvas& p_Canvas, const QPointF& p_Place, qreal p_Radius)
{
    const Noise noise(71U);
    const float x = static_cast<float>(p_Place.x());
    const float y = static_cast<float>(p_Place.y());
    const float radius = static_cast<float>(p_Radius);
    const int rows = static_cast<int>(9.0F * radius);
    for (int row = 1; row < rows; ++row) {
        // The reflection breaks into strokes, wider and fainter towards the viewer.
        const float share = static_cast<float>(row) / static_cast<float>(rows);
        const float line = y + radius + static_cast<float>(row);
        const float sway = 0.9F * radius * noise.At(line / (0.9F * radius), x);
        const float strength = (1.0F - share) * (1.0F - share) *
                               SmoothStep(-0.5F, 0.5F, noise.At(line / (0.55F * radius), x + 9.0F));
        p_Canvas.AddGlow(x + sway * share, line, radius * (1.1F + share),
                         LampLight() * (1.3F * strength / radius));
    }
    p_Canvas.AddGlow(x, y, 8.0F * radius, LampLight() * 0.35F);
    QImage sprite = p_Canvas.EmptySprite();
    QPainter painter(&sprite);
    painter.setRenderHint(QPainter::Antialiasing);
    QLinearGradient paper(p_Place - QPointF(0.0, p_Radius), p_Place + QPointF(0.0, p_Radius));
    paper.setColorAt(0.0, QColor(0xe0, 0x78, 0x2c));
    paper.setColorAt(0.6, QColor(0xff, 0xd0, 0x80));
    paper.setColorAt(1.0, QColor(0xff, 0xf0, 0xc4));
    const QPolygonF box({p_Place + QPointF(-0.72 * p_Radius, -1.05 * p_Radius),
                         p_Place + QPointF(0.72 * p_Radius, -1.05 * p_Radius),
                         p_Place + QPointF(0.56 * p_Radius, 0.9 * p_Radius),
                         p_Place + QPointF(-0.56 * p_Radius, 0.9 * p_Radius)});
    painter.setPen(Qt::NoPen);
    painter.setBrush(paper);
    painter.drawPolygon(box);
    painter.setBrush(c_Frame);
    painter.drawRoundedRect(QRectF(p_Place.x() - 1.05 * p_Radius, p_Place.y() + 0.8 * p_Radius,
                                   2.1 * p_Radius, 0.34 * p_Radius),
                            0.15 * p_Radius, 0.15 * p_Radius);
    painter.end();
    p_Canvas.Overlay(sprite);
}

} // namespace Varnholt::Artwork
