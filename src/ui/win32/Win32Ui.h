#pragma once

#include "view/PixelRect.h"

#include <windows.h>

#include <memory>
#include <string>
#include <string_view>
#include <type_traits>

namespace tvx::win32ui {

std::wstring wide(std::string_view utf8);
std::string utf8(std::wstring_view text);

// Layouts are in pixels at 96 dots per inch; a window on a denser monitor scales them.
struct Dpi {
    UINT dpi = USER_DEFAULT_SCREEN_DPI;
    int operator()(int logical) const { return MulDiv(logical, static_cast<int>(dpi), USER_DEFAULT_SCREEN_DPI); }
    int logical(int device) const { return MulDiv(device, USER_DEFAULT_SCREEN_DPI, static_cast<int>(dpi)); }
    static Dpi of(HWND window);
};

struct GdiObjectDeleter {
    void operator()(HGDIOBJ object) const { DeleteObject(object); }
};
using Font = std::unique_ptr<std::remove_pointer_t<HFONT>, GdiObjectDeleter>;

// The window font: a Japanese user-interface face at the given pixel height (96 dpi), or
// a fixed-pitch one whose full-width characters are two columns, so log lines align.
Font createFont(int pixelHeight, Dpi dpi, bool fixedPitch = false);

// A child control with the given class, text, style and identifier, in the window font.
HWND createControl(HWND parent, const wchar_t* windowClass, std::string_view text, DWORD style, int id, HFONT font);
void moveControl(HWND control, const PixelRect& rect, Dpi dpi);
void setText(HWND window, std::string_view text);
std::string windowText(HWND window);

// Width in pixels (96 dpi) of a text in a font.
int textWidth(HFONT font, std::string_view text, Dpi dpi);

// A window of the program's own class registered once; the procedure receives the
// object given at creation through `create`.
template <typename Owner>
LRESULT CALLBACK ownedWindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_NCCREATE) {
        const auto* create = reinterpret_cast<const CREATESTRUCTW*>(lParam);
        SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(create->lpCreateParams));
    }
    auto* owner = reinterpret_cast<Owner*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (owner == nullptr)
        return DefWindowProcW(window, message, wParam, lParam);
    if (message == WM_NCDESTROY)
        SetWindowLongPtrW(window, GWLP_USERDATA, 0);
    return owner->handle(window, message, wParam, lParam);
}

bool registerWindowClass(const wchar_t* name, WNDPROC procedure, HBRUSH background, HICON icon = nullptr);

} // namespace tvx::win32ui
