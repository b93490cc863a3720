#include "MouseButtons.h"

#include "XcbReply.h"

#include <xcb/xcb.h>
#include <xcb/xinput.h>

#include <cstdlib>
#include <memory>

namespace tvx::platform {

namespace {

struct Disconnect {
    void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
};

// XInput2 raw button events on the root window: they arrive whatever window has the
// focus and whatever grabs the game holds. Buttons are the physical ones (1 left, 3 right).
class X11MouseButtons final : public MouseButtonSource {
public:
    StartResult start(Handler onBatch) override
    {
        stop();
        int screenNumber = 0;
        std::unique_ptr<xcb_connection_t, Disconnect> connection(xcb_connect(nullptr, &screenNumber));
        if (xcb_connection_has_error(connection.get()))
            return StartResult::NoInputSystem;
        const xcb_query_extension_reply_t* extension = xcb_get_extension_data(connection.get(), &xcb_input_id);
        if (extension == nullptr || !extension->present)
            return StartResult::NoInputSystem;
        // Raw events reach every client that selects them on the root from version 2.1 on.
        auto version = reply(xcb_input_xi_query_version_reply(
            connection.get(), xcb_input_xi_query_version(connection.get(), 2, 2), nullptr));
        if (!version || version->major_version < 2 || (version->major_version == 2 && version->minor_version < 1))
            return StartResult::NoInputSystem;
        if (!selectRawButtons(connection.get(), screenNumber))
            return StartResult::NoMouseDevice;
        m_opcode = extension->major_opcode;
        m_connection = std::move(connection);
        m_handler = std::move(onBatch);
        return StartResult::Started;
    }

    void stop() override
    {
        m_connection.reset();
        m_handler = nullptr;
    }

    int pollDescriptor() const override { return m_connection ? xcb_get_file_descriptor(m_connection.get()) : -1; }

    void poll() override
    {
        if (!m_connection)
            return;
        std::vector<MouseButtonEvent> batch;
        while (xcb_generic_event_t* event = xcb_poll_for_event(m_connection.get())) {
            const Reply<xcb_generic_event_t> owned(event, &std::free);
            if ((event->response_type & 0x7f) != XCB_GE_GENERIC)
                continue;
            const auto* generic = reinterpret_cast<const xcb_ge_generic_event_t*>(event);
            if (generic->extension != m_opcode)
                continue;
            const bool pressed = generic->event_type == XCB_INPUT_RAW_BUTTON_PRESS;
            if (!pressed && generic->event_type != XCB_INPUT_RAW_BUTTON_RELEASE)
                continue;
            const auto* raw = reinterpret_cast<const xcb_input_raw_button_press_event_t*>(event);
            if (raw->detail == 1)
                batch.push_back({MouseButton::Left, pressed});
            else if (raw->detail == 3)
                batch.push_back({MouseButton::Right, pressed});
        }
        if (!batch.empty() && m_handler)
            m_handler(batch);
    }

private:
    static bool selectRawButtons(xcb_connection_t* connection, int screenNumber)
    {
        xcb_screen_iterator_t it = xcb_setup_roots_iterator(xcb_get_setup(connection));
        for (int i = 0; i < screenNumber && it.rem > 0; ++i)
            xcb_screen_next(&it);
        struct {
            xcb_input_event_mask_t head;
            std::uint32_t mask;
        } selection{{XCB_INPUT_DEVICE_ALL_MASTER, 1},
                    XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS | XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_RELEASE};
        const xcb_void_cookie_t cookie = xcb_input_xi_select_events_checked(connection, it.data->root, 1, &selection.head);
        const Reply<xcb_generic_error_t> error(xcb_request_check(connection, cookie), &std::free);
        return error == nullptr;
    }

    std::unique_ptr<xcb_connection_t, Disconnect> m_connection;
    std::uint8_t m_opcode = 0;
    Handler m_handler;
};

} // namespace

std::unique_ptr<MouseButtonSource> makeMouseButtonSource()
{
    return std::make_unique<X11MouseButtons>();
}

} // namespace tvx::platform
