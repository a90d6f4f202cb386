#pragma once

#include <QString>

#include <optional>

/// Questions to the user, on standard input and the terminal. They block.
namespace Varnholt::Host::Prompt {

/// Whether somebody can answer.
bool IsInteractive();

/// \return true when the answer is yes
bool Confirm(QString const& p_Question);

/// Without echo on a terminal; otherwise the first line of standard input.
/// \return nothing at the end of the input, or when a signal came instead
std::optional<QString> Password(QString const& p_Question);

} // namespace Varnholt::Host::Prompt
