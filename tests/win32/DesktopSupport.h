#pragma once

#include "recognition/CaptureFile.h"
#include "win32/Win32Handles.h"

#include <windows.h>

#include <algorithm>
#include <functional>
#include <random>
#include <string>
#include <vector>

namespace tvx::test {

class WindowDriver;

HWND handleOf(WindowDriver& window, const std::string& control = {});

// Lets the thread's windows handle what is queued until `done` holds or `ms` have passed; returns `done()`.
template <typename Condition>
bool pumpUntil(Condition done, DWORD ms)
{
    const ULONGLONG end = GetTickCount64() + ms;
    for (;;) {
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
        const ULONGLONG now = GetTickCount64();
        if (done() || now >= end)
            return done();
        MsgWaitForMultipleObjects(0, nullptr, FALSE, static_cast<DWORD>(std::min(end - now, 20ull)), QS_ALLINPUT);
    }
}

inline void pumpMessages(DWORD ms)
{
    pumpUntil([] { return false; }, ms);
}

// A 24-bit header for rows laid out as a CaptureBitmap's (bottom-up; top-down with a negative height).
inline BITMAPINFO dibInfo(std::int32_t width, std::int32_t height)
{
    return {{sizeof(BITMAPINFOHEADER), width, height, 1, 24, BI_RGB, 0, 0, 0, 0, 0}, {}};
}

// A screen-compatible bitmap of the picture, as most programs put on the clipboard.
inline HBITMAP deviceBitmap(const Frame& picture)
{
    const CaptureBitmap rows = toCaptureBitmap(picture);
    const BITMAPINFO info = dibInfo(picture.width(), picture.height());
    const platform::win32::WindowDC screen;
    return CreateDIBitmap(screen.get(), &info.bmiHeader, CBM_INIT, rows.pixels.data(), &info, DIB_RGB_COLORS);
}

// A borderless window showing a picture at a screen position: its own class's brush erases with it.
class PaintedWindow {
public:
    PaintedWindow(const std::wstring& title, const Frame& picture, int x = 0, int y = 0)
        : m_class(L"TallivexPainted " + title) // titles differ between windows shown at once
    {
        const HBITMAP pattern = deviceBitmap(picture);
        const WNDCLASSEXW windowClass{sizeof windowClass, 0, &DefWindowProcW, 0, 0, GetModuleHandleW(nullptr), nullptr,
                                      nullptr, CreatePatternBrush(pattern), nullptr, m_class.c_str(), nullptr};
        RegisterClassExW(&windowClass);
        DeleteObject(pattern);
        m_window = CreateWindowExW(0, m_class.c_str(), title.c_str(), WS_POPUP, x, y, picture.width(), picture.height(),
                                   nullptr, nullptr, GetModuleHandleW(nullptr), nullptr);
        ShowWindow(m_window, SW_SHOW);
        UpdateWindow(m_window);
        pumpMessages(100);
    }
    ~PaintedWindow()
    {
        DestroyWindow(m_window);
        UnregisterClassW(m_class.c_str(), GetModuleHandleW(nullptr));
        pumpMessages(50);
    }
    PaintedWindow(const PaintedWindow&) = delete;
    PaintedWindow& operator=(const PaintedWindow&) = delete;

    // True once the system reports it as the active window. Asked again while waiting: another
    // program's window that goes away meanwhile hands the activation on, maybe past this one.
    bool bringToFront()
    {
        return pumpUntil(
            [this] {
                if (GetForegroundWindow() == m_window)
                    return true;
                SetForegroundWindow(m_window);
                return false;
            },
            3000);
    }

private:
    std::wstring m_class;
    HWND m_window = nullptr;
};

// Wine answers to a function of its own in ntdll; Windows has no such export.
inline bool runningUnderWine()
{
    return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
}

// Empties the clipboard, then hands it `data` in that format (it owns it then); false when refused.
inline bool setClipboard(UINT format = 0, HANDLE data = nullptr)
{
    const platform::win32::OpenedClipboard clipboard;
    return clipboard.isOpen() && EmptyClipboard() && (data == nullptr || SetClipboardData(format, data) != nullptr);
}

inline Frame noiseFrame(std::int32_t width, std::int32_t height, std::uint32_t seed)
{
    Frame frame(width, height);
    std::mt19937 noise(seed);
    for (auto& byte : frame.bytes())
        byte = static_cast<std::uint8_t>(noise());
    return frame;
}

inline std::wstring textOf(HWND window)
{
    wchar_t text[512] = {};
    GetWindowTextW(window, text, 512);
    return text;
}

// A window's children and theirs, in order (the controls on its pages too).
inline std::vector<HWND> childrenOf(HWND window)
{
    std::vector<HWND> children;
    EnumChildWindows(window, [](HWND child, LPARAM list) {
        reinterpret_cast<std::vector<HWND>*>(list)->push_back(child);
        return TRUE;
    }, reinterpret_cast<LPARAM>(&children));
    return children;
}

inline HWND childWithId(HWND window, int id)
{
    for (HWND child : childrenOf(window))
        if (GetDlgCtrlID(child) == id)
            return child;
    return nullptr;
}

// The picture of a bitmap that is selected into no DC.
inline Frame frameOf(HBITMAP bitmap)
{
    BITMAP header{};
    GetObjectW(bitmap, sizeof header, &header);
    CaptureBitmap rows = blankCapture(header.bmWidth, header.bmHeight);
    BITMAPINFO info = dibInfo(header.bmWidth, header.bmHeight);
    GetDIBits(platform::win32::WindowDC().get(), bitmap, 0, static_cast<UINT>(rows.rows), rows.pixels.data(), &info,
              DIB_RGB_COLORS);
    return toFrame(rows);
}

} // namespace tvx::test
