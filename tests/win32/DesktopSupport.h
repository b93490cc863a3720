#pragma once

#include "recognition/CaptureFile.h"

#include <windows.h>

#include <algorithm>
#include <cstring>
#include <deque>
#include <functional>
#include <string>
#include <vector>

namespace tvx::test {

class WindowDriver;

// The window of a Win32 window driver, or one of its controls.
HWND handleOf(WindowDriver& window, const std::string& control = {});

// Lets the thread's windows handle what is queued, for about `ms` milliseconds.
inline void pumpMessages(DWORD ms)
{
    const ULONGLONG end = GetTickCount64() + ms;
    for (;;) {
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
        const ULONGLONG now = GetTickCount64();
        if (now >= end)
            return;
        MsgWaitForMultipleObjects(0, nullptr, FALSE, static_cast<DWORD>(end - now), QS_ALLINPUT);
    }
}

// Pumps until `done` holds or `ms` have passed; returns `done()`.
template <typename Condition>
bool pumpUntil(Condition done, DWORD ms)
{
    const ULONGLONG end = GetTickCount64() + ms;
    while (!done() && GetTickCount64() < end)
        pumpMessages(20);
    return done();
}

// Rows of a frame padded to four bytes, as GDI wants them.
inline std::vector<std::uint8_t> paddedRows(const Frame& frame)
{
    const std::size_t stride = (frame.rowBytes() + 3) & ~std::size_t{3};
    std::vector<std::uint8_t> rows(stride * static_cast<std::size_t>(frame.height()));
    for (std::int32_t y = 0; y < frame.height(); ++y)
        std::memcpy(rows.data() + stride * static_cast<std::size_t>(y), frame.row(y), frame.rowBytes());
    return rows;
}

inline BITMAPINFO topDownInfo(const Frame& frame, WORD bits = 24)
{
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = frame.width();
    info.bmiHeader.biHeight = -frame.height();
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = bits;
    info.bmiHeader.biCompression = BI_RGB;
    return info;
}

// A borderless top-level window at a screen position that paints a fixed picture, so
// its client area is the picture in screen coordinates.
class PaintedWindow {
public:
    PaintedWindow(const std::wstring& title, const Frame& picture, int x = 0, int y = 0)
        : m_picture(picture), m_rows(paddedRows(picture))
    {
        static const bool registered = [] {
            WNDCLASSEXW wc{};
            wc.cbSize = sizeof wc;
            wc.lpfnWndProc = &PaintedWindow::windowProc;
            wc.hInstance = GetModuleHandleW(nullptr);
            wc.hCursor = LoadCursorA(nullptr, IDC_ARROW);
            wc.lpszClassName = L"TallivexPaintedWindow";
            return RegisterClassExW(&wc) != 0;
        }();
        if (!registered)
            return;
        m_window = CreateWindowExW(0, L"TallivexPaintedWindow", title.c_str(), WS_POPUP, x, y, picture.width(),
                                   picture.height(), nullptr, nullptr, GetModuleHandleW(nullptr), nullptr);
        if (m_window == nullptr)
            return;
        SetWindowLongPtrW(m_window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
        ShowWindow(m_window, SW_SHOW);
        UpdateWindow(m_window);
        pumpMessages(100);
    }
    ~PaintedWindow()
    {
        if (m_window != nullptr)
            DestroyWindow(m_window);
        pumpMessages(50);
    }
    PaintedWindow(const PaintedWindow&) = delete;
    PaintedWindow& operator=(const PaintedWindow&) = delete;

    HWND handle() const { return m_window; }

    // True once the system reports it as the active window.
    bool bringToFront()
    {
        SetForegroundWindow(m_window);
        return pumpUntil([this] { return GetForegroundWindow() == m_window; }, 2000);
    }

private:
    static LRESULT CALLBACK windowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
    {
        auto* self = reinterpret_cast<PaintedWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
        if (message == WM_ERASEBKGND)
            return 1;
        if (message == WM_PAINT && self != nullptr) {
            PAINTSTRUCT paint;
            HDC dc = BeginPaint(window, &paint);
            const BITMAPINFO info = topDownInfo(self->m_picture);
            SetDIBitsToDevice(dc, 0, 0, static_cast<DWORD>(self->m_picture.width()),
                              static_cast<DWORD>(self->m_picture.height()), 0, 0, 0,
                              static_cast<UINT>(self->m_picture.height()), self->m_rows.data(), &info, DIB_RGB_COLORS);
            EndPaint(window, &paint);
            return 0;
        }
        return DefWindowProcW(window, message, wParam, lParam);
    }

    Frame m_picture;
    std::vector<std::uint8_t> m_rows;
    HWND m_window = nullptr;
};

// Wine answers to a function of its own in ntdll; Windows has no such export.
inline bool runningUnderWine()
{
    HMODULE ntdll = GetModuleHandleW(L"ntdll.dll");
    return ntdll != nullptr && GetProcAddress(ntdll, "wine_get_version") != nullptr;
}

// Empties the clipboard; false when it could not be opened.
inline bool emptyClipboard()
{
    if (!OpenClipboard(nullptr))
        return false;
    EmptyClipboard();
    CloseClipboard();
    return true;
}

// Hands the bitmap to the clipboard, which then owns it.
inline bool putOnClipboard(HBITMAP bitmap)
{
    if (!OpenClipboard(nullptr))
        return false;
    EmptyClipboard();
    const bool placed = SetClipboardData(CF_BITMAP, bitmap) != nullptr;
    CloseClipboard();
    if (!placed)
        DeleteObject(bitmap);
    return placed;
}

// A picture of noise, distinct for each seed.
inline Frame noiseFrame(std::int32_t width, std::int32_t height, std::uint32_t seed)
{
    Frame frame(width, height);
    std::uint32_t state = seed * 2654435761u + 1;
    for (auto& byte : frame.bytes()) {
        state = state * 1664525u + 1013904223u;
        byte = static_cast<std::uint8_t>(state >> 24);
    }
    return frame;
}

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
