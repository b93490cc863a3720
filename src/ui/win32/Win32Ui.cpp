#include "Win32Ui.h"

#include "win32/Win32Text.h"

#include <array>
#include <vector>

namespace tvx::win32ui {

std::wstring wide(std::string_view text)
{
    return platform::win32::wide(text);
}

std::string utf8(std::wstring_view text)
{
    return platform::win32::utf8(text);
}

Dpi Dpi::of(HWND window)
{
    const UINT dpi = window != nullptr ? GetDpiForWindow(window) : 0;
    return Dpi{dpi != 0 ? dpi : USER_DEFAULT_SCREEN_DPI};
}

namespace {

int CALLBACK noteFace(const LOGFONTW*, const TEXTMETRICW*, DWORD, LPARAM found)
{
    *reinterpret_cast<bool*>(found) = true;
    return 0;
}

bool hasFace(const wchar_t* face)
{
    LOGFONTW wanted{};
    wanted.lfCharSet = DEFAULT_CHARSET;
    lstrcpynW(wanted.lfFaceName, face, LF_FACESIZE);
    bool found = false;
    HDC screen = GetDC(nullptr);
    EnumFontFamiliesExW(screen, &wanted, &noteFace, reinterpret_cast<LPARAM>(&found), 0);
    ReleaseDC(nullptr, screen);
    return found;
}

// A face whose full-width characters are exactly two of its half-width columns at the log
// box's height, so its rows line up under the header. A missing face comes back as
// another one (Wine gives Latin-only faces for Windows' Japanese ones), which this refuses.
bool twoColumnFace(const wchar_t* face)
{
    constexpr int kLogHeight = 12;
    HFONT font = CreateFontW(-kLogHeight, 0, 0, 0, FW_NORMAL, FALSE, FALSE, FALSE, DEFAULT_CHARSET, OUT_DEFAULT_PRECIS,
                             CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY, FIXED_PITCH | FF_MODERN, face);
    if (font == nullptr)
        return false;
    HDC screen = GetDC(nullptr);
    const HGDIOBJ before = SelectObject(screen, font);
    std::array<wchar_t, LF_FACESIZE> used{};
    GetTextFaceW(screen, static_cast<int>(used.size()), used.data());
    SIZE half{};
    SIZE space{};
    SIZE full{};
    GetTextExtentPoint32W(screen, L"0", 1, &half);
    GetTextExtentPoint32W(screen, L" ", 1, &space);
    GetTextExtentPoint32W(screen, L"\u7372", 1, &full); // 獲, as in the header
    SelectObject(screen, before);
    ReleaseDC(nullptr, screen);
    DeleteObject(font);
    return lstrcmpiW(used.data(), face) == 0 && half.cx > 0 && space.cx == half.cx && full.cx == 2 * half.cx;
}

// Windows' own Japanese faces first; the Noto faces are what Wine finds on Linux.
const wchar_t* chooseFace(bool fixedPitch)
{
    static const std::array<const wchar_t*, 4> kUi{L"Meiryo UI", L"MS UI Gothic", L"Yu Gothic UI", L"Noto Sans CJK JP"};
    static const std::array<const wchar_t*, 2> kFixed{L"MS Gothic", L"Noto Sans Mono CJK JP"};
    static const wchar_t* ui = nullptr;
    static const wchar_t* fixed = nullptr;
    const wchar_t*& chosen = fixedPitch ? fixed : ui;
    if (chosen == nullptr) {
        chosen = fixedPitch ? L"Courier New" : L"Tahoma";
        const auto* begin = fixedPitch ? kFixed.data() : kUi.data();
        const auto* end = begin + (fixedPitch ? kFixed.size() : kUi.size());
        for (const auto* face = begin; face != end; ++face) {
            if (hasFace(*face) && (!fixedPitch || twoColumnFace(*face))) {
                chosen = *face;
                break;
            }
        }
    }
    return chosen;
}

} // namespace

Font createFont(int pixelHeight, Dpi dpi, bool fixedPitch)
{
    LOGFONTW font{};
    font.lfHeight = -dpi(pixelHeight);
    font.lfWeight = FW_NORMAL;
    font.lfCharSet = DEFAULT_CHARSET;
    font.lfQuality = CLEARTYPE_QUALITY;
    font.lfPitchAndFamily = static_cast<BYTE>((fixedPitch ? FIXED_PITCH | FF_MODERN : VARIABLE_PITCH | FF_SWISS));
    lstrcpynW(font.lfFaceName, chooseFace(fixedPitch), LF_FACESIZE);
    return Font(CreateFontIndirectW(&font));
}

HWND createControl(HWND parent, const wchar_t* windowClass, std::string_view text, DWORD style, int id, HFONT font)
{
    HWND control = CreateWindowExW(0, windowClass, wide(text).c_str(), WS_CHILD | WS_VISIBLE | style, 0, 0, 0, 0,
                                   parent, reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)),
                                   GetModuleHandleW(nullptr), nullptr);
    if (control != nullptr && font != nullptr)
        SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
    return control;
}

void moveControl(HWND control, const PixelRect& rect, Dpi dpi)
{
    MoveWindow(control, dpi(rect.left), dpi(rect.top), dpi(rect.width), dpi(rect.height), TRUE);
}

void setText(HWND window, std::string_view text)
{
    SetWindowTextW(window, wide(text).c_str());
}

std::string windowText(HWND window)
{
    std::wstring text(static_cast<std::size_t>(GetWindowTextLengthW(window)) + 1, L'\0');
    const int length = GetWindowTextW(window, text.data(), static_cast<int>(text.size()));
    text.resize(static_cast<std::size_t>(length > 0 ? length : 0));
    return utf8(text);
}

int textWidth(HFONT font, std::string_view text, Dpi dpi)
{
    const std::wstring line = wide(text);
    HDC screen = GetDC(nullptr);
    HGDIOBJ old = SelectObject(screen, font);
    SIZE size{};
    GetTextExtentPoint32W(screen, line.c_str(), static_cast<int>(line.size()), &size);
    SelectObject(screen, old);
    ReleaseDC(nullptr, screen);
    return dpi.logical(size.cx);
}

bool registerWindowClass(const wchar_t* name, WNDPROC procedure, HBRUSH background, HICON icon)
{
    WNDCLASSEXW windowClass{};
    windowClass.cbSize = sizeof windowClass;
    windowClass.style = CS_HREDRAW | CS_VREDRAW;
    windowClass.lpfnWndProc = procedure;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.hCursor = LoadCursorW(nullptr, MAKEINTRESOURCEW(32512)); // IDC_ARROW
    windowClass.hbrBackground = background;
    windowClass.hIcon = icon;
    windowClass.lpszClassName = name;
    return RegisterClassExW(&windowClass) != 0 || GetLastError() == ERROR_CLASS_ALREADY_EXISTS;
}

} // namespace tvx::win32ui
