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
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred); // not all that there is room for
}

QSize WrappedList::sizeHint() const
{
    constexpr int c_MostLines = 10;

    int const wanted = std::min(contentsSize().height(), c_MostLines * fontMetrics().lineSpacing());
    return {QListWidget::sizeHint().width(), wanted + height() - viewport()->height()};
}

/// Called when the lines have got their places.
void WrappedList::updateGeometries()
{
    QListWidget::updateGeometries();
    updateGeometry();
}

} // namespace Varnholt::Host
