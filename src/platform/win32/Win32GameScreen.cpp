#include "GameScreen.h"

#include "Win32Handles.h"
#include "Win32Text.h"

#include <windows.h>

#include <algorithm>
#include <cstring>
#include <vector>

namespace tvx::platform {

namespace {

using win32::Bitmap;
using win32::MemoryDC;
using win32::OpenedClipboard;
using win32::Selection;
using win32::WindowDC;

BITMAPINFO topDown24(int width, int height)
{
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 24;
    info.bmiHeader.biCompression = BI_RGB;
    return info;
}

std::size_t stride24(int width)
{
    return (static_cast<std::size_t>(width) * 3 + 3) & ~std::size_t{3};
}

// Copies the screen rectangle (x, y, width, height), in virtual-screen coordinates
// relative to `origin`, into the same place of `frame`.
bool copyScreenRect(HDC screen, POINT origin, int x, int y, int width, int height, Frame& frame)
{
    MemoryDC memory(CreateCompatibleDC(screen));
    if (!memory)
        return false;
    BITMAPINFO info = topDown24(width, height);
    void* bits = nullptr;
    Bitmap section(CreateDIBSection(screen, &info, DIB_RGB_COLORS, &bits, nullptr, 0));
    if (!section || bits == nullptr)
        return false;
    {
        Selection selected(memory.get(), section.get());
        if (!BitBlt(memory.get(), 0, 0, width, height, screen, origin.x + x, origin.y + y, SRCCOPY))
            return false;
    }
    GdiFlush();
    const std::size_t stride = stride24(width);
    const std::size_t rowBytes = static_cast<std::size_t>(width) * 3;
    for (int row = 0; row < height; ++row)
        std::memcpy(frame.row(y + row) + static_cast<std::size_t>(x) * 3,
                    static_cast<const std::uint8_t*>(bits) + stride * static_cast<std::size_t>(row), rowBytes);
    return true;
}

// A device-dependent bitmap (the clipboard's) at 24 bits, through its palette if it has
// one. The bitmap must not be selected into any DC.
std::optional<Frame> frameOfBitmap(HBITMAP bitmap, HPALETTE palette)
{
    BITMAP header{};
    if (GetObjectW(bitmap, sizeof header, &header) == 0 || header.bmWidth <= 0 || header.bmHeight == 0)
        return std::nullopt;
    const int width = header.bmWidth;
    const int height = header.bmHeight < 0 ? -header.bmHeight : header.bmHeight;
    WindowDC screen;
    if (!screen)
        return std::nullopt;
    BITMAPINFO info = topDown24(width, height);
    std::vector<std::uint8_t> bits(stride24(width) * static_cast<std::size_t>(height));
    int rows = 0;
    {
        const win32::PaletteSelection selected(screen.get(), palette);
        rows = GetDIBits(screen.get(), bitmap, 0, static_cast<UINT>(height), bits.data(), &info, DIB_RGB_COLORS);
    }
    if (rows != height)
        return std::nullopt;
    Frame frame(width, height);
    for (int y = 0; y < height; ++y)
        std::memcpy(frame.row(y), bits.data() + stride24(width) * static_cast<std::size_t>(y), frame.rowBytes());
    return frame;
}

// FindWindowW and GetForegroundWindow, and the screen by a direct GDI copy or by the
// Print Screen key and the clipboard.
class Win32GameScreen final : public GameScreen {
public:
    GameWindowState state(std::string_view title) override
    {
        // FindWindowW would match any untitled window; an empty name names no game.
        if (title.empty())
            return GameWindowState::Missing;
        HWND window = FindWindowW(nullptr, win32::wide(title).c_str());
        if (window == nullptr)
            return GameWindowState::Missing;
        return GetForegroundWindow() == window ? GameWindowState::Front : GameWindowState::Background;
    }

    // The virtual screen, as Print Screen copies it, so both routes share coordinates.
    std::optional<CaptureBitmap> grab(std::span<const CaptureRegionRect> wanted) override
    {
        const POINT origin{GetSystemMetrics(SM_XVIRTUALSCREEN), GetSystemMetrics(SM_YVIRTUALSCREEN)};
        const int width = GetSystemMetrics(SM_CXVIRTUALSCREEN);
        const int height = GetSystemMetrics(SM_CYVIRTUALSCREEN);
        if (width <= 0 || height <= 0)
            return std::nullopt;
        WindowDC screen;
        if (!screen)
            return std::nullopt;
        Frame frame(width, height);
        if (wanted.empty()) {
            if (!copyScreenRect(screen.get(), origin, 0, 0, width, height, frame))
                return std::nullopt;
            return toCaptureBitmap(frame);
        }
        // Only the regions: a few small blits instead of the whole screen.
        for (const CaptureRegionRect& rect : wanted) {
            const int left = std::max(rect.StartX, 0);
            const int top = std::max(rect.StartY, 0);
            const int right = std::min(rect.StartX + rect.SizeX, width);
            const int bottom = std::min(rect.StartY + rect.SizeY, height);
            if (right <= left || bottom <= top)
                continue;
            if (!copyScreenRect(screen.get(), origin, left, top, right - left, bottom - top, frame))
                return std::nullopt;
        }
        return toCaptureBitmap(frame);
    }

    bool pressPrintScreen() override
    {
        keybd_event(VK_SNAPSHOT, 0, KEYEVENTF_EXTENDEDKEY, 0);
        keybd_event(VK_SNAPSHOT, 0, KEYEVENTF_EXTENDEDKEY | KEYEVENTF_KEYUP, 0);
        return true;
    }

    std::optional<CaptureBitmap> clipboardPicture() override
    {
        if (!IsClipboardFormatAvailable(CF_BITMAP))
            return std::nullopt;
        OpenedClipboard clipboard;
        if (!clipboard.isOpen())
            return std::nullopt;
        // The clipboard keeps both handles; convert before closing it.
        HBITMAP bitmap = static_cast<HBITMAP>(GetClipboardData(CF_BITMAP));
        if (bitmap == nullptr)
            return std::nullopt;
        HPALETTE palette =
            IsClipboardFormatAvailable(CF_PALETTE) ? static_cast<HPALETTE>(GetClipboardData(CF_PALETTE)) : nullptr;
        std::optional<Frame> frame = frameOfBitmap(bitmap, palette);
        if (!frame)
            return std::nullopt;
        return toCaptureBitmap(*frame);
    }
};

} // namespace

std::unique_ptr<GameScreen> makeGameScreen()
{
    return std::make_unique<Win32GameScreen>();
}

} // namespace tvx::platform
