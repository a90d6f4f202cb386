#pragma once

namespace Varnholt::Programs::FreedMemory {

/// Before any other thread: has the C library keep what is freed for what is asked for next, up to
/// 64 MiB of each of its heaps. A download asks for megabytes and frees them with every block that
/// arrives; pages given back and asked for anew take a tenth of its time. Does nothing where the
/// library has no such choice.
void Keep();

} // namespace Varnholt::Programs::FreedMemory
