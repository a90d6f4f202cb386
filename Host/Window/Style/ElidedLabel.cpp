#include "Host/Window/Style/ElidedLabel.hpp"

#include <QPainter>
#include <QStyle>

namespace Varnholt::Host {

ElidedLabel::ElidedLabel(QWidget* p_Parent)
    : QLabel(p_Parent)
{
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
}

QSize ElidedLabel::minimumSizeHint() const
{
    return {0, QLabel::minimumSizeHint().height()};
}

void ElidedLabel::paintEvent(QPaintEvent*)
{
    QString const shown = fontMetrics().elidedText(text(), Qt::ElideMiddle, width());
    setToolTip(shown == text() ? QString() : text());
    QPainter painter(this);
    style()->drawItemText(&painter, rect(), static_cast<int>(alignment()), palette(), isEnabled(),
                          shown, foregroundRole());
}

} // namespace Varnholt::Host
