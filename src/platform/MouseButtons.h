#pragma once

#include "ports/MouseButtons.h"

#include <memory>

namespace tvx::platform {

// Background mouse buttons: XInput2 raw events on X11, Raw Input on Windows.
std::unique_ptr<MouseButtonSource> makeMouseButtonSource();

} // namespace tvx::platform
