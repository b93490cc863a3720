#include "ScreenPicture.h"

#include "DialogSupport.h"
#include "GlyphControl.h"

#include "view/RegionPicker.h"

#include <algorithm>
#include <memory>

namespace tvx::win32ui {
namespace {

constexpr wchar_t kScreenClass[] = L"TallivexScreenPicture";

struct Picture {
    explicit Picture(RegionPicker& p) : picker(p) {}
    ~Picture() { reset(); }
    void reset()
    {
        if (memory)
            DeleteDC(memory);
        if (bitmap)
            DeleteObject(bitmap);
        memory = nullptr;
        bitmap = nullptr;
    }

    RegionPicker& picker;
    HDC memory = nullptr; // the screen at 1:1, selected into a memory DC for stretching
    HBITMAP bitmap = nullptr;
};

Picture* pictureOf(HWND window)
{
    return reinterpret_cast<Picture*>(GetWindowLongPtrW(window, GWLP_USERDATA));
}

COLORREF colourRef(std::uint32_t rgb)
{
    return RGB(rgb >> 16 & 0xFF, rgb >> 8 & 0xFF, rgb & 0xFF);
}

POINT scrolled(HWND window)
{
    return {GetScrollPos(window, SB_HORZ), GetScrollPos(window, SB_VERT)};
}

// The screen as a 32-bit DIB section, top row first.
void makeBitmap(Picture& picture)
{
    picture.reset();
    const RegionPicker& picker = picture.picker;
    if (!picker.screen() || picker.screenWidth() <= 0 || picker.screenHeight() <= 0)
        return;
    const std::vector<std::uint32_t> pixels =
        regionPixels(*picker.screen(), {0, 0, picker.screenWidth(), picker.screenHeight()});
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = picker.screenWidth();
    info.bmiHeader.biHeight = -picker.screenHeight();
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;
    void* bits = nullptr;
    picture.bitmap = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    if (!picture.bitmap || !bits)
        return picture.reset();
    std::copy(pixels.begin(), pixels.end(), static_cast<std::uint32_t*>(bits));
    picture.memory = CreateCompatibleDC(nullptr);
    SelectObject(picture.memory, picture.bitmap);
}

void fitScrollBars(HWND window, const RegionPicker& picker)
{
    RECT client;
    GetClientRect(window, &client);
    const int sizes[] = {picker.screenWidth() * picker.zoom(), picker.screenHeight() * picker.zoom()};
    const int pages[] = {static_cast<int>(client.right), static_cast<int>(client.bottom)};
    for (const int bar : {SB_HORZ, SB_VERT}) {
        SCROLLINFO info{};
        info.cbSize = sizeof info;
        info.fMask = SIF_RANGE | SIF_PAGE | SIF_DISABLENOSCROLL;
        info.nMax = std::max(0, sizes[bar] - 1);
        info.nPage = static_cast<UINT>(std::max(0, pages[bar]));
        SetScrollInfo(window, bar, &info, TRUE);
    }
}

void paint(HWND window, HDC dc, const Picture& picture)
{
    RECT client;
    GetClientRect(window, &client);
    SetBkColor(dc, RGB(60, 60, 60));
    ExtTextOutW(dc, 0, 0, ETO_OPAQUE, &client, nullptr, 0, nullptr);
    const RegionPicker& picker = picture.picker;
    if (!picture.memory) {
        SetTextColor(dc, RGB(255, 255, 255));
        SelectObject(dc, dialogFont());
        DrawTextW(dc, wide(kNoScreenHint).c_str(), -1, &client, DT_CENTER | DT_VCENTER | DT_SINGLELINE);
        return;
    }
    const int zoom = picker.zoom();
    const POINT offset = scrolled(window);
    // Only the part in view is stretched, so a large zoom stays quick.
    const int left = offset.x / zoom;
    const int top = offset.y / zoom;
    const int columns = std::min<int>(client.right / zoom + 2, picker.screenWidth() - left);
    const int rows = std::min<int>(client.bottom / zoom + 2, picker.screenHeight() - top);
    SetStretchBltMode(dc, COLORONCOLOR);
    StretchBlt(dc, left * zoom - offset.x, top * zoom - offset.y, columns * zoom, rows * zoom, picture.memory, left,
               top, columns, rows, SRCCOPY);
    SelectObject(dc, GetStockObject(NULL_BRUSH));
    for (int r = 0; r < kRegionCount; ++r) {
        const CaptureRegionRect box = picker.pictureRect(r);
        const bool selected = r == picker.selectedRegion();
        const HPEN pen = CreatePen(selected ? PS_SOLID : PS_DOT, selected ? 2 : 1, colourRef(regionColour(r)));
        const HGDIOBJ old = SelectObject(dc, pen);
        const int x = box.StartX - offset.x;
        const int y = box.StartY - offset.y;
        Rectangle(dc, x, y, x + box.SizeX, y + box.SizeY);
        SelectObject(dc, old);
        DeleteObject(pen);
    }
}

void moved(HWND window, bool changed)
{
    if (!changed)
        return;
    InvalidateRect(window, nullptr, FALSE);
    SendMessageW(GetParent(window), WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(window), kRegionMoved),
                 reinterpret_cast<LPARAM>(window));
}

bool nudged(RegionPicker& picker, WPARAM key)
{
    switch (key) {
    case VK_LEFT: return picker.nudge(-1, 0);
    case VK_RIGHT: return picker.nudge(1, 0);
    case VK_UP: return picker.nudge(0, -1);
    case VK_DOWN: return picker.nudge(0, 1);
    default: return false;
    }
}

LRESULT CALLBACK screenProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    Picture* picture = pictureOf(window);
    if (!picture)
        return DefWindowProcW(window, message, wParam, lParam);
    RegionPicker& picker = picture->picker;
    const POINT offset = scrolled(window);
    const int x = static_cast<short>(LOWORD(lParam)) + offset.x;
    const int y = static_cast<short>(HIWORD(lParam)) + offset.y;
    switch (message) {
    case WM_PAINT: {
        PAINTSTRUCT ps;
        const HDC dc = BeginPaint(window, &ps);
        paint(window, dc, *picture);
        EndPaint(window, &ps);
        return 0;
    }
    case WM_ERASEBKGND: return 1;
    case WM_SIZE: fitScrollBars(window, picker); return 0;
    case WM_HSCROLL: scrollWith(window, SB_HORZ, wParam); return 0;
    case WM_VSCROLL: scrollWith(window, SB_VERT, wParam); return 0;
    case WM_LBUTTONDOWN:
        SetFocus(window);
        SetCapture(window);
        moved(window, picker.press(x, y));
        return 0;
    case WM_MOUSEMOVE:
        if (picker.dragging())
            moved(window, picker.drag(x, y));
        return 0;
    case WM_LBUTTONUP:
        if (picker.dragging())
            moved(window, picker.release(x, y));
        ReleaseCapture();
        return 0;
    case WM_GETDLGCODE: return DLGC_WANTARROWS;
    case WM_KEYDOWN:
        moved(window, nudged(picker, wParam));
        return 0;
    case WM_SETCURSOR:
        if (LOWORD(lParam) == HTCLIENT) {
            SetCursor(LoadCursorW(nullptr, IDC_CROSS));
            return TRUE;
        }
        break;
    case WM_NCDESTROY:
        delete picture;
        SetWindowLongPtrW(window, GWLP_USERDATA, 0);
        break;
    default: break;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

} // namespace

HWND createScreenPicture(HWND parent, int id, RegionPicker& picker, int x, int y, int width, int height)
{
    registerWindowClass(kScreenClass, &screenProc, nullptr);
    const HWND control =
        addControl(parent, kScreenClass, "", WS_HSCROLL | WS_VSCROLL | WS_TABSTOP | WS_BORDER, id, x, y, width, height);
    SetWindowLongPtrW(control, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(new Picture(picker)));
    refreshScreenPicture(control);
    return control;
}

void refreshScreenPicture(HWND control)
{
    Picture* picture = pictureOf(control);
    if (!picture)
        return;
    makeBitmap(*picture);
    fitScrollBars(control, picture->picker);
    RECT client;
    GetClientRect(control, &client);
    const ScreenPoint centre = picture->picker.selectedCentre();
    SetScrollPos(control, SB_HORZ, centre.x - client.right / 2, TRUE);
    SetScrollPos(control, SB_VERT, centre.y - client.bottom / 2, TRUE);
    InvalidateRect(control, nullptr, FALSE);
}

} // namespace tvx::win32ui
