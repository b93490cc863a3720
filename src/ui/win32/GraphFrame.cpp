#include "GraphFrame.h"

#include <commctrl.h>

#include <cmath>
#include <vector>

namespace tvx::win32ui {
namespace {

constexpr wchar_t kClass[] = L"TallivexGraphFrame";
constexpr COLORREF kGridColour = RGB(0xC0, 0xC0, 0xC0);
constexpr COLORREF kExpColour = RGB(0x00, 0x00, 0xFF);
constexpr COLORREF kMoneyColour = RGB(0xFF, 0x00, 0x00);

POINT point(const GraphPoint& at)
{
    return POINT{static_cast<LONG>(std::lround(at.x)), static_cast<LONG>(std::lround(at.y))};
}

void drawSegments(HDC dc, const std::vector<GraphSegment>& segments, COLORREF colour, int style)
{
    if (segments.empty())
        return;
    HPEN pen = CreatePen(style, 1, colour);
    HGDIOBJ old = SelectObject(dc, pen);
    // Joined segments are one polyline, so a dotted pattern runs on across them.
    POINT last{};
    bool open = false;
    for (const GraphSegment& segment : segments) {
        const POINT from = point(segment.from);
        if (!open || from.x != last.x || from.y != last.y)
            MoveToEx(dc, from.x, from.y, nullptr);
        last = point(segment.to);
        LineTo(dc, last.x, last.y);
        open = true;
    }
    SelectObject(dc, old);
    DeleteObject(pen);
}

} // namespace

GraphFrame::GraphFrame(HWND parent, int id)
    : m_font(createFont(GraphFrameView::kLabelFontPixels, Dpi{})),
      m_view([this](std::string_view text) { return textWidth(m_font.get(), text, Dpi{}); })
{
    registerWindowClass(kClass, &ownedWindowProc<GraphFrame>, GetSysColorBrush(COLOR_BTNFACE));
    m_window = CreateWindowExW(0, kClass, L"", WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS, 0, 0, 0, 0, parent,
                               reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), GetModuleHandleW(nullptr), this);
    m_toolTips = CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr, WS_POPUP | TTS_ALWAYSTIP, CW_USEDEFAULT,
                                 CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, m_window, nullptr,
                                 GetModuleHandleW(nullptr), nullptr);
    for (std::size_t i = 0; i < kGraphLabelCount; ++i) {
        const GraphLabelView& label = m_view.labels()[i];
        if (label.toolTip.empty() || m_toolTips == nullptr)
            continue;
        m_tipTexts[i] = wide(label.toolTip);
        TOOLINFOW tool{};
        tool.cbSize = sizeof tool;
        tool.uFlags = TTF_SUBCLASS;
        tool.hwnd = m_window;
        tool.uId = i;
        tool.lpszText = m_tipTexts[i].data();
        SendMessageW(m_toolTips, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
    }
    m_view.setChanged([this] {
        if (m_window != nullptr)
            InvalidateRect(m_window, nullptr, FALSE);
        updateToolTips();
    });
}

GraphFrame::~GraphFrame()
{
    if (m_window != nullptr)
        DestroyWindow(m_window);
}

void GraphFrame::place(const PixelRect& rect, Dpi dpi)
{
    m_dpi = dpi;
    moveControl(m_window, rect, dpi);
    GraphFrameDisplay();
}

void GraphFrame::GraphFrameDisplay()
{
    RECT client{};
    GetClientRect(m_window, &client);
    m_view.setFrameSize(m_dpi.logical(client.right), m_dpi.logical(client.bottom));
    m_view.GraphFrameDisplay();
}

void GraphFrame::retranslate()
{
    m_view.retranslate();
    if (m_toolTips == nullptr)
        return;
    for (std::size_t i = 0; i < kGraphLabelCount; ++i) {
        if (m_tipTexts[i].empty())
            continue;
        m_tipTexts[i] = wide(m_view.labels()[i].toolTip);
        TOOLINFOW tool{};
        tool.cbSize = sizeof tool;
        tool.hwnd = m_window;
        tool.uId = i;
        tool.lpszText = m_tipTexts[i].data();
        SendMessageW(m_toolTips, TTM_UPDATETIPTEXTW, 0, reinterpret_cast<LPARAM>(&tool));
    }
}

void GraphFrame::updateToolTips()
{
    if (m_toolTips == nullptr)
        return;
    for (std::size_t i = 0; i < kGraphLabelCount; ++i) {
        if (m_tipTexts[i].empty())
            continue;
        const PixelRect& at = m_view.labels()[i].rect;
        TOOLINFOW tool{};
        tool.cbSize = sizeof tool;
        tool.hwnd = m_window;
        tool.uId = i;
        tool.rect = RECT{m_dpi(at.left), m_dpi(at.top), m_dpi(at.left + at.width), m_dpi(at.top + at.height)};
        SendMessageW(m_toolTips, TTM_NEWTOOLRECTW, 0, reinterpret_cast<LPARAM>(&tool));
    }
}

void GraphFrame::paintPicture(HDC dc)
{
    const PixelRect& picture = m_view.picGraph();
    if (picture.width <= 0 || picture.height <= 0)
        return;
    const RECT area{picture.left, picture.top, picture.left + picture.width, picture.top + picture.height};
    FillRect(dc, &area, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
    const int saved = SaveDC(dc);
    IntersectClipRect(dc, area.left, area.top, area.right, area.bottom);
    POINT origin{};
    OffsetWindowOrgEx(dc, -picture.left, -picture.top, &origin);
    HPEN grid = CreatePen(PS_SOLID, 1, kGridColour);
    HGDIOBJ old = SelectObject(dc, grid);
    auto line = [dc](const GridLine& at) {
        MoveToEx(dc, at.x1, at.y1, nullptr);
        LineTo(dc, at.x2 + (at.x1 == at.x2 ? 0 : 1), at.y2 + (at.y1 == at.y2 ? 0 : 1));
    };
    for (const GridLine& at : m_view.grid().linGraphX)
        line(at);
    for (const GridLine& at : m_view.grid().linGraphY)
        line(at);
    SelectObject(dc, old);
    DeleteObject(grid);
    const GraphCurves& curves = m_view.curves();
    drawSegments(dc, curves.rateE, kExpColour, PS_SOLID);
    drawSegments(dc, curves.rateAveE, kExpColour, PS_DOT);
    drawSegments(dc, curves.rateM, kMoneyColour, PS_SOLID);
    drawSegments(dc, curves.rateAveM, kMoneyColour, PS_DOT);
    RestoreDC(dc, saved);
}

void GraphFrame::paint(HDC dc, const RECT& client)
{
    FillRect(dc, &client, GetSysColorBrush(COLOR_BTNFACE));
    // The view's pixels are at 96 dpi; the device context scales them to the monitor.
    SetMapMode(dc, MM_ANISOTROPIC);
    SetWindowExtEx(dc, USER_DEFAULT_SCREEN_DPI, USER_DEFAULT_SCREEN_DPI, nullptr);
    SetViewportExtEx(dc, static_cast<int>(m_dpi.dpi), static_cast<int>(m_dpi.dpi), nullptr);
    if (!m_view.graphOn())
        return;
    paintPicture(dc);
    HGDIOBJ oldFont = SelectObject(dc, m_font.get());
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, GetSysColor(COLOR_WINDOWTEXT));
    for (const GraphLabelView& label : m_view.labels()) {
        const std::wstring text = wide(label.text);
        RECT at{label.rect.left, label.rect.top, label.rect.left + label.rect.width, label.rect.top + label.rect.height};
        const UINT align = label.align == TextAlign::Right ? DT_RIGHT : DT_LEFT;
        DrawTextW(dc, text.c_str(), static_cast<int>(text.size()), &at, align | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX | DT_NOCLIP);
    }
    SelectObject(dc, oldFont);
}

LRESULT GraphFrame::handle(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_ERASEBKGND: return 1;
    case WM_PAINT: {
        PAINTSTRUCT ps;
        HDC dc = BeginPaint(window, &ps);
        RECT client{};
        GetClientRect(window, &client);
        // Drawn off screen first, so a redraw every reading does not flicker.
        HDC memory = CreateCompatibleDC(dc);
        HBITMAP bitmap = CreateCompatibleBitmap(dc, client.right, client.bottom);
        HGDIOBJ old = SelectObject(memory, bitmap);
        paint(memory, client);
        BitBlt(dc, 0, 0, client.right, client.bottom, memory, 0, 0, SRCCOPY);
        SelectObject(memory, old);
        DeleteObject(bitmap);
        DeleteDC(memory);
        EndPaint(window, &ps);
        return 0;
    }
    case WM_LBUTTONDOWN:
        m_pressed = true;
        return 0;
    case WM_LBUTTONUP:
        if (m_pressed) {
            m_pressed = false;
            const auto x = static_cast<short>(LOWORD(lParam));
            const auto y = static_cast<short>(HIWORD(lParam));
            m_view.clickAt(m_dpi.logical(x), m_dpi.logical(y));
        }
        return 0;
    case WM_DESTROY:
        m_window = nullptr;
        break;
    default: break;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

} // namespace tvx::win32ui
