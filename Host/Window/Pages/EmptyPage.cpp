#include "Host/Window/Pages/EmptyPage.hpp"

#include <QApplication>
#include <QIcon>
#include <QVBoxLayout>

namespace Varnholt::Host {

EmptyPage::EmptyPage(QWidget* p_Parent)
    : QWidget(p_Parent)
    , Text(new QLabel)
{
    constexpr int c_IconSide = 96;
    constexpr int c_Margin = 24;
    constexpr double c_Larger = 1.25;

    auto* const icon = new QLabel;
    icon->setPixmap(QApplication::windowIcon().pixmap(c_IconSide));
    QFont font = Text->font();
    font.setPointSizeF(font.pointSizeF() * c_Larger);
    Text->setFont(font);
    Text->setTextFormat(Qt::PlainText); // it may name a file
    Text->setWordWrap(true);
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(c_Margin, c_Margin, c_Margin, c_Margin);
    layout->setSpacing(c_Margin);
    layout->addStretch();
    for (QLabel* const label : {icon, Text}) {
        label->setAlignment(Qt::AlignCenter);
        layout->addWidget(label);
    }
    layout->addStretch();
}

} // namespace Varnholt::Host
