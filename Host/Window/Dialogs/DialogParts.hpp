#pragma once

#include "Host/Core/Failures/Failure.hpp"

#include <QString>

class QDialog;
class QFormLayout;
class QLabel;
class QWidget;

/// What the dialogs have in common.
namespace Varnholt::Host::DialogParts {

/// Makes it wide enough for sentences.
void Widen(QDialog& p_Dialog);
/// Makes it as high as what it shows by now.
void Fit(QDialog& p_Dialog);
/// Text of several lines, which can be selected.
QLabel* AddText(QDialog& p_Dialog);
/// Adds a row with what can be filled in. \return its label, without a text yet
QLabel* AddField(QFormLayout& p_Form, QWidget& p_Field);
/// Adds a row with a figure and its name.
void AddFigure(QFormLayout& p_Form, QLabel*& p_Name, QLabel*& p_Figure);
/// What failed and what to do, as two sentences.
QString Sentences(Failure const& p_Failure);

} // namespace Varnholt::Host::DialogParts
