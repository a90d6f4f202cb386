#pragma once

#include <CLI/CLI.hpp>
#include <QMap>
#include <QString>

namespace Varnholt::Pages {

/// What stands in a template as "@NAME@", by that name.
using Pieces = QMap<QString, QString>;

/// What a program's help tells, for pages about any program: PROGRAM, VERSION, FUNCTION (the name
/// as that of a shell's function), TABLE (see `CompletionTable()`), QUOTED_TABLE (for single quotes
/// of fish) and, in the language of man(7), SUMMARY, COMMANDS, OPTIONS, ENVIRONMENT (the options'
/// variables) and EXAMPLES.
Pieces PiecesOf(CLI::App const& p_Program);
/// What is only of varnholt-host, in the language of man(7): STATUSES, FAILURES, SETTINGS and
/// MODULE.
Pieces HostPieces();

/// \throws std::runtime_error there is no piece of some name in the template
QString Filled(QString const& p_Template, Pieces const& p_Pieces);

} // namespace Varnholt::Pages
