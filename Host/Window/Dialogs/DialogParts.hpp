#pragma once

#include "Host/Core/Failures/Failure.hpp"

#include <QString>

class QDialog;
class QFormLayout;
class QLabel;
class QVBoxLayout;
class QWidget;

/// What the dialogs have in common.
namespace Varnholt::Host::DialogParts {

/// Begins a dialog with its title as a heading. What is added to its layout later stands below.
/// \return what the rest is added to: it can be scrolled where there is no room for it
QVBoxLayout& Begin(QDialog& p_Dialog);
/// Makes it as high as what it shows by now, if the screen is.
void Fit(QDialog& p_Dialog);
/// Text of several lines, which can be selected.
QLabel* AddText(QVBoxLayout& p_Layout);
/// Adds a row with what can be filled in. \return its label, without a text yet
QLabel* AddField(QFormLayout& p_Form, QWidget& p_Field);
/// Adds a row with a figure and its name.
void AddFigure(QFormLayout& p_Form, QLabel*& p_Name, QLabel*& p_Figure);
/// What failed and what to do, as two sentences.
QString Sentences(Failure const& p_Failure);

} // namespace Varnholt::Host::DialogParts
