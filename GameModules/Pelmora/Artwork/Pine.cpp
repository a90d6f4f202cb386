#include "GameModules/Pelmora/Artwork/Pine.hpp"

#include "GameModules/Pelmora/Artwork/Random.hpp"

#include <QtCore/QLineF>
#include <QtCore/QtMath>

#include <algorithm>

namespace Varnholt::Artwork {

namespace {

constexpr int c_StepsPerSpan = 14;

QPointF CatmullRom(const std::vector<QPointF>& p_Points, std::size_t p_Span, qreal p_Share)
{
    const QPointF& from = p_Points[p_Span];
    const QPointF& to = p_Points[p_Span + 1];
    const QPointF& before = p_Span > 0 ? p_Points[p_Span - 1] : from;
    const QPointF& after = p_Span + 2 < p_Points.size() ? p_Points[p_Span + 2] : to;
    const qreal square = p_Share * p_Share;
    const qreal cube = square * p_Share;
    return 0.5 * ((2.0 * from) + (to - before) * p_Share +
                  (2.0 * before - 5.0 * from + 4.0 * to - after) * square +
                  (3.0 * from - before - 3.0 * to + after) * cube);
}

std::vector<QPointF> Smoothed(const std::vector<QPointF>& p_Points)
{
    std::vector<QPointF> curve;
    for (std::size_t span = 0; span + 1 < p_Points.size(); ++span) {
        for (int step = 0; step < c_StepsPerSpan; ++step) {
            curve.push_back(CatmullRom(p_Points, span, static_cast<qreal>(step) / c_StepsPerSpan));
        }
    }
    curve.push_back(p_Points.back());
    return curve;
}

QColor Between(const QColor& p_A, const QColor& p_B, qreal p_Share)
{
    const qreal share = std::clamp(p_Share, 0.0, 1.0);
    return QColor::fromRgbF(p_A.redF() + (p_B.redF() - p_A.redF()) * share,
                            p_A.greenF() + (p_B.greenF() - p_A.greenF()) * share,
                            p_A.blueF() + (p_B.blueF() - p_A.blueF()) * share);
}

QPointF Direction(const QPointF& p_From, const QPointF& p_To)
{
    const QLineF line(p_From, p_To);
    return line.length() > 0.0 ? (p_To - p_From) / line.length() : QPointF(0.0, -1.0);
}

} // namespace

void Pine::Paint(QPainter& p_Painter) const
{
    for (const Limb& limb : Limbs) {
        PaintLimb(p_Painter, limb);
    }
    std::uint32_t seed = Seed;
    for (const Pad& pad : Pads) {
        PaintPad(p_Painter, pad, ++seed);
    }
}

void Pine::PaintLimb(QPainter& p_Painter, const Limb& p_Limb) const
{
    const std::vector<QPointF> curve = Smoothed(p_Limb.Points);
    Random random(Seed + static_cast<std::uint32_t>(curve.size()));
    QPolygonF left;
    QPolygonF right;
    std::vector<QPointF> lit;
    for (std::size_t place = 0; place < curve.size(); ++place) {
        const qreal share = static_cast<qreal>(place) / static_cast<qreal>(curve.size() - 1);
        const qreal half =
            0.5 * (p_Limb.FootWidth + (p_Limb.TipWidth - p_Limb.FootWidth) * std::pow(share, 0.8));
        const QPointF along = Direction(curve[place == 0 ? 0 : place - 1],
                                        curve[std::min(place + 1, curve.size() - 1)]);
        const QPointF side(-along.y(), along.x());
        left << curve[place] + side * half * random.Between(0.88, 1.12);
        right << curve[place] - side * half * random.Between(0.88, 1.12);
        lit.push_back(side * half * QPointF::dotProduct(side, Direction(curve[place], Light)));
    }
    std::reverse(right.begin(), right.end());
    p_Painter.setPen(QPen(Bark, 1.0, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    p_Painter.setBrush(Bark);
    p_Painter.drawPolygon(left + right, Qt::WindingFill);
    PaintBark(p_Painter, curve, lit);
}

void Pine::PaintBark(QPainter& p_Painter, const std::vector<QPointF>& p_Curve,
                     const std::vector<QPointF>& p_Lit) const
{
    constexpr int c_StrokesPerStep = 9;
    Random random(Seed + 77U);
    const int last = static_cast<int>(p_Curve.size()) - 1;
    for (int stroke = 0; stroke < c_StrokesPerStep * last; ++stroke) {
        // Plates of bark: short strokes along the limb that fade away from the light.
        const int place = static_cast<int>(random.Between(0.0, last));
        const int end = std::min(last, place + 1 + static_cast<int>(random.Between(0.0, 2.5)));
        const std::size_t from = static_cast<std::size_t>(place);
        const std::size_t to = static_cast<std::size_t>(end);
        const qreal out = random.Between(-0.5, 0.96);
        const qreal shine = (0.22 + 0.5 * out) * random.Between(0.1, 1.0);
        if (shine <= 0.03) {
            continue;
        }
        QColor tone = LitBark;
        tone.setAlphaF(std::min(1.0, shine));
        const qreal wide = std::hypot(p_Lit[from].x(), p_Lit[from].y());
        p_Painter.setPen(
            QPen(tone, std::clamp(0.10 * wide, 0.5, 2.6), Qt::SolidLine, Qt::RoundCap));
        const qreal slip = random.Between(0.0, 1.0);
        const QPointF shift = (p_Curve[to] - p_Curve[from]) * (0.5 * slip);
        p_Painter.drawLine(p_Curve[from] + p_Lit[from] * out + shift,
                           p_Curve[to] + p_Lit[to] * (out + random.Between(-0.08, 0.08)));
    }
}

void Pine::PaintPad(QPainter& p_Painter, const Pad& p_Pad, std::uint32_t p_Seed) const
{
    Random random(p_Seed);
    const int tufts =
        static_cast<int>(p_Pad.HalfWidth * p_Pad.HalfHeight * 6.0 / (NeedleLength * NeedleLength)) +
        24;
    const QPointF towards = Direction(p_Pad.Centre, Light);
    for (int tuft = 0; tuft < tufts; ++tuft) {
        // From the shaded underside up to the lit crown, so that the crown lies in front.
        const qreal rise = static_cast<qreal>(tuft) / tufts;
        const qreal angle = random.Between(0.0, 2.0 * M_PI);
        const qreal reach = std::sqrt(random.Between(0.0, 1.0));
        const qreal x = reach * std::cos(angle);
        const qreal dome = std::sqrt(std::max(0.0, 1.0 - x * x));
        const qreal y = (0.35 - 1.25 * rise) * dome + 0.15 * std::sin(angle);
        const QPointF foot = p_Pad.Centre + QPointF(x * p_Pad.HalfWidth, y * p_Pad.HalfHeight);
        const qreal light =
            0.75 * (rise - 0.35) + 0.45 * (x * towards.x()) + random.Between(-0.18, 0.18);
        const qreal lean = 0.5 * x + random.Between(-0.25, 0.25);
        for (int needle = -4; needle <= 4; ++needle) {
            const qreal fan = lean + needle * 0.26 + random.Between(-0.1, 0.1);
            const qreal length = NeedleLength * random.Between(0.6, 1.2);
            const QColor tone = Between(Needles, LitNeedles, light + random.Between(-0.3, 0.3));
            p_Painter.setPen(QPen(tone, 0.09 * NeedleLength, Qt::SolidLine, Qt::RoundCap));
            p_Painter.drawLine(foot, foot + length * QPointF(std::sin(fan), -std::cos(fan)));
        }
    }
}

} // namespace Varnholt::Artwork
