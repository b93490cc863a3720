#include "Memory.h"

#include <malloc.h>

namespace tvx::platform {

void returnLargeBlocksToSystem()
{
    // glibc raises its mapping threshold to the size of a freed mapped block, so from the
    // second reading on a screen's picture would come from the heap and stay there, 6 MB
    // more for good. A fixed threshold keeps such blocks mapped and returned on free.
    mallopt(M_MMAP_THRESHOLD, 1 << 20);
}

} // namespace tvx::platform
