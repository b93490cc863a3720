#include "PracticeWindow.h"

#include "win32/Win32Text.h"

#include <cstring>

namespace tvx::practice {
namespace {

constexpr wchar_t kClassName[] = L"TallivexPracticeWindow";
constexpr UINT_PTR kTickTimer = 1;

BITMAPINFO sceneInfo()
{
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = kSceneWidth;
    info.bmiHeader.biHeight = kSceneHeight; // bottom-up: some drivers reject top-down DIBs here
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 24;
    info.bmiHeader.biCompression = BI_RGB;
    return info;
}

RECT toRect(const SceneRect& box)
{
    return {box.x, box.y, box.x + box.width, box.y + box.height};
}

// The outer rectangle at 0,0 whose client area is the scene.
RECT windowRect(DWORD style)
{
    RECT rect{0, 0, kSceneWidth, kSceneHeight};
    AdjustWindowRectEx(&rect, style, FALSE, 0);
    OffsetRect(&rect, -rect.left, -rect.top);
    return rect;
}

} // namespace

PracticeWindow::PracticeWindow(const PracticeOptions& options) : m_session(options)
{
    takeScene();
}

bool PracticeWindow::open(HINSTANCE instance, int show)
{
    WNDCLASSEXW wc{};
    wc.cbSize = sizeof wc;
    wc.lpfnWndProc = &PracticeWindow::windowProc;
    wc.hInstance = instance;
    wc.hCursor = LoadCursorW(nullptr, MAKEINTRESOURCEW(32512)); // IDC_ARROW
    wc.lpszClassName = kClassName;
    if (RegisterClassExW(&wc) == 0)
        return false;

    // A full-screen game is a bare 800x600 surface at 0,0; windowed, it has a fixed frame.
    const DWORD style = m_session.options().windowMode ? WS_OVERLAPPED | WS_CAPTION | WS_SYSMENU | WS_MINIMIZEBOX
                                                       : WS_POPUP;
    const RECT rect = windowRect(style);
    const std::wstring title = platform::win32::wide(m_session.options().title);
    m_window = CreateWindowExW(0, kClassName, title.c_str(), style, 0, 0, rect.right, rect.bottom, nullptr, nullptr,
                               instance, this);
    if (m_window == nullptr)
        return false;
    ShowWindow(m_window, show);
    SetForegroundWindow(m_window);
    UpdateWindow(m_window);
    GdiFlush();
    m_session.drawn();
    SetTimer(m_window, kTickTimer, static_cast<UINT>(m_session.options().tickMs), nullptr);
    return true;
}

LRESULT CALLBACK PracticeWindow::windowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_NCCREATE) {
        const auto* create = reinterpret_cast<const CREATESTRUCTW*>(lParam);
        auto* self = static_cast<PracticeWindow*>(create->lpCreateParams);
        self->m_window = window;
        SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(self));
    }
    auto* self = reinterpret_cast<PracticeWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    return self != nullptr ? self->handle(message, wParam, lParam) : DefWindowProcW(window, message, wParam, lParam);
}

LRESULT PracticeWindow::handle(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_TIMER:
        if (wParam == kTickTimer)
            redraw(m_session.tick());
        return 0;
    case WM_KEYDOWN:
        if (const auto key = practiceKey(static_cast<int>(wParam))) {
            redraw(m_session.press(*key));
            return 0;
        }
        break;
    case WM_ERASEBKGND:
        return 1; // the scene covers every pixel
    case WM_PAINT: {
        PAINTSTRUCT ps;
        HDC dc = BeginPaint(m_window, &ps);
        paint(dc);
        EndPaint(m_window, &ps);
        return 0;
    }
    case WM_DESTROY:
        KillTimer(m_window, kTickTimer);
        SetWindowLongPtrW(m_window, GWLP_USERDATA, 0);
        m_window = nullptr;
        PostQuitMessage(0);
        return 0;
    default:
        break;
    }
    return DefWindowProcW(m_window, message, wParam, lParam);
}

void PracticeWindow::redraw(PracticeSession::Redraw redraw)
{
    if (redraw == PracticeSession::Redraw::Nothing)
        return;
    if (redraw == PracticeSession::Redraw::Scene)
        takeScene();
    InvalidateRect(m_window, nullptr, FALSE);
    UpdateWindow(m_window);
    GdiFlush();
    m_session.drawn();
}

void PracticeWindow::takeScene()
{
    const Frame frame = m_session.scene();
    const std::size_t stride = (frame.rowBytes() + 3) & ~std::size_t{3};
    m_rows.assign(stride * static_cast<std::size_t>(frame.height()), 0);
    for (std::int32_t y = 0; y < frame.height(); ++y)
        std::memcpy(m_rows.data() + stride * static_cast<std::size_t>(frame.height() - 1 - y), frame.row(y),
                    frame.rowBytes());
}

void PracticeWindow::paint(HDC dc)
{
    const BITMAPINFO info = sceneInfo();
    SetDIBitsToDevice(dc, 0, 0, kSceneWidth, kSceneHeight, 0, 0, 0, kSceneHeight, m_rows.data(), &info,
                      DIB_RGB_COLORS);

    // DrawText clips to each label's box, and no box touches a capture region, so the
    // regions stay exactly as the scene painted them.
    SetBkMode(dc, TRANSPARENT);
    for (const SceneLabel& label : sceneLabels(m_session.paused())) {
        const platform::win32::Selection selected(dc, font(label.pixelSize));
        SetTextColor(dc, RGB(label.colour.red, label.colour.green, label.colour.blue));
        RECT box = toRect(label.box);
        const std::wstring text = platform::win32::wide(label.text);
        DrawTextW(dc, text.c_str(), static_cast<int>(text.size()), &box,
                  DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | (label.alignRight ? DT_RIGHT : DT_LEFT));
    }
}

HFONT PracticeWindow::font(std::int32_t pixelSize)
{
    Font& font = m_fonts[pixelSize];
    if (!font)
        // The Japanese character set lets the system find a face with the kana and kanji
        // when this one is missing (as under Wine).
        font.reset(CreateFontW(-pixelSize, 0, 0, 0, FW_BOLD, FALSE, FALSE, FALSE, SHIFTJIS_CHARSET, OUT_DEFAULT_PRECIS,
                               CLIP_DEFAULT_PRECIS, ANTIALIASED_QUALITY, DEFAULT_PITCH | FF_SWISS, L"MS UI Gothic"));
    return font.get();
}

} // namespace tvx::practice
