#include "Tests/Window/ClippedParts.hpp"

#include <QAbstractButton>
#include <QAbstractSpinBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>

namespace Varnholt::TestSupport {

namespace {

bool ShowsText(QWidget const& p_Part)
{
    bool const isInner = qobject_cast<QAbstractSpinBox*>(p_Part.parentWidget()) != nullptr;
    return !isInner && (qobject_cast<QLabel const*>(&p_Part) != nullptr ||
                        qobject_cast<QAbstractButton const*>(&p_Part) != nullptr ||
                        qobject_cast<QAbstractSpinBox const*>(&p_Part) != nullptr ||
                        qobject_cast<QComboBox const*>(&p_Part) != nullptr ||
                        qobject_cast<QLineEdit const*>(&p_Part) != nullptr ||
                        qobject_cast<QListWidget const*>(&p_Part) != nullptr);
}

bool IsLargeEnough(QWidget const& p_Part)
{
    auto const* const label = qobject_cast<QLabel const*>(&p_Part);
    if (label != nullptr && label->wordWrap())
        return label->height() >= label->heightForWidth(label->width());
    QSize const least = p_Part.minimumSizeHint();
    return p_Part.width() >= least.width() && p_Part.height() >= least.height();
}

bool IsInSight(QWidget const& p_Part, QWidget const& p_Window)
{
    Host::ScrollColumn const* const column = ColumnAround(p_Part);
    QWidget const& ground = column == nullptr ? p_Window : *column->widget();
    bool const isWhole = column == nullptr
                             ? p_Part.visibleRegion().boundingRect() == p_Part.rect()
                             : ground.width() <= column->viewport()->width() ||
                                   column->horizontalScrollBarPolicy() == Qt::ScrollBarAsNeeded;
    return isWhole && ground.rect().contains(QRect(p_Part.mapTo(&ground, QPoint()), p_Part.size()));
}

} // namespace

Host::ScrollColumn const* ColumnAround(QWidget const& p_Part)
{
    for (QWidget const* part = p_Part.parentWidget(); part != nullptr; part = part->parentWidget())
        if (auto const* const column = qobject_cast<Host::ScrollColumn const*>(part))
            return column;
    return nullptr;
}

QStringList ClippedParts(QWidget const& p_Window)
{
    QStringList clipped;
    for (auto const* const part : p_Window.findChildren<QWidget*>()) {
        if (!part->isVisible() || !ShowsText(*part) ||
            (IsLargeEnough(*part) && IsInSight(*part, p_Window)))
            continue;
        QSize const least = part->minimumSizeHint();
        clipped += QStringLiteral("%1 %2 \"%3\": %4x%5, least %6x%7")
                       .arg(part->metaObject()->className(), part->objectName(),
                            part->property("text").toString())
                       .arg(part->width())
                       .arg(part->height())
                       .arg(least.width())
                       .arg(least.height());
    }
    return clipped;
}

} // namespace Varnholt::TestSupport
