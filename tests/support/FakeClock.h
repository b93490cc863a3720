#pragma once

#include "ports/Clock.h"
#include "base/DateTime.h"

#include <cstdint>

namespace tvx::test {

// A clock that stands still until a test moves it.
class FakeClock : public Clock {
public:
    FakeClock() = default;
    explicit FakeClock(const LocalDateTime& now) : m_now(now) {}

    LocalDateTime now() override { return m_now; }
    std::uint32_t tickMs() override { return m_tickMs; }

    void setNow(const LocalDateTime& now) { m_now = now; }
    void setTickMs(std::uint32_t tickMs) { m_tickMs = tickMs; }
    // Moves the date-time and the tick together.
    void advanceMs(std::uint32_t ms)
    {
        m_tickMs += ms;
        m_pendingMs += ms;
        m_now = addSeconds(m_now, m_pendingMs / 1000);
        m_pendingMs %= 1000;
    }

private:
    LocalDateTime m_now{2024, 1, 1, 12, 0, 0};
    std::uint32_t m_tickMs = 0;
    std::uint32_t m_pendingMs = 0;
};

} // namespace tvx::test
