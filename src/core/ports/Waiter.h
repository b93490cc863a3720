#pragma once

#include <cstdint>

namespace tvx {

// Port: a wait that keeps window events flowing, so timers, menu commands and gestures
// can run while the caller waits. Values below 1 count as 1.
class Waiter {
public:
    virtual ~Waiter() = default;
    virtual void WaitMs(std::int32_t ms) = 0;
    // The program is closing: every wait in progress returns now, so the window closes at
    // once. Waits begun afterwards wait as usual.
    virtual void endWaits() {}
};

} // namespace tvx
