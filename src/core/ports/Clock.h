#pragma once

#include "base/DateTime.h"

#include <cstdint>

namespace tvx {

// Port: the local date-time and a monotonic millisecond tick.
class Clock {
public:
    virtual ~Clock() = default;
    virtual LocalDateTime now() = 0;
    virtual std::uint32_t tickMs() = 0;
};

} // namespace tvx
