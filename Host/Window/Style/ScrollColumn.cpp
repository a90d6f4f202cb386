#include "Host/Window/Style/ScrollColumn.hpp"

#include <QVBoxLayout>

namespace Varnholt::Host {

ScrollColumn::ScrollColumn(QWidget* p_Parent)
    : QScrollArea(p_Parent)
    , Column(new QVBoxLayout)
{
    auto* const content = new QWidget;
    content->setLayout(Column);
    Column->setContentsMargins(0, 0, 0, 0);
    setWidget(content);
    setWidgetResizable(true);
    setFocusPolicy(Qt::NoFocus); // what is in it is scrolled to when it gets the focus
    setFrameShape(QFrame::NoFrame);
    for (QWidget* const ground : {viewport(), content}) // show what is behind
        ground->setAutoFillBackground(false);
}

int ScrollColumn::HeightFor(int p_Width) const
{
    return Column->hasHeightForWidth() ? Column->totalHeightForWidth(p_Width)
                                       : Column->totalSizeHint().height();
}

QSize ScrollColumn::sizeHint() const
{
    return Column->totalSizeHint();
}

} // namespace Varnholt::Host
