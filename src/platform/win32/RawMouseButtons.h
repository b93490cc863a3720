#pragma once

#include "ports/MouseButtons.h"

#include <cstdint>
#include <vector>

namespace tvx::platform::win32 {

// The button events in one Raw Input mouse report (RAWMOUSE::usButtonFlags). Left comes
// before right and, for one button, press before release; a single report never holds
// both changes of the same button, so the order only matters between the two buttons.
std::vector<MouseButtonEvent> mouseButtonEvents(std::uint16_t buttonFlags);

} // namespace tvx::platform::win32
