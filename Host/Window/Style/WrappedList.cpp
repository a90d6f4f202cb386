#include "Host/Window/Style/WrappedList.hpp"

#include <algorithm>

namespace Varnholt::Host {

WrappedList::WrappedList(QWidget* p_Parent)
    : QListWidget(p_Parent)
{
    setWordWrap(true);
    setTextElideMode(Qt::ElideNone);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setResizeMode(QListView::Adjust);
    setSizeAdjustPolicy(QAbstractScrollArea::AdjustToContents);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred); // not all that there is room for
}

QSize WrappedList::sizeHint() const
{
    constexpr int c_MostLines = 10;

    QSize const hint = QListWidget::sizeHint();
    return {hint.width(), std::min(hint.height(), c_MostLines * fontMetrics().lineSpacing())};
}

} // namespace Varnholt::Host
