#include "Host/Window/Style/Glyph.hpp"

#include <QPainter>
#include <QPixmap>
#include <QPolygonF>

namespace Varnholt::Host {

namespace {

void Draw(QPainter& p_Painter, Glyph p_Glyph)
{
    switch (p_Glyph) {
    case Glyph::Pause:
        p_Painter.drawRoundedRect(QRectF(6, 5, 4, 14), 1, 1);
        p_Painter.drawRoundedRect(QRectF(14, 5, 4, 14), 1, 1);
        break;
    case Glyph::Resume:
        p_Painter.drawPolygon(QPolygonF({{8, 5}, {19, 12}, {8, 19}}));
        break;
    case Glyph::More:
        for (double const x : {5.0, 12.0, 19.0})
            p_Painter.drawEllipse(QPointF(x, 12), 2, 2);
        break;
    case Glyph::Close:
        p_Painter.setPen(QPen(p_Painter.brush(), 2, Qt::SolidLine, Qt::RoundCap));
        p_Painter.drawLine(QPointF(7, 7), QPointF(17, 17));
        p_Painter.drawLine(QPointF(17, 7), QPointF(7, 17));
        break;
    }
}

} // namespace

QIcon GlyphIcon(Glyph p_Glyph, QColor const& p_Color)
{
    constexpr int c_Side = 24;

    QIcon icon;
    for (int const ratio : {1, 2, 3}) {
        QPixmap pixmap(c_Side * ratio, c_Side * ratio);
        pixmap.fill(Qt::transparent);
        pixmap.setDevicePixelRatio(ratio);
        QPainter painter(&pixmap);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(p_Color);
        Draw(painter, p_Glyph);
        painter.end();
        icon.addPixmap(pixmap);
    }
    return icon;
}

} // namespace Varnholt::Host
