#pragma once

#include "ports/Waiter.h"

namespace tvx::win32ui {

// Handles every window message of the thread until the time is up, so timers, menu
// commands and gestures run meanwhile. A quit request seen during the wait is handed
// back to the main loop. A close ends every wait in progress at once.
class Win32Waiter final : public Waiter {
public:
    void WaitMs(std::int32_t ms) override;
    void endWaits() override { ++m_endings; }

private:
    unsigned m_endings = 0;
};

// Handles the messages queued now; false when a quit request was among them (it is
// posted again for the main loop).
bool pumpPendingMessages();

} // namespace tvx::win32ui
