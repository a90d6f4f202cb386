#include "Host/Window/Pages/RateGraph.hpp"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>

namespace Varnholt::Host {

RateGraph::RateGraph(PagePalette const& p_Palette, QWidget* p_Parent)
    : QWidget(p_Parent)
    , Colors(p_Palette)
{
    constexpr int c_Width = 150;
    constexpr int c_Height = 52;

    setFixedSize(c_Width, c_Height);
}

void RateGraph::Add(qint64 p_Now, quint64 p_Rate)
{
    Rates.Add(p_Now, p_Rate);
    update();
}

void RateGraph::Clear()
{
    Rates.Clear();
    update();
}

void RateGraph::paintEvent(QPaintEvent*)
{
    constexpr int c_FillAlpha = 70;
    constexpr int c_LineAlpha = 50;
    constexpr qint64 c_LeastSpan = 20'000; // of a job that has just begun

    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QRectF const area = QRectF(rect()).adjusted(1, 2, -1, -1);
    quint64 const highest = Rates.Highest();
    if (highest == 0 || Rates.All().size() < 2)
        return;
    QColor base = Colors.Text;
    base.setAlpha(c_LineAlpha);
    painter.setPen(QPen(base, 1));
    painter.drawLine(area.bottomLeft(), area.bottomRight());

    qint64 const now = Rates.All().back().Time;
    qint64 const span =
        std::clamp(now - Rates.All().front().Time, c_LeastSpan, RateHistory::c_Milliseconds);
    QPainterPath line;
    for (RateHistory::Sample const& sample : Rates.All()) {
        QPointF const point(area.right() - area.width() * static_cast<double>(now - sample.Time) /
                                               static_cast<double>(span),
                            area.bottom() - area.height() * static_cast<double>(sample.Rate) /
                                                static_cast<double>(highest));
        if (line.elementCount() == 0)
            line.moveTo(point);
        else
            line.lineTo(point);
    }
    QPainterPath fill = line;
    fill.lineTo(area.bottomRight());
    fill.lineTo(line.elementAt(0).x, area.bottom());
    QColor veil = Colors.Accent;
    veil.setAlpha(c_FillAlpha);
    painter.fillPath(fill, veil);
    painter.setPen(QPen(Colors.Accent, 1.5));
    painter.drawPath(line);
}

} // namespace Varnholt::Host
