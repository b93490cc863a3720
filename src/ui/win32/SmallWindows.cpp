#include "SmallWindows.h"

#include "FormJoke.h"

#include "view/FormMainCommands.h"
#include "view/JokePopup.h"

#include <algorithm>

namespace tvx::win32ui {
namespace {

constexpr wchar_t kNoticeClass[] = L"TallivexNotice";
constexpr wchar_t kVersionClass[] = L"TallivexVersion";
constexpr int kOk = IDOK;
constexpr int kJoke = 101;

// The client size a text needs in a font, at most `maxWidth` wide.
SIZE measureText(HWND window, HFONT font, const std::wstring& text, int maxWidth)
{
    HDC dc = GetDC(window);
    HGDIOBJ old = SelectObject(dc, font);
    RECT bounds{0, 0, maxWidth, 0};
    DrawTextW(dc, text.c_str(), static_cast<int>(text.size()), &bounds, DT_CALCRECT | DT_WORDBREAK | DT_NOPREFIX);
    SelectObject(dc, old);
    ReleaseDC(window, dc);
    return SIZE{bounds.right, bounds.bottom};
}

// The outer size for a client size, with the window's caption and borders.
void resizeForClient(HWND window, int width, int height)
{
    RECT outer{0, 0, width, height};
    AdjustWindowRectExForDpi(&outer, static_cast<DWORD>(GetWindowLongPtrW(window, GWL_STYLE)), FALSE,
                             static_cast<DWORD>(GetWindowLongPtrW(window, GWL_EXSTYLE)), Dpi::of(window).dpi);
    SetWindowPos(window, nullptr, 0, 0, outer.right - outer.left, outer.bottom - outer.top,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void centreOver(HWND window, HWND owner)
{
    RECT of{};
    RECT mine{};
    if (owner == nullptr || !GetWindowRect(owner, &of) || !GetWindowRect(window, &mine))
        return;
    const int x = of.left + ((of.right - of.left) - (mine.right - mine.left)) / 2;
    const int y = of.top + ((of.bottom - of.top) - (mine.bottom - mine.top)) / 2;
    SetWindowPos(window, nullptr, std::max(0, x), std::max(0, y), 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

} // namespace

NoticeWindow::~NoticeWindow()
{
    if (m_window != nullptr)
        DestroyWindow(m_window);
}

void NoticeWindow::create(HWND owner)
{
    registerWindowClass(kNoticeClass, &ownedWindowProc<NoticeWindow>, GetSysColorBrush(COLOR_BTNFACE));
    m_window = CreateWindowExW(WS_EX_DLGMODALFRAME, kNoticeClass, L"", WS_POPUP | WS_CAPTION | WS_SYSMENU,
                               CW_USEDEFAULT, CW_USEDEFAULT, 300, 150, owner, nullptr, GetModuleHandleW(nullptr), this);
    const Dpi dpi = Dpi::of(m_window);
    m_font = createFont(12, dpi);
    m_icon = createControl(m_window, L"STATIC", "", SS_ICON, 0, nullptr);
    SendMessageW(m_icon, STM_SETICON, reinterpret_cast<WPARAM>(LoadIconW(nullptr, MAKEINTRESOURCEW(32515))), 0);
    m_text = createControl(m_window, L"STATIC", "", SS_LEFT | SS_NOPREFIX, 0, m_font.get());
    m_ok = createControl(m_window, L"BUTTON", "OK", BS_DEFPUSHBUTTON | WS_TABSTOP, kOk, m_font.get());
}

void NoticeWindow::show(HWND owner, std::string_view text, std::string_view title)
{
    if (m_window == nullptr)
        create(owner);
    if (m_window == nullptr)
        return;
    const Dpi dpi = Dpi::of(m_window);
    const std::wstring body = wide(text);
    const SIZE size = measureText(m_window, m_font.get(), body, dpi(360));
    const int icon = dpi(32);
    const int margin = dpi(12);
    const int textLeft = margin + icon + margin;
    const int width = std::max(textLeft + static_cast<int>(size.cx) + margin, dpi(200));
    const int textHeight = std::max(static_cast<int>(size.cy), icon);
    const int buttonTop = margin + textHeight + margin;
    MoveWindow(m_icon, margin, margin, icon, icon, FALSE);
    MoveWindow(m_text, textLeft, margin, size.cx, size.cy, FALSE);
    MoveWindow(m_ok, (width - dpi(80)) / 2, buttonTop, dpi(80), dpi(24), FALSE);
    SetWindowTextW(m_text, body.c_str());
    setText(m_window, title);
    resizeForClient(m_window, width, buttonTop + dpi(24) + margin);
    if (!IsWindowVisible(m_window))
        centreOver(m_window, owner);
    ShowWindow(m_window, SW_SHOWNA);
    InvalidateRect(m_window, nullptr, TRUE);
}

void NoticeWindow::hide()
{
    if (m_window != nullptr)
        ShowWindow(m_window, SW_HIDE);
}

LRESULT NoticeWindow::handle(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if ((message == WM_COMMAND && LOWORD(wParam) == kOk) || message == WM_CLOSE) {
        hide();
        return 0;
    }
    if (message == WM_DESTROY)
        m_window = nullptr;
    return DefWindowProcW(window, message, wParam, lParam);
}

void runModal(HWND owner, HWND window)
{
    const bool ownerWasEnabled = owner != nullptr && IsWindowEnabled(owner);
    if (ownerWasEnabled)
        EnableWindow(owner, FALSE);
    MSG message;
    while (IsWindow(window)) {
        const BOOL got = GetMessageW(&message, nullptr, 0, 0);
        if (got <= 0) {
            if (got == 0)
                PostQuitMessage(static_cast<int>(message.wParam));
            break;
        }
        if (!IsDialogMessageW(window, &message)) {
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
    }
    if (ownerWasEnabled) {
        EnableWindow(owner, TRUE);
        SetActiveWindow(owner);
    }
    if (IsWindow(window))
        DestroyWindow(window);
}

namespace {

struct VersionWindow {
    Font font;
    Font big;

    LRESULT handle(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
    {
        if ((message == WM_COMMAND && (LOWORD(wParam) == kOk || LOWORD(wParam) == IDCANCEL)) || message == WM_CLOSE) {
            DestroyWindow(window);
            return 0;
        }
        if (message == WM_COMMAND && LOWORD(wParam) == kJoke) {
            FormJoke popup;
            popup.run(window);
            return 0;
        }
        return DefWindowProcW(window, message, wParam, lParam);
    }
};

} // namespace

void showVersionWindow(HWND owner, std::string_view title)
{
    registerWindowClass(kVersionClass, &ownedWindowProc<VersionWindow>, GetSysColorBrush(COLOR_BTNFACE));
    VersionWindow state{nullptr, nullptr};
    HWND window = CreateWindowExW(WS_EX_DLGMODALFRAME, kVersionClass, wide(tr(kVersionCaption)).c_str(),
                                  WS_POPUP | WS_CAPTION | WS_SYSMENU, CW_USEDEFAULT, CW_USEDEFAULT, 300, 200, owner,
                                  nullptr, GetModuleHandleW(nullptr), &state);
    if (window == nullptr)
        return;
    SetWindowLongPtrW(window, GWLP_ID, 0);
    const Dpi dpi = Dpi::of(window);
    state.font = createFont(12, dpi);
    state.big = createFont(16, dpi);

    const int margin = dpi(16);
    const SIZE titleSize = measureText(window, state.big.get(), wide(title), dpi(600));
    const int width = std::max(static_cast<int>(titleSize.cx) + 2 * margin, dpi(280));
    HWND heading = createControl(window, L"STATIC", title, SS_LEFT | SS_NOPREFIX, 0, state.big.get());
    MoveWindow(heading, margin, margin, titleSize.cx, titleSize.cy, FALSE);
    int top = margin + titleSize.cy + dpi(8);
    HWND version = createControl(window, L"STATIC", FormMainCommands::versionLine(), SS_LEFT, 0, state.font.get());
    MoveWindow(version, margin, top, width - 2 * margin, dpi(18), FALSE);
    top += dpi(32);
    HWND ok = createControl(window, L"BUTTON", "OK", BS_DEFPUSHBUTTON | WS_TABSTOP, kOk, state.font.get());
    MoveWindow(ok, width - margin - dpi(80), top, dpi(80), dpi(24), FALSE);
    HWND joke = createControl(window, L"BUTTON", tr(JokePopup::kOpenCaption), BS_PUSHBUTTON | WS_TABSTOP, kJoke,
                              state.font.get());
    MoveWindow(joke, margin, top, dpi(80), dpi(24), FALSE);
    resizeForClient(window, width, top + dpi(24) + margin);
    centreOver(window, owner);
    ShowWindow(window, SW_SHOW);
    SetFocus(ok);
    runModal(owner, window);
}

} // namespace tvx::win32ui
