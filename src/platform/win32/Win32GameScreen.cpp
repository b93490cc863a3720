#include "GameScreen.h"

#include <windows.h>

#include <cstring>
#include <string>

namespace tvx::platform {

namespace {

std::wstring wide(std::string_view text)
{
    const int size = MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), nullptr, 0);
    std::wstring result(static_cast<std::size_t>(size), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), result.data(), size);
    return result;
}

// FindWindowW and GetForegroundWindow, and a direct copy of the screen through GDI.
class Win32GameScreen final : public GameScreen {
public:
    GameWindowState state(std::string_view title) override
    {
        HWND window = FindWindowW(nullptr, wide(title).c_str());
        if (window == nullptr)
            return GameWindowState::Missing;
        return GetForegroundWindow() == window ? GameWindowState::Front : GameWindowState::Background;
    }

    std::optional<CaptureBitmap> grab(std::span<const CaptureRegionRect>) override
    {
        const int width = GetSystemMetrics(SM_CXSCREEN);
        const int height = GetSystemMetrics(SM_CYSCREEN);
        HDC screen = GetDC(nullptr);
        HDC memory = CreateCompatibleDC(screen);
        BITMAPINFO info{};
        info.bmiHeader.biSize = sizeof info.bmiHeader;
        info.bmiHeader.biWidth = width;
        info.bmiHeader.biHeight = -height; // top-down
        info.bmiHeader.biPlanes = 1;
        info.bmiHeader.biBitCount = 24;
        info.bmiHeader.biCompression = BI_RGB;
        void* bits = nullptr;
        HBITMAP bitmap = CreateDIBSection(screen, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
        std::optional<CaptureBitmap> result;
        if (bitmap != nullptr) {
            HGDIOBJ old = SelectObject(memory, bitmap);
            if (BitBlt(memory, 0, 0, width, height, screen, 0, 0, SRCCOPY)) {
                Frame frame(width, height);
                const std::size_t stride = (static_cast<std::size_t>(width) * 3 + 3) & ~std::size_t{3};
                for (int y = 0; y < height; ++y)
                    std::memcpy(frame.row(y), static_cast<const std::uint8_t*>(bits) + stride * y, frame.rowBytes());
                result = toCaptureBitmap(frame);
            }
            SelectObject(memory, old);
            DeleteObject(bitmap);
        }
        DeleteDC(memory);
        ReleaseDC(nullptr, screen);
        return result;
    }
};

} // namespace

std::unique_ptr<GameScreen> makeGameScreen()
{
    return std::make_unique<Win32GameScreen>();
}

} // namespace tvx::platform
