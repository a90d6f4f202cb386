#pragma once

#include <QString>

#include <cstdio>

/// Standard input, output and error of this process. Any thread, but for `Prepare`.
namespace Varnholt::Programs::StandardStreams {

/// The first thing in a program: a stream that is closed becomes one that fails, so that no file
/// opened later takes its number, and a closed pipe is an error of writing and no signal.
void Prepare();

/// Writes as UTF-8 and flushes.
void Write(std::FILE* p_Stream, QString const& p_Text);

/// Why something written to standard output has not gone out; empty when all has.
QString WhyLost();

} // namespace Varnholt::Programs::StandardStreams
