#include "GlyphControl.h"

#include "DialogSupport.h"

#include <algorithm>
#include <memory>

namespace tvx::win32ui {
namespace {

constexpr wchar_t kGlyphClass[] = L"TallivexGlyph";
constexpr wchar_t kImageClass[] = L"TallivexPixelImage";

GlyphCanvas* canvasOf(HWND window)
{
    return reinterpret_cast<GlyphCanvas*>(GetWindowLongPtrW(window, GWLP_USERDATA));
}

int scrollOffset(HWND window)
{
    return (GetWindowLongPtrW(window, GWL_STYLE) & WS_HSCROLL) ? GetScrollPos(window, SB_HORZ) : 0;
}

void notify(HWND window, WORD code)
{
    SendMessageW(GetParent(window), WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(window), code),
                 reinterpret_cast<LPARAM>(window));
}

void fill(HDC dc, int x, int y, int width, int height, COLORREF colour)
{
    const RECT area{x, y, x + width, y + height};
    SetBkColor(dc, colour);
    ExtTextOutW(dc, 0, 0, ETO_OPAQUE, &area, nullptr, 0, nullptr);
}

void paintCanvas(HWND window, HDC dc, const GlyphCanvas& canvas)
{
    RECT client;
    GetClientRect(window, &client);
    fill(dc, 0, 0, client.right, client.bottom, GetSysColor(COLOR_BTNFACE));
    const int offset = scrollOffset(window);
    const int pixel = canvas.pixelSize();
    const int columns = static_cast<int>(canvas.columns().size());
    const int first = canvas.selectionStart();
    const int last = first + canvas.selectionLength();
    for (int x = 0; x < columns; ++x) {
        const bool selected = x >= first && x < last;
        for (int y = 0; y < canvas.rows(); ++y) {
            const COLORREF colour = canvas.ink(x, y) ? (selected ? RGB(0, 40, 140) : RGB(0, 0, 0))
                                                     : (selected ? RGB(170, 200, 255) : RGB(255, 255, 255));
            fill(dc, canvas.pixelLeft(x) - offset, canvas.pixelTop(y), pixel, pixel, colour);
        }
    }
    if (pixel >= 6) { // a grid where a pixel is big enough to aim at
        const HPEN grid = CreatePen(PS_SOLID, 1, RGB(200, 200, 200));
        const HGDIOBJ old = SelectObject(dc, grid);
        const int bottom = canvas.pixelTop(canvas.rows());
        const int right = canvas.pixelLeft(columns) - offset;
        for (int x = 0; x <= columns; ++x) {
            MoveToEx(dc, canvas.pixelLeft(x) - offset, canvas.pixelTop(0), nullptr);
            LineTo(dc, canvas.pixelLeft(x) - offset, bottom);
        }
        for (int y = 0; y <= canvas.rows(); ++y) {
            MoveToEx(dc, canvas.pixelLeft(0) - offset, canvas.pixelTop(y), nullptr);
            LineTo(dc, right, canvas.pixelTop(y));
        }
        SelectObject(dc, old);
        DeleteObject(grid);
    }
    if (canvas.checked()) {
        const HBRUSH frame = CreateSolidBrush(RGB(0, 80, 220));
        RECT edge = client;
        FrameRect(dc, &edge, frame);
        InflateRect(&edge, -1, -1);
        FrameRect(dc, &edge, frame);
        DeleteObject(frame);
    }
}

void forward(HWND window, GlyphCanvas::Change change)
{
    switch (change) {
    case GlyphCanvas::Change::Columns:
        InvalidateRect(window, nullptr, FALSE);
        notify(window, kGlyphColumnsEdited);
        break;
    case GlyphCanvas::Change::Selection:
        InvalidateRect(window, nullptr, FALSE);
        notify(window, kGlyphSelectionChanged);
        break;
    case GlyphCanvas::Change::Clicked:
        notify(window, BN_CLICKED);
        break;
    case GlyphCanvas::Change::None:
        break;
    }
}

LRESULT CALLBACK glyphProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    GlyphCanvas* canvas = canvasOf(window);
    if (!canvas)
        return DefWindowProcW(window, message, wParam, lParam);
    const int x = static_cast<short>(LOWORD(lParam)) + scrollOffset(window);
    const int y = static_cast<short>(HIWORD(lParam));
    switch (message) {
    case WM_PAINT: {
        PAINTSTRUCT paint;
        const HDC dc = BeginPaint(window, &paint);
        paintCanvas(window, dc, *canvas);
        EndPaint(window, &paint);
        return 0;
    }
    case WM_ERASEBKGND:
        return 1;
    case WM_LBUTTONDOWN:
        SetCapture(window);
        forward(window, canvas->press(x, y));
        return 0;
    case WM_MOUSEMOVE:
        if (wParam & MK_LBUTTON)
            forward(window, canvas->move(x, y));
        return 0;
    case WM_LBUTTONUP:
        canvas->release();
        ReleaseCapture();
        return 0;
    case WM_HSCROLL:
        scrollWith(window, SB_HORZ, wParam);
        return 0;
    case WM_SETCURSOR:
        if (LOWORD(lParam) == HTCLIENT && canvas->mode() != GlyphCanvas::Mode::Show) {
            SetCursor(LoadCursorW(nullptr, canvas->mode() == GlyphCanvas::Mode::Edit ? IDC_CROSS : IDC_HAND));
            return TRUE;
        }
        return DefWindowProcW(window, message, wParam, lParam);
    default:
        return DefWindowProcW(window, message, wParam, lParam);
    }
}

struct PixelPicture {
    int width = 0;
    int height = 0;
    int scale = 1;
    std::vector<std::uint32_t> pixels;
};

LRESULT CALLBACK imageProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    auto* picture = reinterpret_cast<PixelPicture*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    switch (message) {
    case WM_PAINT: {
        PAINTSTRUCT paint;
        const HDC dc = BeginPaint(window, &paint);
        RECT client;
        GetClientRect(window, &client);
        fill(dc, 0, 0, client.right, client.bottom, GetSysColor(COLOR_BTNFACE));
        if (picture && !picture->pixels.empty()) {
            BITMAPINFO info{};
            info.bmiHeader.biSize = sizeof info.bmiHeader;
            info.bmiHeader.biWidth = picture->width;
            info.bmiHeader.biHeight = -picture->height;
            info.bmiHeader.biPlanes = 1;
            info.bmiHeader.biBitCount = 32;
            info.bmiHeader.biCompression = BI_RGB;
            StretchDIBits(dc, 2, 2, picture->width * picture->scale, picture->height * picture->scale, 0, 0,
                          picture->width, picture->height, picture->pixels.data(), &info, DIB_RGB_COLORS, SRCCOPY);
        }
        EndPaint(window, &paint);
        return 0;
    }
    case WM_ERASEBKGND:
        return 1;
    case WM_NCDESTROY:
        delete picture;
        SetWindowLongPtrW(window, GWLP_USERDATA, 0);
        break;
    default:
        break;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

void registerClass(const wchar_t* name, WNDPROC procedure)
{
    WNDCLASSEXW wc{};
    wc.cbSize = sizeof wc;
    wc.lpfnWndProc = procedure;
    wc.hInstance = GetModuleHandleW(nullptr);
    wc.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    wc.lpszClassName = name;
    RegisterClassExW(&wc); // a second registration fails harmlessly
}

} // namespace

void scrollWith(HWND window, int bar, WPARAM wParam)
{
    SCROLLINFO info{};
    info.cbSize = sizeof info;
    info.fMask = SIF_ALL;
    GetScrollInfo(window, bar, &info);
    int position = info.nPos;
    switch (LOWORD(wParam)) {
    case SB_LINELEFT: position -= 20; break;
    case SB_LINERIGHT: position += 20; break;
    case SB_PAGELEFT: position -= static_cast<int>(info.nPage); break;
    case SB_PAGERIGHT: position += static_cast<int>(info.nPage); break;
    case SB_THUMBTRACK:
    case SB_THUMBPOSITION: position = info.nTrackPos; break;
    default: break;
    }
    SetScrollPos(window, bar, position, TRUE);
    InvalidateRect(window, nullptr, FALSE);
}

HWND createGlyphControl(HWND parent, int id, GlyphCanvas& canvas, int x, int y, int width, int height)
{
    static const bool registered = (registerClass(kGlyphClass, &glyphProc), true);
    (void)registered;
    const HWND control = addControl(parent, kGlyphClass, "", 0, id, x, y, width, height);
    SetWindowLongPtrW(control, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(&canvas));
    updateGlyphControl(control);
    return control;
}

void updateGlyphControl(HWND control)
{
    const GlyphCanvas* canvas = canvasOf(control);
    if (!canvas)
        return;
    RECT client;
    GetClientRect(control, &client);
    const bool scrolls = (GetWindowLongPtrW(control, GWL_STYLE) & WS_HSCROLL) != 0;
    if (scrolls || canvas->width() > client.right) {
        SCROLLINFO info{};
        info.cbSize = sizeof info;
        info.fMask = SIF_RANGE | SIF_PAGE | SIF_DISABLENOSCROLL;
        info.nMin = 0;
        info.nMax = canvas->width();
        info.nPage = static_cast<UINT>(client.right);
        ShowScrollBar(control, SB_HORZ, TRUE);
        SetScrollInfo(control, SB_HORZ, &info, TRUE);
    }
    InvalidateRect(control, nullptr, FALSE);
}

HWND createPixelImage(HWND parent, int id, int x, int y, int width, int height)
{
    static const bool registered = (registerClass(kImageClass, &imageProc), true);
    (void)registered;
    const HWND control = addControl(parent, kImageClass, "", 0, id, x, y, width, height);
    SetWindowLongPtrW(control, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(new PixelPicture));
    return control;
}

void setPixelImage(HWND control, int width, int height, std::vector<std::uint32_t> pixels, int scale)
{
    auto* picture = reinterpret_cast<PixelPicture*>(GetWindowLongPtrW(control, GWLP_USERDATA));
    if (!picture)
        return;
    picture->width = width;
    picture->height = height;
    picture->scale = std::max(1, scale);
    picture->pixels = std::move(pixels);
    InvalidateRect(control, nullptr, FALSE);
}

} // namespace tvx::win32ui
