#include "DialogSupport.h"

#include "base/Errors.h"
#include "shell/DebugLog.h"
#include "view/Placement.h"
#include "win32/Win32Text.h"

#include <algorithm>
#include <commctrl.h>

#include <memory>
#include <optional>
#include <tuple>

namespace tvx::win32ui {
namespace {

// An empty in-memory dialog template: style, extended style, no items, position, size,
// then no menu, the default class and no title.
struct EmptyTemplate {
    DWORD style;
    DWORD exStyle;
    WORD items;
    short x;
    short y;
    short cx;
    short cy;
    WORD menu;
    WORD windowClass;
    WORD title;
};

int screenDpi()
{
    static const int dpi = [] {
        const HDC screen = GetDC(nullptr);
        const int value = screen ? GetDeviceCaps(screen, LOGPIXELSY) : 96;
        if (screen)
            ReleaseDC(nullptr, screen);
        return value > 0 ? value : 96;
    }();
    return dpi;
}

int CALLBACK faceFound(const LOGFONTW*, const TEXTMETRICW*, DWORD, LPARAM found)
{
    *reinterpret_cast<bool*>(found) = true;
    return 0;
}

bool faceInstalled(const wchar_t* face)
{
    LOGFONTW query{};
    query.lfCharSet = DEFAULT_CHARSET;
    wcsncpy(query.lfFaceName, face, LF_FACESIZE - 1);
    bool found = false;
    const HDC screen = GetDC(nullptr);
    EnumFontFamiliesExW(screen, &query, faceFound, reinterpret_cast<LPARAM>(&found), 0);
    ReleaseDC(nullptr, screen);
    return found;
}

// The first installed face of the list, else the system's message font face.
LOGFONTW fontFor(std::initializer_list<const wchar_t*> faces)
{
    NONCLIENTMETRICSW metrics{};
    metrics.cbSize = sizeof metrics;
    SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0);
    LOGFONTW font = metrics.lfMessageFont;
    font.lfHeight = -MulDiv(9, screenDpi(), 72);
    for (const wchar_t* face : faces)
        if (faceInstalled(face)) {
            wcsncpy(font.lfFaceName, face, LF_FACESIZE - 1);
            font.lfCharSet = DEFAULT_CHARSET;
            break;
        }
    return font;
}

struct FontDeleter {
    void operator()(HFONT font) const { DeleteObject(font); }
};
using OwnedFont = std::unique_ptr<std::remove_pointer_t<HFONT>, FontDeleter>;

std::optional<ViewRect> rectOf(HWND window)
{
    RECT r;
    if (!window || !IsWindowVisible(window) || !GetWindowRect(window, &r))
        return std::nullopt;
    return ViewRect{r.left, r.top, r.right - r.left, r.bottom - r.top};
}

LRESULT CALLBACK filterProc(HWND edit, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR, DWORD_PTR accepts)
{
    if (message == WM_CHAR && wParam >= 0x20 &&
        !reinterpret_cast<bool (*)(char32_t)>(accepts)(static_cast<char32_t>(wParam)))
        return 0;
    if (message == WM_NCDESTROY)
        RemoveWindowSubclass(edit, &filterProc, 1);
    return DefSubclassProc(edit, message, wParam, lParam);
}

} // namespace

HWND createDialog(HWND owner, DLGPROC procedure, LPARAM parameter, DWORD style)
{
    EmptyTemplate empty{};
    empty.style = style;
    return CreateDialogIndirectParamW(GetModuleHandleW(nullptr), reinterpret_cast<const DLGTEMPLATE*>(&empty), owner,
                                      procedure, parameter);
}

void runModal(HWND dialog, HWND owner, const std::function<bool()>& done,
              const std::function<bool(const MSG&)>& intercept)
{
    const bool ownerWasEnabled = owner && IsWindowEnabled(owner);
    if (ownerWasEnabled)
        EnableWindow(owner, FALSE);
    ShowWindow(dialog, SW_SHOW);
    SetForegroundWindow(dialog);
    MSG message{};
    bool quit = false;
    while (!done()) {
        const BOOL got = GetMessageW(&message, nullptr, 0, 0);
        if (got <= 0) {
            quit = got == 0;
            break;
        }
        if (intercept && intercept(message))
            continue;
        if (!IsDialogMessageW(dialog, &message)) {
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
    }
    // The owner first, so the activation does not go to another program's window.
    if (ownerWasEnabled) {
        EnableWindow(owner, TRUE);
        SetActiveWindow(owner);
    }
    ShowWindow(dialog, SW_HIDE);
    if (quit)
        PostQuitMessage(static_cast<int>(message.wParam));
}

void placeOver(HWND window, HWND owner, int clientWidth, int clientHeight)
{
    RECT frame{0, 0, scaled(clientWidth), scaled(clientHeight)};
    AdjustWindowRectEx(&frame, static_cast<DWORD>(GetWindowLongPtrW(window, GWL_STYLE)), FALSE,
                       static_cast<DWORD>(GetWindowLongPtrW(window, GWL_EXSTYLE)));
    const HMONITOR monitor = MonitorFromWindow(owner ? owner : window, MONITOR_DEFAULTTOPRIMARY);
    MONITORINFO info{};
    info.cbSize = sizeof info;
    GetMonitorInfoW(monitor, &info);
    const RECT& work = info.rcWork;
    const ViewRect placed = tvx::placeOver(rectOf(owner), frame.right - frame.left, frame.bottom - frame.top,
                                           {work.left, work.top, work.right - work.left, work.bottom - work.top});
    SetWindowPos(window, nullptr, placed.x, placed.y, placed.width, placed.height, SWP_NOZORDER | SWP_NOACTIVATE);
}

void PageScroller::attach(HWND page)
{
    m_page = page;
    m_position = {};
    RECT pageRect{};
    GetWindowRect(page, &pageRect);
    m_content = {};
    for (HWND child = GetWindow(page, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
        RECT r{};
        GetWindowRect(child, &r);
        m_content.cx = std::max<LONG>(m_content.cx, r.right - pageRect.left);
        m_content.cy = std::max<LONG>(m_content.cy, r.bottom - pageRect.top);
    }
    // A little room below and right of the last controls.
    m_content.cx += scaled(4);
    m_content.cy += scaled(4);
    fit();
}

void PageScroller::fit()
{
    if (!m_page || m_fitting)
        return;
    m_fitting = true; // a bar that appears or goes resizes the page again
    RECT client{};
    for (int pass = 0; pass < 2; ++pass) {
        GetClientRect(m_page, &client);
        for (const auto& [bar, content, view] : {std::tuple{SB_HORZ, m_content.cx, client.right},
                                                 std::tuple{SB_VERT, m_content.cy, client.bottom}}) {
        // A page as large as the range hides the bar.
            SCROLLINFO info{sizeof info, SIF_RANGE | SIF_PAGE, 0, static_cast<int>(content) - 1,
                            static_cast<UINT>(std::max<LONG>(view, 0)), 0, 0};
            SetScrollInfo(m_page, bar, &info, TRUE);
        }
    }
    m_fitting = false;
    GetClientRect(m_page, &client);
    scrollTo(std::min<int>(m_position.x, std::max<LONG>(0, m_content.cx - client.right)),
             std::min<int>(m_position.y, std::max<LONG>(0, m_content.cy - client.bottom)));
}

void PageScroller::scrollTo(int x, int y)
{
    RECT client{};
    GetClientRect(m_page, &client);
    x = std::clamp<int>(x, 0, std::max<LONG>(0, m_content.cx - client.right));
    y = std::clamp<int>(y, 0, std::max<LONG>(0, m_content.cy - client.bottom));
    if (x == m_position.x && y == m_position.y)
        return;
    ScrollWindowEx(m_page, m_position.x - x, m_position.y - y, nullptr, nullptr, nullptr, nullptr,
                   SW_SCROLLCHILDREN | SW_INVALIDATE | SW_ERASE);
    m_position = {x, y};
    SetScrollPos(m_page, SB_HORZ, x, TRUE);
    SetScrollPos(m_page, SB_VERT, y, TRUE);
    // Group boxes are drawn by the page's children: each is drawn again where it now is.
    RedrawWindow(m_page, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
}

bool PageScroller::handle(UINT message, WPARAM wParam, LPARAM lParam)
{
    if (!m_page)
        return false;
    if (message == WM_SIZE) {
        fit();
        return true;
    }
    if (message == WM_MOUSEWHEEL) {
        const int notches = GET_WHEEL_DELTA_WPARAM(wParam) / WHEEL_DELTA;
        scrollTo(m_position.x, m_position.y - notches * scaled(48));
        return true;
    }
    // lParam names a scroll bar control; the page's own bars send none.
    if ((message != WM_VSCROLL && message != WM_HSCROLL) || lParam != 0)
        return false;
    const int bar = message == WM_VSCROLL ? SB_VERT : SB_HORZ;
    SCROLLINFO info{sizeof info, SIF_ALL, 0, 0, 0, 0, 0};
    GetScrollInfo(m_page, bar, &info);
    int target = info.nPos;
    switch (LOWORD(wParam)) {
    case SB_LINEUP: target -= scaled(20); break;
    case SB_LINEDOWN: target += scaled(20); break;
    case SB_PAGEUP: target -= static_cast<int>(info.nPage); break;
    case SB_PAGEDOWN: target += static_cast<int>(info.nPage); break;
    case SB_THUMBTRACK:
    case SB_THUMBPOSITION: target = info.nTrackPos; break;
    case SB_TOP: target = 0; break;
    case SB_BOTTOM: target = info.nMax; break;
    default: return true;
    }
    if (bar == SB_VERT)
        scrollTo(m_position.x, target);
    else
        scrollTo(target, m_position.y);
    return true;
}

int scaled(int pixels)
{
    return MulDiv(pixels, screenDpi(), 96);
}

HFONT dialogFont()
{
    static const OwnedFont font{[] {
        const LOGFONTW wanted = fontFor({L"Meiryo UI", L"Yu Gothic UI", L"MS UI Gothic", L"Noto Sans CJK JP"});
        return CreateFontIndirectW(&wanted);
    }()};
    return font.get();
}

HFONT fixedFont()
{
    // The log box's face, at the dialogs' nine points.
    static const Font font = createFont(12, Dpi{static_cast<UINT>(screenDpi())}, true);
    return font.get();
}

HWND addControl(HWND parent, const wchar_t* windowClass, std::string_view text, DWORD style, int id, int x, int y,
                int width, int height, HFONT font)
{
    const HWND control =
        CreateWindowExW(0, windowClass, wide(text).c_str(), WS_CHILD | WS_VISIBLE | style, scaled(x), scaled(y),
                        scaled(width), scaled(height), parent,
                        reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), GetModuleHandleW(nullptr), nullptr);
    SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(font ? font : dialogFont()), FALSE);
    return control;
}

void guarded(DebugLog* log, const char* procedure, const std::function<void()>& action)
{
    try {
        action();
    } catch (const std::exception& e) {
        if (!log)
            return;
        try {
            log->WriteDebugLog(errorTrapLine(procedure, errorNumberOf(e)));
        } catch (const RuntimeError&) {
            // The window goes on without a writable log.
        }
    }
}

void filterCharacters(HWND edit, bool (*accepts)(char32_t))
{
    SetWindowSubclass(edit, &filterProc, 1, reinterpret_cast<DWORD_PTR>(accepts));
}

HWND DialogControls::add(HWND parent, const wchar_t* windowClass, std::string_view text, DWORD style, int id, int x,
                         int y, int width, int height, HFONT font)
{
    const HWND control = addControl(parent, windowClass, text, style, id, x, y, width, height, font);
    if (id > 0)
        m_controls[id] = control;
    return control;
}

HWND DialogControls::label(HWND parent, std::string_view text, int x, int y, int width, int height, DWORD style, int id)
{
    return add(parent, L"STATIC", text, style | SS_NOPREFIX, id, x, y, width, height);
}

HWND DialogControls::button(HWND parent, std::string_view text, int id, int x, int y, int width, int height)
{
    return add(parent, L"BUTTON", text, BS_PUSHBUTTON | WS_TABSTOP, id, x, y, width, height);
}

int controlIdIn(const std::map<std::string, int, std::less<>>& ids, std::string_view name)
{
    const auto found = ids.find(name);
    return found == ids.end() ? 0 : found->second;
}

} // namespace tvx::win32ui
