#pragma once

namespace tvx::platform {

// Blocks as large as a screen's picture go back to the system when freed. A reading holds
// the whole screen (6 MB at 1920x1080) for a few milliseconds every few minutes; the
// program must not keep that memory in the minutes between. Call it first thing in main.
void returnLargeBlocksToSystem();

} // namespace tvx::platform
