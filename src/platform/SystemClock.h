#pragma once

#include "ports/Clock.h"

namespace tvx::platform {

// The machine's local time and monotonic millisecond tick.
class SystemClock final : public Clock {
public:
    LocalDateTime now() override;
    std::uint32_t tickMs() override;
};

} // namespace tvx::platform
