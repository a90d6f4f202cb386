#pragma once

#include "Host/Pages/ProgramModel.hpp"

/// What the completions of several shells are made of.
namespace Varnholt::Host::Pages {

/// Whether no shell takes any character of it for something else.
bool IsPlainWord(QString const& p_Text);
/// One word of bash and zsh, whatever is in it.
QString ShellWord(QString const& p_Text);
/// Several of them.
QString ShellWords(QStringList const& p_Texts);

/// All names of options.
QStringList NamesOf(QVector<Option> const& p_Options);
/// Those that a value follows, wherever they belong.
QVector<Option> OptionsWithValue(ProgramModel const& p_Model);
/// The program's name as that of a function.
QString FunctionName(ProgramModel const& p_Model);

} // namespace Varnholt::Host::Pages
