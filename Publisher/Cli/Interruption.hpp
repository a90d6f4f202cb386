#pragma once

namespace Varnholt::Publisher::Interruption {

/// From now on the first SIGINT or SIGTERM does not end the program but is answered by `Signal()`.
/// The second ends it.
void Watch();

/// The signal that came, 0 before. Any thread.
int Signal();

} // namespace Varnholt::Publisher::Interruption
