#include "SystemClock.h"

#include <chrono>
#include <ctime>

namespace tvx::platform {

LocalDateTime SystemClock::now()
{
    const std::time_t t = std::time(nullptr);
    std::tm local{};
    localtime_r(&t, &local);
    return LocalDateTime{local.tm_year + 1900, local.tm_mon + 1, local.tm_mday,
                         local.tm_hour, local.tm_min, local.tm_sec};
}

std::uint32_t SystemClock::tickMs()
{
    const auto since = std::chrono::steady_clock::now().time_since_epoch();
    // Wraps every 49.7 days, like the system tick the waits are written for.
    return static_cast<std::uint32_t>(std::chrono::duration_cast<std::chrono::milliseconds>(since).count());
}

} // namespace tvx::platform
