#include "SystemClock.h"

#include <windows.h>

namespace tvx::platform {

LocalDateTime SystemClock::now()
{
    SYSTEMTIME local{};
    GetLocalTime(&local);
    return LocalDateTime{local.wYear, local.wMonth, local.wDay, local.wHour, local.wMinute, local.wSecond};
}

std::uint32_t SystemClock::tickMs()
{
    return static_cast<std::uint32_t>(GetTickCount64());
}

} // namespace tvx::platform
