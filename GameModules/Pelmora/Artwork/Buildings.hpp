#pragma once

#include <QtCore/QPointF>
#include <QtGui/QColor>
#include <QtGui/QPainter>

namespace Varnholt::Artwork {

/// What a building is painted with.
struct BuildingTones {
    QColor Wall;
    QColor Roof;
    /// Edges that the moon catches.
    QColor Rim;
    QColor Window;
    /// Whether the moon stands to the right of the building.
    bool LitFromRight = true;
};

/// A tower of p_Storeys with swept roofs; p_Foot is the middle of its lowest step, p_Height
/// includes the spire.
void PaintPagoda(QPainter& p_Painter, const QPointF& p_Foot, qreal p_Height, int p_Storeys,
                 const BuildingTones& p_Tones);

/// A stone bridge with one round arch and a parapet, its feet on the line of p_Middle.
void PaintBridge(QPainter& p_Painter, const QPointF& p_Middle, qreal p_Width, qreal p_Rise,
                 const BuildingTones& p_Tones);

} // namespace Varnholt::Artwork
