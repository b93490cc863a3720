#include "Memory.h"

namespace tvx::platform {

// Nothing to do: the Windows heap takes blocks this large straight from the system and
// gives them back on free.
void returnLargeBlocksToSystem() {}

} // namespace tvx::platform
