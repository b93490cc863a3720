#include "Win32Waiter.h"

#include <windows.h>

namespace tvx::win32ui {

bool pumpPendingMessages()
{
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        if (message.message == WM_QUIT) {
            PostQuitMessage(static_cast<int>(message.wParam));
            return false;
        }
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    return true;
}

void Win32Waiter::WaitMs(std::int32_t ms)
{
    const DWORD wait = ms < 1 ? 1u : static_cast<DWORD>(ms);
    // Unsigned arithmetic carries the tick count across its wrap.
    const DWORD start = GetTickCount();
    const unsigned endings = m_endings;
    for (;;) {
        const DWORD elapsed = GetTickCount() - start;
        if (elapsed >= wait || endings != m_endings)
            return;
        const DWORD woke = MsgWaitForMultipleObjectsEx(0, nullptr, wait - elapsed, QS_ALLINPUT, MWMO_INPUTAVAILABLE);
        if (woke == WAIT_OBJECT_0 && !pumpPendingMessages() && endings == m_endings) {
            // The program is ending and its windows are gone: the rest of the wait has
            // nothing to serve, and the quit request would wake every further wait.
            const DWORD spent = GetTickCount() - start;
            if (spent < wait)
                Sleep(wait - spent);
            return;
        }
    }
}

} // namespace tvx::win32ui
