#pragma once

#include "recognition/CaptureFile.h"

#include <windows.h>

#include <algorithm>
#include <deque>
#include <functional>
#include <string>

namespace tvx::test {

class WindowDriver;

// The window of a Win32 window driver, or one of its controls.
HWND handleOf(WindowDriver& window, const std::string& control = {});

// Plays the player's part while a modal dialog runs its own message loop: each step runs
// from a thread timer until it returns true, then the next. A script that has not
// finished after its deadline closes the active window, so a test can fail, not hang.
class DialogScript {
public:
    explicit DialogScript(std::deque<std::function<bool()>> steps, DWORD deadlineMs = 10000)
        : m_steps(std::move(steps)), m_deadline(GetTickCount64() + deadlineMs)
    {
        s_current = this;
        m_timer = SetTimer(nullptr, 0, 40, &DialogScript::tick);
    }
    ~DialogScript()
    {
        KillTimer(nullptr, m_timer);
        s_current = nullptr;
    }
    DialogScript(const DialogScript&) = delete;
    DialogScript& operator=(const DialogScript&) = delete;

    bool finished() const { return m_steps.empty(); }
    bool timedOut() const { return m_timedOut; }

private:
    static void CALLBACK tick(HWND, UINT, UINT_PTR, DWORD)
    {
        DialogScript* self = s_current;
        if (!self || self->m_running)
            return;
        self->m_running = true; // a step that opens a modal loop must post, not send
        if (!self->m_steps.empty() && self->m_steps.front()())
            self->m_steps.pop_front();
        else if (!self->m_steps.empty() && GetTickCount64() > self->m_deadline) {
            self->m_timedOut = true;
            if (HWND active = GetActiveWindow())
                PostMessageW(active, WM_CLOSE, 0, 0);
        }
        self->m_running = false;
    }

    static inline DialogScript* s_current = nullptr;
    std::deque<std::function<bool()>> m_steps;
    ULONGLONG m_deadline;
    UINT_PTR m_timer = 0;
    bool m_running = false;
    bool m_timedOut = false;
};

// Lets the thread's windows handle what is queued, for about `ms` milliseconds.
inline void pump(DWORD ms)
{
    const ULONGLONG end = GetTickCount64() + ms;
    do {
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
        Sleep(5);
    } while (GetTickCount64() < end);
}

inline std::wstring textOf(HWND window)
{
    wchar_t text[512] = {};
    GetWindowTextW(window, text, 512);
    return text;
}

// The texts of a window's static children, joined by new lines (a message box's text).
inline std::wstring staticTexts(HWND window)
{
    std::wstring all;
    EnumChildWindows(
        window,
        [](HWND child, LPARAM into) -> BOOL {
            wchar_t name[32] = {};
            GetClassNameW(child, name, 32);
            if (lstrcmpiW(name, L"Static") == 0 && GetWindowTextLengthW(child) > 0)
                *reinterpret_cast<std::wstring*>(into) += textOf(child) + L"\n";
            return TRUE;
        },
        reinterpret_cast<LPARAM>(&all));
    return all;
}

// The first control with this identifier anywhere under the window (on its pages too).
inline HWND childWithId(HWND window, int id)
{
    struct Search { int id; HWND found; } search{id, nullptr};
    EnumChildWindows(
        window,
        [](HWND child, LPARAM into) -> BOOL {
            auto* s = reinterpret_cast<Search*>(into);
            if (GetDlgCtrlID(child) != s->id)
                return TRUE;
            s->found = child;
            return FALSE;
        },
        reinterpret_cast<LPARAM>(&search));
    return search.found;
}

// A visible top-level window of this thread with the given title.
inline HWND shownWindow(const std::wstring& title)
{
    const HWND window = FindWindowW(nullptr, title.c_str());
    return window && IsWindowVisible(window) ? window : nullptr;
}

// Types text into a control as the keyboard would deliver its characters.
inline void typeInto(HWND control, const std::wstring& text)
{
    for (const wchar_t c : text)
        SendMessageW(control, WM_CHAR, c, 1);
}

// A key press as posted to the focused window, through the dialog's own loop.
inline void pressKey(WPARAM key)
{
    const HWND target = GetFocus();
    PostMessageW(target, WM_KEYDOWN, key, 1);
    PostMessageW(target, WM_KEYUP, key, 0xC0000001);
}

// What the screen shows of a window, its children and frame included.
inline Frame screenPicture(HWND window)
{
    RECT r;
    GetWindowRect(window, &r);
    const int width = r.right - r.left;
    const int height = r.bottom - r.top;
    const int stride = (width * 3 + 3) & ~3;
    const HDC screen = GetDC(nullptr);
    const HDC memory = CreateCompatibleDC(screen);
    const HBITMAP bitmap = CreateCompatibleBitmap(screen, width, height);
    const HGDIOBJ old = SelectObject(memory, bitmap);
    BitBlt(memory, 0, 0, width, height, screen, r.left, r.top, SRCCOPY);
    BITMAPINFO info{};
    info.bmiHeader = {sizeof info.bmiHeader, width, -height, 1, 24, BI_RGB, 0, 0, 0, 0, 0};
    Frame frame(width, height);
    std::vector<std::uint8_t> rows(static_cast<std::size_t>(stride) * static_cast<std::size_t>(height));
    GetDIBits(memory, bitmap, 0, static_cast<UINT>(height), rows.data(), &info, DIB_RGB_COLORS);
    for (int y = 0; y < height; ++y)
        std::copy_n(rows.data() + static_cast<std::size_t>(y) * static_cast<std::size_t>(stride), width * 3,
                    frame.row(y));
    SelectObject(memory, old);
    DeleteObject(bitmap);
    DeleteDC(memory);
    ReleaseDC(nullptr, screen);
    return frame;
}

} // namespace tvx::test
