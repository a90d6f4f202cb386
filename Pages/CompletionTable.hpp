#pragma once

#include <CLI/CLI.hpp>
#include <QString>

namespace Varnholt::Pages {

/// What the completions of all shells read: a line for each option, command and argument, with tabs
/// between its cells.
///  1. The command that it belongs to; "-": stands before the command; "*": stands anywhere.
///  2. The names of an option, with commas between them; of others the place: 0 is the command's, 1
///     that of its first argument; "2:word": the second, when the first is this word.
///  3. What can stand there, or behind the option: "-" nothing, "=this,that" one of these, FILE,
///  DIR,
///     or another name of something that nothing is known of.
///  4. The help.
QString CompletionTable(CLI::App const& p_Program);

} // namespace Varnholt::Pages
