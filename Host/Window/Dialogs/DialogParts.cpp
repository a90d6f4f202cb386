#include "Host/Window/Dialogs/DialogParts.hpp"

#include "Host/Window/Main/RunText.hpp"

#include <QDialog>
#include <QFormLayout>
#include <QLabel>

#include <algorithm>

namespace Varnholt::Host::DialogParts {

void Widen(QDialog& p_Dialog)
{
    constexpr int c_Characters = 72;

    p_Dialog.setMinimumWidth(p_Dialog.fontMetrics().averageCharWidth() * c_Characters);
}

void Fit(QDialog& p_Dialog)
{
    QLayout& layout = *p_Dialog.layout();
    layout.invalidate();
    int const width = std::max(p_Dialog.width(), layout.totalMinimumSize().width());
    p_Dialog.resize(width, layout.hasHeightForWidth() ? layout.totalHeightForWidth(width)
                                                      : layout.totalSizeHint().height());
}

QLabel* AddText(QDialog& p_Dialog)
{
    auto* const label = new QLabel(&p_Dialog);
    label->setWordWrap(true);
    label->setTextFormat(Qt::PlainText);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    p_Dialog.layout()->addWidget(label);
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
