#include "GameModules/Pelmora/Artwork/Buildings.hpp"

#include <QtGui/QLinearGradient>
#include <QtGui/QPainterPath>

#include <cmath>

namespace Varnholt::Artwork {

namespace {

/// A roof whose eaves sweep up at the corners; p_Eaves is the middle of its lower edge.
QPainterPath RoofPath(const QPointF& p_Eaves, qreal p_HalfWidth, qreal p_HalfTop, qreal p_Height)
{
    const qreal lift = 0.55 * p_Height;
    QPainterPath path(p_Eaves + QPointF(-p_HalfWidth, -lift));
    path.cubicTo(p_Eaves + QPointF(-0.80 * p_HalfWidth, 0.02 * p_Height),
                 p_Eaves + QPointF(-0.45 * p_HalfWidth, 0.0), p_Eaves);
    path.cubicTo(p_Eaves + QPointF(0.45 * p_HalfWidth, 0.0),
                 p_Eaves + QPointF(0.80 * p_HalfWidth, 0.02 * p_Height),
                 p_Eaves + QPointF(p_HalfWidth, -lift));
    path.cubicTo(p_Eaves + QPointF(0.72 * p_HalfWidth, -0.42 * p_Height),
                 p_Eaves + QPointF(p_HalfTop * 1.15, -0.55 * p_Height),
                 p_Eaves + QPointF(p_HalfTop, -p_Height));
    path.lineTo(p_Eaves + QPointF(-p_HalfTop, -p_Height));
    path.cubicTo(p_Eaves + QPointF(-p_HalfTop * 1.15, -0.55 * p_Height),
                 p_Eaves + QPointF(-0.72 * p_HalfWidth, -0.42 * p_Height),
                 p_Eaves + QPointF(-p_HalfWidth, -lift));
    return path;
}

/// The side of a roof that the moon reaches, as a thin line along its slope.
QPainterPath RoofRim(const QPointF& p_Eaves, qreal p_HalfWidth, qreal p_HalfTop, qreal p_Height,
                     bool p_Right)
{
    const qreal side = p_Right ? 1.0 : -1.0;
    QPainterPath path(p_Eaves + QPointF(side * p_HalfWidth, -0.55 * p_Height));
    path.cubicTo(p_Eaves + QPointF(side * 0.72 * p_HalfWidth, -0.42 * p_Height),
                 p_Eaves + QPointF(side * p_HalfTop * 1.15, -0.55 * p_Height),
                 p_Eaves + QPointF(side * p_HalfTop, -p_Height));
    return path;
}

void PaintStorey(QPainter& p_Painter, const QPointF& p_Foot, qreal p_HalfWidth, qreal p_Height,
                 const BuildingTones& p_Tones)
{
    const qreal wall = 0.52 * p_Height;
    const QRectF body(p_Foot.x() - 0.62 * p_HalfWidth, p_Foot.y() - wall, 1.24 * p_HalfWidth, wall);
    p_Painter.setPen(Qt::NoPen);
    p_Painter.fillRect(body, p_Tones.Wall);
    QLinearGradient lamp(body.topLeft(), body.bottomLeft());
    lamp.setColorAt(0.0, p_Tones.Window.darker(150));
    lamp.setColorAt(1.0, p_Tones.Window);
    const qreal pane = body.width() / 7.0;
    for (int window = 0; window < 3; ++window) {
        p_Painter.fillRect(QRectF(body.left() + pane * (1.0 + 2.0 * window),
                                  body.top() + 0.34 * wall, pane, 0.52 * wall),
                           lamp);
    }
    const QPointF eaves(p_Foot.x(), p_Foot.y() - wall + 0.06 * p_Height);
    const qreal roof = 0.56 * p_Height;
    p_Painter.fillPath(RoofPath(eaves, p_HalfWidth, 0.5 * p_HalfWidth, roof), p_Tones.Roof);
    p_Painter.setBrush(Qt::NoBrush);
    p_Painter.setPen(QPen(p_Tones.Rim, 0.030 * p_Height + 0.6, Qt::SolidLine, Qt::RoundCap));
    p_Painter.drawPath(RoofRim(eaves, p_HalfWidth, 0.5 * p_HalfWidth, roof, p_Tones.LitFromRight));
}

void PaintSpire(QPainter& p_Painter, const QPointF& p_Foot, qreal p_HalfWidth, qreal p_Height,
                const BuildingTones& p_Tones)
{
    const QPointF eaves = p_Foot + QPointF(0.0, 0.04 * p_Height);
    p_Painter.fillPath(RoofPath(eaves, p_HalfWidth, 0.04 * p_HalfWidth, 0.42 * p_Height),
                       p_Tones.Roof);
    p_Painter.setPen(QPen(p_Tones.Roof, 0.05 * p_Height, Qt::SolidLine, Qt::RoundCap));
    p_Painter.drawLine(p_Foot - QPointF(0.0, 0.3 * p_Height), p_Foot - QPointF(0.0, p_Height));
    p_Painter.setPen(Qt::NoPen);
    p_Painter.setBrush(p_Tones.Roof);
    for (int ring = 0; ring < 3; ++ring) {
        const qreal size = (0.085 - 0.016 * ring) * p_Height;
        p_Painter.drawEllipse(p_Foot - QPointF(0.0, (0.48 + 0.15 * ring) * p_Height), size,
                              0.6 * size);
    }
}

/// The line of the bridge's deck from its left to its right end.
QPainterPath DeckLine(const QPointF& p_Middle, qreal p_Width, qreal p_Rise)
{
    const qreal half = 0.5 * p_Width;
    QPainterPath line(p_Middle + QPointF(-half, -0.34 * p_Rise));
    line.cubicTo(p_Middle + QPointF(-0.62 * half, -0.38 * p_Rise),
                 p_Middle + QPointF(-0.45 * half, -1.12 * p_Rise),
                 p_Middle + QPointF(0.0, -1.12 * p_Rise));
    line.cubicTo(p_Middle + QPointF(0.45 * half, -1.12 * p_Rise),
                 p_Middle + QPointF(0.62 * half, -0.38 * p_Rise),
                 p_Middle + QPointF(half, -0.34 * p_Rise));
    return line;
}

QPainterPath ArchPath(const QPointF& p_Middle, qreal p_Rise)
{
    QPainterPath arch;
    arch.addEllipse(p_Middle + QPointF(0.0, 0.04 * p_Rise), 0.86 * p_Rise, 0.86 * p_Rise);
    return arch;
}

void PaintMasonry(QPainter& p_Painter, const QPainterPath& p_Body, const QPointF& p_Middle,
                  qreal p_Width, qreal p_Rise, const BuildingTones& p_Tones)
{
    QColor joint = p_Tones.Rim;
    joint.setAlpha(34);
    p_Painter.setClipPath(p_Body);
    p_Painter.setBrush(Qt::NoBrush);
    p_Painter.setPen(QPen(joint, 0.9));
    for (int course = 0; course < 9; ++course) {
        const qreal y = p_Middle.y() - 0.125 * course * p_Rise;
        p_Painter.drawLine(QPointF(p_Middle.x() - p_Width, y), QPointF(p_Middle.x() + p_Width, y));
        for (int stone = -20; stone <= 20; ++stone) {
            const qreal x = p_Middle.x() + (stone + 0.5 * (course % 2)) * 0.26 * p_Rise;
            p_Painter.drawLine(QPointF(x, y), QPointF(x, y - 0.125 * p_Rise));
        }
    }
    joint.setAlpha(110);
    p_Painter.setPen(QPen(p_Tones.Roof, 0.20 * p_Rise));
    p_Painter.drawPath(ArchPath(p_Middle, p_Rise));
    p_Painter.setPen(QPen(joint, 1.2));
    p_Painter.drawPath(ArchPath(p_Middle, 1.12 * p_Rise));
    p_Painter.setClipping(false);
}

void PaintParapet(QPainter& p_Painter, const QPainterPath& p_Deck, qreal p_Rise,
                  const BuildingTones& p_Tones)
{
    constexpr int c_Posts = 16;
    const qreal height = 0.17 * p_Rise;
    p_Painter.setBrush(Qt::NoBrush);
    p_Painter.setPen(QPen(p_Tones.Roof, 2.0));
    p_Painter.drawPath(p_Deck.translated(0.0, -0.62 * height));
    for (int post = 0; post <= c_Posts; ++post) {
        const QPointF foot = p_Deck.pointAtPercent(static_cast<qreal>(post) / c_Posts);
        p_Painter.setPen(QPen(p_Tones.Roof, 3.0, Qt::SolidLine, Qt::RoundCap));
        p_Painter.drawLine(foot, foot - QPointF(0.0, height));
    }
    QColor rim = p_Tones.Rim;
    rim.setAlpha(150);
    p_Painter.setPen(QPen(rim, 1.1));
    p_Painter.drawPath(p_Deck);
}

} // namespace

void PaintPagoda(QPainter& p_Painter, const QPointF& p_Foot, qreal p_Height, int p_Storeys,
                 const BuildingTones& p_Tones)
{
    const qreal spire = 0.24 * p_Height;
    qreal sum = 0.0;
    for (int storey = 0; storey < p_Storeys; ++storey) {
        sum += std::pow(0.90, storey);
    }
    qreal storeyHeight = (p_Height - spire) / sum;
    qreal half = 0.215 * p_Height;
    QPointF foot = p_Foot;
    p_Painter.fillRect(
        QRectF(foot.x() - 0.74 * half, foot.y() - 0.03 * p_Height, 1.48 * half, 0.05 * p_Height),
        p_Tones.Roof);
    for (int storey = 0; storey < p_Storeys; ++storey) {
        PaintStorey(p_Painter, foot, half, storeyHeight, p_Tones);
        foot.ry() -= storeyHeight;
        storeyHeight *= 0.90;
        half *= 0.86;
    }
    PaintSpire(p_Painter, foot, 0.8 * half, spire, p_Tones);
}

void PaintBridge(QPainter& p_Painter, const QPointF& p_Middle, qreal p_Width, qreal p_Rise,
                 const BuildingTones& p_Tones)
{
    const QPainterPath deck = DeckLine(p_Middle, p_Width, p_Rise);
    QPainterPath body = deck;
    body.lineTo(p_Middle + QPointF(0.5 * p_Width, 0.05 * p_Rise));
    body.lineTo(p_Middle + QPointF(-0.5 * p_Width, 0.05 * p_Rise));
    body.closeSubpath();
    body = body.subtracted(ArchPath(p_Middle, p_Rise));
    QLinearGradient stone(p_Middle - QPointF(0.0, 1.1 * p_Rise), p_Middle);
    stone.setColorAt(0.0, p_Tones.Roof);
    stone.setColorAt(1.0, p_Tones.Wall);
    p_Painter.fillPath(body, stone);
    PaintMasonry(p_Painter, body, p_Middle, p_Width, p_Rise, p_Tones);
    PaintParapet(p_Painter, deck, p_Rise, p_Tones);
}

} // namespace Varnholt::Artwork
