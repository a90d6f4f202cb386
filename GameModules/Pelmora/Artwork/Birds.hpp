#pragma once

#include <QtCore/QPointF>
#include <QtGui/QColor>
#include <QtGui/QPainter>

namespace Varnholt::Artwork {

/// A loose line of large birds in flight, the leader at p_Lead; p_Span is its wing span.
void PaintFlock(QPainter& p_Painter, const QPointF& p_Lead, qreal p_Span, const QColor& p_Tone);

} // namespace Varnholt::Artwork
