#include "Host/Window/Dialogs/DialogParts.hpp"

#include "Host/Window/Main/RunText.hpp"
#include "Host/Window/Style/ElidedLabel.hpp"
#include "Host/Window/Style/ScrollColumn.hpp"

#include <QDialog>
#include <QFormLayout>
#include <QScreen>
#include <QVBoxLayout>

#include <algorithm>

namespace Varnholt::Host::DialogParts {

namespace {

/// An arrow is a sector: style sheets draw no triangles, and a picture would have one colour.
constexpr char c_Sheet[] = R"(
QPushButton { border: 1px solid palette(mid); border-radius: 6px; padding: 6px 16px;
    color: palette(button-text); background: palette(button); }
QPushButton:hover, QPushButton:focus { border-color: palette(highlight); }
QPushButton:default:enabled { color: palette(highlighted-text); background: palette(highlight); }
QPushButton:disabled { color: palette(mid); background: transparent; }
QLineEdit, QComboBox, QAbstractSpinBox { border: 1px solid palette(mid); border-radius: 6px;
    padding: 5px 8px; background: palette(base); }
QLineEdit:focus, QComboBox:focus, QAbstractSpinBox:focus { border-color: palette(highlight); }
QAbstractSpinBox QLineEdit { border: none; padding: 0; }
QComboBox::drop-down, QAbstractSpinBox::up-button, QAbstractSpinBox::down-button {
    border: none; width: 22px; }
QComboBox::down-arrow, QAbstractSpinBox::down-arrow, QAbstractSpinBox::up-arrow {
    width: 8px; height: 4px; }
QComboBox::down-arrow:enabled, QAbstractSpinBox::down-arrow:enabled {
    background: qconicalgradient(cx: 0.5, cy: 1, angle: 0, stop: 0.174 transparent,
        stop: 0.178 palette(text), stop: 0.322 palette(text), stop: 0.326 transparent); }
QAbstractSpinBox::up-arrow:enabled {
    background: qconicalgradient(cx: 0.5, cy: 0, angle: 0, stop: 0.674 transparent,
        stop: 0.678 palette(text), stop: 0.822 palette(text), stop: 0.826 transparent); }
QProgressBar { background: palette(base); border: none; border-radius: 3px; }
QProgressBar::chunk { background: palette(highlight); border-radius: 3px; }
QScrollBar:vertical { background: transparent; width: 10px; }
QScrollBar::handle:vertical { background: palette(mid); border-radius: 3px; margin: 2px;
    min-height: 24px; }
QScrollBar::add-line:vertical, QScrollBar::sub-line:vertical { height: 0; }
QScrollBar::add-page:vertical, QScrollBar::sub-page:vertical { background: transparent; }
)";

} // namespace

QVBoxLayout& Begin(QDialog& p_Dialog)
{
    constexpr int c_Characters = 80; // for sentences and paths
    constexpr int c_Margin = 20;
    constexpr double c_Larger = 1.4;

    p_Dialog.setStyleSheet(QString::fromLatin1(c_Sheet));
    auto* const layout = new QVBoxLayout(&p_Dialog);
    layout->setContentsMargins(c_Margin, c_Margin, c_Margin, c_Margin);
    layout->setSpacing(c_Margin * 3 / 4);
    auto* const heading = new ElidedLabel;
    QFont font = p_Dialog.font();
    font.setPointSizeF(font.pointSizeF() * c_Larger);
    font.setBold(true);
    heading->setFont(font);
    QObject::connect(&p_Dialog, &QWidget::windowTitleChanged, heading, &QLabel::setText);
    auto* const body = new ScrollColumn;
    layout->addWidget(heading);
    layout->addWidget(body, 1);
    p_Dialog.setMinimumWidth(std::min(p_Dialog.fontMetrics().averageCharWidth() * c_Characters,
                                      p_Dialog.screen()->availableSize().width()));
    return body->Content();
}

void Fit(QDialog& p_Dialog)
{
    auto& body = *p_Dialog.findChild<ScrollColumn*>();
    body.updateGeometry(); // its layout does not tell
    QRect const room = p_Dialog.screen()->availableGeometry();
    QSize const frame = p_Dialog.frameSize() - p_Dialog.size();
    QSize const around = p_Dialog.layout()->totalSizeHint() - body.sizeHint();
    int const width =
        std::max(p_Dialog.width(), around.width() + body.Content().minimumSize().width());
    int const height = around.height() + body.HeightFor(width - around.width());
    QPoint const middle = p_Dialog.frameGeometry().center();
    p_Dialog.resize(QSize(width, height).boundedTo(room.size() - frame));
    if (!p_Dialog.isVisible())
        return;
    QRect place(QPoint(),
                p_Dialog.size() + frame); // it grows to both sides, but not off the screen
    place.moveCenter(middle);
    place.moveBottomRight(
        {std::min(place.right(), room.right()), std::min(place.bottom(), room.bottom())});
    p_Dialog.move(std::max(place.left(), room.left()), std::max(place.top(), room.top()));
}

QLabel* AddText(QVBoxLayout& p_Layout)
{
    auto* const label = new QLabel;
    label->setWordWrap(true);
    label->setTextFormat(Qt::PlainText);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    p_Layout.addWidget(label);
    return label;
}

QLabel* AddField(QFormLayout& p_Form, QWidget& p_Field)
{
    auto* const label = new QLabel;
    p_Form.addRow(label, &p_Field);
    label->setBuddy(&p_Field);
    return label;
}

void AddFigure(QFormLayout& p_Form, QLabel*& p_Name, QLabel*& p_Figure)
{
    p_Name = new QLabel;
    p_Figure = new QLabel;
    p_Figure->setTextFormat(Qt::PlainText);
    p_Form.addRow(p_Name, p_Figure);
}

QString Sentences(Failure const& p_Failure)
{
    return RunText::Sentence(p_Failure) + QLatin1Char(' ') +
           RunText::Capitalized(p_Failure.Remedy()) + QLatin1Char('.');
}

} // namespace Varnholt::Host::DialogParts
