#include "Programs/FreedMemory.hpp"

#include <cstdlib> // has __GLIBC__

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace Varnholt::Programs::FreedMemory {

void Keep()
{
#ifdef __GLIBC__
    // As large as its heaps are: with less it gives back whole ones.
    constexpr int c_Heap = 64 * 1024 * 1024;

    mallopt(M_TOP_PAD, c_Heap);
#endif
}

} // namespace Varnholt::Programs::FreedMemory
