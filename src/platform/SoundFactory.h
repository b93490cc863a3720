#pragma once

#include "ports/Sound.h"

#include <memory>

namespace tvx::platform {

// The capture beep of this platform: the system's beep and tones of a given pitch and
// length. A machine without a sound device stays silent; nothing fails.
std::unique_ptr<Sound> makeSound();

} // namespace tvx::platform
