#include "Host/Window/Pages/GameColumn.hpp"

#include "Host/Window/Style/ScrollColumn.hpp"

#include <QPainter>
#include <QToolButton>
#include <QVBoxLayout>

namespace Varnholt::Host {

namespace {

constexpr int c_IconSide = 56;

constexpr char c_ButtonSheet[] =
    "QToolButton { background: transparent; border: none; border-left: 3px solid transparent;"
    " border-radius: 0; padding: 6px 9px 6px 6px; }"
    "QToolButton:hover { background: rgba(255, 255, 255, 24); }"
    "QToolButton:focus { background: rgba(255, 255, 255, 40); }"
    "QToolButton:checked { border-left-color: %1; }";

/// For a module without an icon: its initial.
QPixmap Initial(QString const& p_Name, bool p_IsSelected)
{
    constexpr int c_Side = 2 * c_IconSide;

    QPixmap pixmap(c_Side, c_Side);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(p_IsSelected ? QColor(74, 144, 217) : QColor(70, 76, 86));
    painter.drawEllipse(pixmap.rect().adjusted(8, 8, -8, -8));
    painter.setPen(Qt::white);
    QFont font = painter.font();
    font.setPixelSize(c_IconSide);
    painter.setFont(font);
    painter.drawText(pixmap.rect(), Qt::AlignCenter, p_Name.left(1).toUpper());
    return pixmap;
}

QPixmap PictureOf(QImage const& p_Icon, QString const& p_Name, bool p_IsSelected)
{
    return p_Icon.isNull() ? Initial(p_Name, p_IsSelected) : QPixmap::fromImage(p_Icon);
}

} // namespace

GameColumn::GameColumn(QWidget* p_Parent)
    : QWidget(p_Parent)
{
    constexpr int c_Width = c_IconSide + 24;
    constexpr int c_Margin = 16;

    setFixedWidth(c_Width);
    auto* const area = new ScrollColumn;
    Column = &area->Content();
    Column->setContentsMargins(0, c_Margin, 0, c_Margin);
    Column->setSpacing(8);
    Column->addStretch();
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(area);
}

void GameColumn::Add(ModuleCard const& p_Card)
{
    auto* const button = new QToolButton;
    QIcon icon(PictureOf(p_Card.Icon, p_Card.Name, false));
    icon.addPixmap(PictureOf(p_Card.SelectedIcon.isNull() ? p_Card.Icon : p_Card.SelectedIcon,
                             p_Card.Name, true),
                   QIcon::Normal, QIcon::On);
    button->setIcon(icon);
    button->setIconSize({c_IconSide, c_IconSide});
    button->setCheckable(true);
    button->setToolTip(p_Card.Name);
    button->setAccessibleName(p_Card.Name);
    button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    button->setStyleSheet(QString::fromLatin1(c_ButtonSheet).arg(p_Card.Palette.Accent.name()));
    Buttons.addButton(button);
    Column->insertWidget(Column->count() - 1, button);
    QString const file = p_Card.File;
    Known[file] = button;
    connect(button, &QToolButton::clicked, this, [this, file] {
        Select(Selected); // until it is known that it can be chosen
        Q_EMIT Chosen(file);
    });
}

void GameColumn::Select(QString const& p_ModuleFile)
{
    Selected = p_ModuleFile;
    auto const button = Known.find(p_ModuleFile);
    if (button != Known.end())
        button->second->setChecked(true);
}

void GameColumn::paintEvent(QPaintEvent*)
{
    QPainter(this).fillRect(rect(), QColor(11, 13, 17));
}

} // namespace Varnholt::Host
