#include "FreedMemory.h"

#include <cstdlib>
#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace torvo {

void alwaysReturnLargeBlocks() {
#ifdef __GLIBC__
    constexpr int largeBlock = 256 * 1024; // bytes
    mallopt(M_MMAP_THRESHOLD, largeBlock);
#endif
}

void returnFreedMemory() {
#ifdef __GLIBC__
    malloc_trim(0);
#endif
}

} // namespace torvo
