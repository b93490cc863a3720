#include "RawMouseButtons.h"

#include "MouseButtons.h"
#include "Win32Handles.h"

#include <windows.h>

#include <array>
#include <cstring>

namespace tvx::platform {

namespace win32 {

std::vector<MouseButtonEvent> mouseButtonEvents(std::uint16_t buttonFlags)
{
    struct Change {
        std::uint16_t flag;
        MouseButtonEvent event;
    };
    static constexpr std::array<Change, 4> kChanges{{
        {RI_MOUSE_LEFT_BUTTON_DOWN, {MouseButton::Left, true}},
        {RI_MOUSE_LEFT_BUTTON_UP, {MouseButton::Left, false}},
        {RI_MOUSE_RIGHT_BUTTON_DOWN, {MouseButton::Right, true}},
        {RI_MOUSE_RIGHT_BUTTON_UP, {MouseButton::Right, false}},
    }};
    std::vector<MouseButtonEvent> events;
    for (const Change& change : kChanges)
        if ((buttonFlags & change.flag) != 0)
            events.push_back(change.event);
    return events;
}

} // namespace win32

namespace {

constexpr wchar_t kWindowClass[] = L"TallivexRawMouse";

bool hasMouse()
{
    UINT count = 0;
    if (GetRawInputDeviceList(nullptr, &count, sizeof(RAWINPUTDEVICELIST)) != 0 || count == 0)
        return false;
    std::vector<RAWINPUTDEVICELIST> devices(count);
    const UINT listed = GetRawInputDeviceList(devices.data(), &count, sizeof(RAWINPUTDEVICELIST));
    if (listed == static_cast<UINT>(-1))
        return false;
    for (UINT i = 0; i < listed; ++i)
        if (devices[i].dwType == RIM_TYPEMOUSE)
            return true;
    return false;
}

// Raw Input from every mouse, delivered to a message-only window of this thread even
// while another program has the focus (RIDEV_INPUTSINK).
class RawInputMouseSource final : public MouseButtonSource {
public:
    ~RawInputMouseSource() override { stop(); }

    StartResult start(Handler onBatch) override
    {
        stop();
        if (!registerClass())
            return StartResult::NoInputSystem;
        m_window.reset(CreateWindowExW(0, kWindowClass, L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                                       GetModuleHandleW(nullptr), nullptr));
        if (!m_window)
            return StartResult::NoInputSystem;
        SetWindowLongPtrW(m_window.get(), GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
        if (!hasMouse()) {
            m_window.reset();
            return StartResult::NoMouseDevice;
        }
        const RAWINPUTDEVICE mouse{1, 2, RIDEV_INPUTSINK, m_window.get()}; // generic desktop, mouse
        if (!RegisterRawInputDevices(&mouse, 1, sizeof mouse)) {
            m_window.reset();
            return StartResult::NoInputSystem;
        }
        m_handler = std::move(onBatch);
        return StartResult::Started;
    }

    void stop() override
    {
        if (!m_window)
            return;
        const RAWINPUTDEVICE remove{1, 2, RIDEV_REMOVE, nullptr};
        RegisterRawInputDevices(&remove, 1, sizeof remove);
        SetWindowLongPtrW(m_window.get(), GWLP_USERDATA, 0);
        m_window.reset();
        m_handler = nullptr;
    }

private:
    static bool registerClass()
    {
        WNDCLASSEXW windowClass{};
        windowClass.cbSize = sizeof windowClass;
        windowClass.lpfnWndProc = &RawInputMouseSource::windowProc;
        windowClass.hInstance = GetModuleHandleW(nullptr);
        windowClass.lpszClassName = kWindowClass;
        return RegisterClassExW(&windowClass) != 0 || GetLastError() == ERROR_CLASS_ALREADY_EXISTS;
    }

    static LRESULT CALLBACK windowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
    {
        if (message == WM_INPUT) {
            auto* self = reinterpret_cast<RawInputMouseSource*>(GetWindowLongPtrW(window, GWLP_USERDATA));
            if (self != nullptr)
                self->onInput(reinterpret_cast<HRAWINPUT>(lParam));
        }
        // WM_INPUT must reach DefWindowProc so the system frees the input data.
        return DefWindowProcW(window, message, wParam, lParam);
    }

    void onInput(HRAWINPUT input)
    {
        RAWINPUT data{};
        UINT size = sizeof data;
        if (GetRawInputData(input, RID_INPUT, &data, &size, sizeof(RAWINPUTHEADER)) == static_cast<UINT>(-1))
            return;
        if (data.header.dwType != RIM_TYPEMOUSE || !m_handler)
            return;
        const std::vector<MouseButtonEvent> events = win32::mouseButtonEvents(data.data.mouse.usButtonFlags);
        if (events.empty())
            return;
        const Handler handler = m_handler; // the handler may stop this source
        handler(events);
    }

    win32::Window m_window;
    Handler m_handler;
};

} // namespace

std::unique_ptr<MouseButtonSource> makeMouseButtonSource()
{
    return std::make_unique<RawInputMouseSource>();
}

} // namespace tvx::platform
