#include "base/core/XMemory.h"

#include <cstdlib>   // defines __GLIBC__ where it is glibc

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace tav {

void tune_allocator() {
#if defined(__GLIBC__)
    // A fixed threshold also stops the allocator from raising it after each big free.
    mallopt(M_MMAP_THRESHOLD, 1 << 20);
#endif
}

} // namespace tav
