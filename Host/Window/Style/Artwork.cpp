#include "Host/Window/Style/Artwork.hpp"

#include <QLinearGradient>
#include <QPainter>
#include <QStringList>

#include <algorithm>
#include <utility>

namespace Varnholt::Host {

namespace {

constexpr double c_MostEnlarged = 1.6;

/// Where it begins on one axis: at 0, at the end, or so that the middles meet.
int Begin(int p_Length, int p_Room, bool p_IsAtBegin, bool p_IsAtEnd)
{
    if (p_IsAtBegin)
        return 0;
    return p_IsAtEnd ? p_Room - p_Length : (p_Room - p_Length) / 2;
}

/// Lets an edge of the picture that lies within the page run out into the ground.
void FadeEdge(QPainter& p_Painter, QRectF const& p_Strip, QPointF const& p_Edge,
              QPointF const& p_Inner, QColor p_Ground)
{
    QLinearGradient gradient(p_Edge, p_Inner);
    gradient.setColorAt(0, p_Ground);
    p_Ground.setAlpha(0);
    gradient.setColorAt(1, p_Ground);
    p_Painter.fillRect(p_Strip, gradient);
}

void FadeEdges(QPainter& p_Painter, QRectF const& p_Picture, QSizeF const& p_Page,
               QColor const& p_Ground)
{
    double const depth = std::min(p_Picture.width(), p_Picture.height()) / 6;
    QRectF const area = p_Picture;
    if (area.left() > 0)
        FadeEdge(p_Painter, {area.left(), area.top(), depth, area.height()}, area.topLeft(),
                 area.topLeft() + QPointF(depth, 0), p_Ground);
    if (area.right() < p_Page.width())
        FadeEdge(p_Painter, {area.right() - depth, area.top(), depth, area.height()},
                 area.topRight(), area.topRight() - QPointF(depth, 0), p_Ground);
    if (area.top() > 0)
        FadeEdge(p_Painter, {area.left(), area.top(), area.width(), depth}, area.topLeft(),
                 area.topLeft() + QPointF(0, depth), p_Ground);
    if (area.bottom() < p_Page.height())
        FadeEdge(p_Painter, {area.left(), area.bottom() - depth, area.width(), depth},
                 area.bottomLeft(), area.bottomLeft() - QPointF(0, depth), p_Ground);
}

} // namespace

Artwork::Artwork(QImage p_Picture, QString p_Placement, QColor p_Ground)
    : Picture(std::move(p_Picture))
    , Placement(std::move(p_Placement))
    , Ground(std::move(p_Ground))
{
}

QRect Artwork::Place(QSize const& p_Picture, QSize const& p_Page, QString const& p_Placement)
{
    if (p_Picture.isEmpty() || p_Page.isEmpty())
        return {};
    double const filling = std::max(static_cast<double>(p_Page.width()) / p_Picture.width(),
                                    static_cast<double>(p_Page.height()) / p_Picture.height());
    QSize const size = p_Picture * std::min(filling, c_MostEnlarged);
    QStringList const words = p_Placement.toLower().split(QLatin1Char(' '), Qt::SkipEmptyParts);
    auto const has = [&](char const* p_Word) { return words.contains(QLatin1String(p_Word)); };
    return {QPoint(Begin(size.width(), p_Page.width(), has("left"), has("right")),
                   Begin(size.height(), p_Page.height(), has("top"), has("bottom"))),
            size};
}

QPixmap const& Artwork::For(QSize const& p_Size, qreal p_Ratio)
{
    QSize const size = p_Size * p_Ratio;
    if (Drawn.size() == size && qFuzzyCompare(Drawn.devicePixelRatio(), p_Ratio))
        return Drawn;
    Drawn = QPixmap(size);
    Drawn.fill(Ground);
    if (!Picture.isNull() && !size.isEmpty()) {
        QRect const place = Place(Picture.size(), size, Placement);
        QPainter painter(&Drawn);
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.drawImage(place, Picture);
        FadeEdges(painter, place, size, Ground);
    }
    Drawn.setDevicePixelRatio(p_Ratio);
    return Drawn;
}

} // namespace Varnholt::Host
