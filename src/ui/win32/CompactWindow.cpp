#include "CompactWindow.h"

#include "config/Settings.h"
#include "view/LiveWindowModel.h"

#include <windowsx.h>

#include <algorithm>
#include <exception>

namespace tvx::win32ui {
namespace {

constexpr wchar_t kClass[] = L"TallivexCompact";
constexpr COLORREF kBackground = RGB(30, 32, 36);
constexpr COLORREF kBorder = RGB(96, 100, 108);
constexpr COLORREF kText = RGB(238, 238, 238);
constexpr COLORREF kCaption = RGB(168, 174, 182);
constexpr int kDot = 10;
constexpr int kCloseBox = 14;

COLORREF colourOf(std::uint32_t rgb)
{
    return RGB((rgb >> 16) & 0xFF, (rgb >> 8) & 0xFF, rgb & 0xFF);
}

int textExtent(HDC dc, const std::wstring& text)
{
    SIZE size{};
    GetTextExtentPoint32W(dc, text.c_str(), static_cast<int>(text.size()), &size);
    return size.cx;
}

void fill(HDC dc, const RECT& rect, COLORREF colour)
{
    SetDCBrushColor(dc, colour);
    FillRect(dc, &rect, static_cast<HBRUSH>(GetStockObject(DC_BRUSH)));
}

} // namespace

CompactWindow::CompactWindow(Settings& settings, std::function<void()> saveSettings)
    : m_settings(settings), m_save(std::move(saveSettings))
{
}

CompactWindow::~CompactWindow()
{
    if (m_window != nullptr)
        DestroyWindow(m_window);
}

void CompactWindow::retranslate()
{
    if (m_window != nullptr)
        setText(m_window, tr(kCompactTitle));
}

void CompactWindow::create()
{
    registerWindowClass(kClass, &ownedWindowProc<CompactWindow>, nullptr);
    // No owner: the meter may be minimised while this stays over the game. Never activated:
    // the meter reads only while the game is in front, so a drag must leave it there.
    m_window = CreateWindowExW(WS_EX_TOPMOST | WS_EX_LAYERED | WS_EX_TOOLWINDOW | WS_EX_NOACTIVATE, kClass,
                               wide(tr(kCompactTitle)).c_str(), WS_POPUP, 0, 0, 0, 0, nullptr, nullptr,
                               GetModuleHandleW(nullptr), this);
    if (m_window == nullptr)
        return;
    m_dpi = Dpi::of(m_window);
    m_font = createFont(12, m_dpi);
    m_levelFont = createFont(14, m_dpi);
}

void CompactWindow::open(const LiveView& view, bool remember)
{
    m_view = view;
    if (m_window == nullptr)
        create();
    if (m_window == nullptr)
        return;
    applyOpacity();
    place();
    ShowWindow(m_window, SW_SHOWNOACTIVATE);
    InvalidateRect(m_window, nullptr, FALSE);
    if (remember) {
        m_settings.CompactShown = true;
        m_save();
    }
}

void CompactWindow::close()
{
    if (m_window == nullptr)
        return;
    keepPlace();
    m_settings.CompactShown = false;
    DestroyWindow(m_window);
    m_save();
}

void CompactWindow::closeWithMeter()
{
    if (m_window == nullptr)
        return;
    // Every move was saved when it ended; the file is written only should one have been missed.
    const int x = m_settings.CompactX;
    const int y = m_settings.CompactY;
    keepPlace();
    DestroyWindow(m_window);
    if (x != m_settings.CompactX || y != m_settings.CompactY)
        m_save();
}

void CompactWindow::show(const LiveView& view)
{
    const bool resize = view.compact.size() != m_view.compact.size();
    m_view = view;
    if (m_window == nullptr)
        return;
    if (resize) {
        keepPlace(); // where the player left it, not where it first opened
        place();
    }
    // A game that makes itself topmost would cover it: every new figure puts it back in front.
    SetWindowPos(m_window, HWND_TOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    InvalidateRect(m_window, nullptr, FALSE);
}

void CompactWindow::followSettings()
{
    if (m_window == nullptr)
        return;
    applyOpacity();
    place();
}

void CompactWindow::place()
{
    // The place is kept in screen pixels; the core keeps it on the monitor it is on (the
    // primary one the first time), in that monitor's pixels at 96 dpi.
    const bool placed = m_settings.CompactX != kUnplaced && m_settings.CompactY != kUnplaced;
    const HMONITOR monitor = placed ? MonitorFromPoint(POINT{m_settings.CompactX, m_settings.CompactY},
                                                       MONITOR_DEFAULTTONEAREST)
                                    : MonitorFromPoint(POINT{0, 0}, MONITOR_DEFAULTTOPRIMARY);
    MONITORINFO info{};
    info.cbSize = sizeof info;
    GetMonitorInfoW(monitor, &info);
    const RECT& screen = info.rcMonitor;
    Settings local = m_settings;
    if (placed) {
        local.CompactX = m_dpi.logical(m_settings.CompactX - screen.left);
        local.CompactY = m_dpi.logical(m_settings.CompactY - screen.top);
    }
    // The level stands under the state line, then the figures.
    const PixelRect rect = compactWindowRect(local, m_dpi.logical(screen.right - screen.left),
                                             m_dpi.logical(screen.bottom - screen.top), m_view.compact.size() + 1);
    SetWindowPos(m_window, HWND_TOPMOST, screen.left + m_dpi(rect.left), screen.top + m_dpi(rect.top),
                 m_dpi(rect.width), m_dpi(rect.height), SWP_NOACTIVATE);
}

void CompactWindow::applyOpacity()
{
    const int percent = std::clamp(m_settings.CompactOpacity, 20, 100);
    SetLayeredWindowAttributes(m_window, 0, static_cast<BYTE>(MulDiv(percent, 255, 100)), LWA_ALPHA);
}

void CompactWindow::keepPlace()
{
    RECT at{};
    if (!GetWindowRect(m_window, &at))
        return;
    m_settings.CompactX = at.left;
    m_settings.CompactY = at.top;
}

void CompactWindow::endDrag()
{
    if (!m_dragging)
        return;
    m_dragging = false;
    const int x = m_settings.CompactX;
    const int y = m_settings.CompactY;
    keepPlace();
    // A click that did not move it writes nothing.
    if (x != m_settings.CompactX || y != m_settings.CompactY)
        m_save();
}

RECT CompactWindow::closeBox() const
{
    RECT client{};
    GetClientRect(m_window, &client);
    const int size = m_dpi(kCloseBox);
    const int right = client.right - m_dpi(kCompactMargin);
    const int top = m_dpi(kCompactMargin) + (m_dpi(kCompactLineHeight) - size) / 2;
    return RECT{right - size, top, right, top + size};
}

void CompactWindow::paint(HDC dc, const RECT& client)
{
    m_drawn.clear();
    m_clipped = false;
    const int margin = m_dpi(kCompactMargin);
    const int lineHeight = m_dpi(kCompactLineHeight);
    const int right = client.right - margin;
    const bool stalled = m_view.state == ReadingState::Stalled;

    fill(dc, client, stalled ? colourOf(m_view.stateColour) : kBorder);
    RECT inside = client;
    InflateRect(&inside, -m_dpi(stalled ? 2 : 1), -m_dpi(stalled ? 2 : 1));
    fill(dc, inside, kBackground);
    SetBkMode(dc, TRANSPARENT);

    // Draws a text in its box, noting what was drawn and whether it had the room.
    const auto text = [&](const std::string& shown, RECT box, UINT align, HFONT font, COLORREF colour) {
        SelectObject(dc, font);
        SetTextColor(dc, colour);
        const std::wstring line = wide(shown);
        m_drawn.push_back(shown);
        if (textExtent(dc, line) > box.right - box.left)
            m_clipped = true;
        DrawTextW(dc, line.c_str(), static_cast<int>(line.size()), &box,
                  align | DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS);
    };

    // The state: a dot in its colour, the words, and the cross that closes the window.
    int top = margin;
    const int dot = m_dpi(kDot);
    const int dotTop = top + (lineHeight - dot) / 2;
    SetDCBrushColor(dc, colourOf(m_view.stateColour));
    SetDCPenColor(dc, colourOf(m_view.stateColour));
    SelectObject(dc, GetStockObject(DC_BRUSH));
    SelectObject(dc, GetStockObject(DC_PEN));
    Ellipse(dc, margin, dotTop, margin + dot, dotTop + dot);
    const RECT cross = closeBox();
    text(m_view.stateText, RECT{margin + dot + m_dpi(6), top, cross.left - m_dpi(4), top + lineHeight}, DT_LEFT,
         m_font.get(), kText);
    SetDCPenColor(dc, kCaption);
    const int inset = m_dpi(3);
    MoveToEx(dc, cross.left + inset, cross.top + inset, nullptr);
    LineTo(dc, cross.right - inset, cross.bottom - inset);
    MoveToEx(dc, cross.right - inset - 1, cross.top + inset, nullptr);
    LineTo(dc, cross.left + inset - 1, cross.bottom - inset);

    top += lineHeight;
    text(m_view.levelText, RECT{margin, top, right, top + lineHeight}, DT_LEFT, m_levelFont.get(), kText);

    for (const LiveLine& line : m_view.compact) {
        top += lineHeight;
        SelectObject(dc, m_font.get());
        const int captionWidth = textExtent(dc, wide(line.caption));
        const int gap = m_dpi(8);
        text(line.caption, RECT{margin, top, std::min(right, margin + captionWidth), top + lineHeight}, DT_LEFT,
             m_font.get(), kCaption);
        text(line.value, RECT{margin + captionWidth + gap, top, right, top + lineHeight}, DT_RIGHT, m_font.get(),
             kText);
    }
}

void CompactWindow::showMenu(POINT at)
{
    HMENU menu = CreatePopupMenu();
    for (std::size_t i = 0; i < kCompactOpacities.size(); ++i) {
        const UINT checked = kCompactOpacities[i] == m_settings.CompactOpacity ? MF_CHECKED : MF_UNCHECKED;
        AppendMenuW(menu, MF_STRING | checked, static_cast<UINT_PTR>(kCmdOpacity + static_cast<int>(i)),
                    wide(compactOpacityCaption(kCompactOpacities[i])).c_str());
    }
    AppendMenuW(menu, MF_SEPARATOR, 0, nullptr);
    AppendMenuW(menu, MF_STRING, kCmdClose, wide(tr(kCompactCloseCaption)).c_str());
    // The menu closes on a click elsewhere only when its window is in front; the game gets
    // the front back when it has.
    const HWND before = GetForegroundWindow();
    SetForegroundWindow(m_window);
    const int chosen = TrackPopupMenu(menu, TPM_RIGHTBUTTON | TPM_RETURNCMD, at.x, at.y, 0, m_window, nullptr);
    PostMessageW(m_window, WM_NULL, 0, 0);
    DestroyMenu(menu);
    if (before != nullptr && before != m_window && IsWindow(before))
        SetForegroundWindow(before);
    if (chosen != 0)
        command(chosen);
}

void CompactWindow::command(int id)
{
    if (id == kCmdClose) {
        close();
        return;
    }
    const int index = id - kCmdOpacity;
    if (index < 0 || index >= static_cast<int>(kCompactOpacities.size()))
        return;
    m_settings.CompactOpacity = kCompactOpacities[static_cast<std::size_t>(index)];
    applyOpacity();
    m_save();
}

LRESULT CompactWindow::handle(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    // Nothing may cross the system's message dispatch.
    try {
        switch (message) {
        case WM_SETCURSOR:
            if (LOWORD(lParam) == HTCLIENT) {
                POINT at{};
                GetCursorPos(&at);
                ScreenToClient(window, &at);
                const RECT cross = closeBox();
                SetCursor(LoadCursorW(nullptr, PtInRect(&cross, at) ? IDC_HAND : IDC_SIZEALL));
                return TRUE;
            }
            break;
        case WM_MOUSEACTIVATE: return MA_NOACTIVATE;
        case WM_LBUTTONDOWN: {
            const POINT at{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
            const RECT cross = closeBox();
            if (!PtInRect(&cross, at)) {
                // A drag anywhere moves it. Moved here rather than by the system's move loop,
                // which would activate it and take the front from the game.
                m_dragFrom = at;
                m_dragging = true;
                SetCapture(window);
            }
            return 0;
        }
        case WM_MOUSEMOVE:
            if (m_dragging) {
                RECT r{};
                GetWindowRect(window, &r);
                SetWindowPos(window, nullptr, r.left + GET_X_LPARAM(lParam) - m_dragFrom.x,
                             r.top + GET_Y_LPARAM(lParam) - m_dragFrom.y, 0, 0,
                             SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
            }
            return 0;
        case WM_LBUTTONUP: {
            if (m_dragging) {
                ReleaseCapture(); // WM_CAPTURECHANGED ends the drag
                return 0;
            }
            const POINT at{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
            const RECT cross = closeBox();
            if (PtInRect(&cross, at))
                close();
            return 0;
        }
        case WM_CAPTURECHANGED: endDrag(); return 0;
        case WM_EXITSIZEMOVE: // moved by the system after all
            keepPlace();
            m_save();
            return 0;
        case WM_CONTEXTMENU: {
            POINT at{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
            if (at.x == -1 && at.y == -1) { // from the keyboard
                RECT r{};
                GetWindowRect(window, &r);
                at = POINT{r.left, r.bottom};
            }
            showMenu(at);
            return 0;
        }
        case WM_COMMAND: command(LOWORD(wParam)); return 0;
        case WM_CLOSE: close(); return 0;
        case WM_ERASEBKGND: return 1;
        case WM_PAINT: {
            PAINTSTRUCT ps;
            HDC dc = BeginPaint(window, &ps);
            RECT client{};
            GetClientRect(window, &client);
            // Drawn off screen first: figures change every reading and must not flicker.
            HDC memory = CreateCompatibleDC(dc);
            HBITMAP bitmap = CreateCompatibleBitmap(dc, client.right, client.bottom);
            const HGDIOBJ oldBitmap = SelectObject(memory, bitmap);
            const HGDIOBJ oldFont = SelectObject(memory, m_font.get());
            paint(memory, client);
            BitBlt(dc, 0, 0, client.right, client.bottom, memory, 0, 0, SRCCOPY);
            SelectObject(memory, oldFont);
            SelectObject(memory, oldBitmap);
            DeleteObject(bitmap);
            DeleteDC(memory);
            EndPaint(window, &ps);
            return 0;
        }
        case WM_DPICHANGED: {
            m_dpi = Dpi{HIWORD(wParam)};
            m_font = createFont(12, m_dpi);
            m_levelFont = createFont(14, m_dpi);
            const auto* suggested = reinterpret_cast<const RECT*>(lParam);
            SetWindowPos(window, nullptr, suggested->left, suggested->top, suggested->right - suggested->left,
                         suggested->bottom - suggested->top, SWP_NOZORDER | SWP_NOACTIVATE);
            return 0;
        }
        case WM_DESTROY: m_window = nullptr; return 0;
        default: break;
        }
    } catch (const std::exception&) {
        return 0;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

} // namespace tvx::win32ui
