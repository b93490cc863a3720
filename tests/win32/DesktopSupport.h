#pragma once

#include "recognition/Frame.h"

#include <windows.h>

#include <cstring>
#include <string>
#include <vector>

namespace tvx::test {

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

} // namespace tvx::test
