#include "GameScreen.h"

#include "XcbReply.h"

#include <xcb/xcb.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

namespace tvx::platform {

namespace {

// xcb on one connection: window lookup by title, the active window, screen images.
class X11GameScreen final : public GameScreen {
public:
    X11GameScreen(xcb_connection_t* connection, xcb_screen_t* screen)
        : m_connection(connection), m_screen(screen), m_netWmName(atom("_NET_WM_NAME")),
          m_utf8(atom("UTF8_STRING")), m_activeWindow(atom("_NET_ACTIVE_WINDOW"))
    {
    }
    ~X11GameScreen() override { xcb_disconnect(m_connection); }

    GameWindowState state(std::string_view title) override
    {
        const auto window = findWindow(m_screen->root, title, 0);
        if (!window)
            return GameWindowState::Missing;
        return inFront(*window) ? GameWindowState::Front : GameWindowState::Background;
    }

    // The whole screen, or only the wanted rectangles on a blank image, which moves a few
    // kilobytes instead of megabytes.
    std::optional<CaptureBitmap> grab(std::span<const CaptureRegionRect> wanted) override
    {
        const std::int32_t width = m_screen->width_in_pixels;
        const std::int32_t height = m_screen->height_in_pixels;
        if (wanted.empty()) {
            Frame frame(width, height);
            return copy(frame, {0, 0, width, height}) ? std::optional(toCaptureBitmap(frame)) : std::nullopt;
        }
        // Screen coordinates still, but the image ends where the furthest rectangle does.
        std::int32_t right = 1;
        std::int32_t bottom = 1;
        for (const CaptureRegionRect& rect : wanted) {
            right = std::max(right, std::clamp(rect.StartX + rect.SizeX, 0, width));
            bottom = std::max(bottom, std::clamp(rect.StartY + rect.SizeY, 0, height));
        }
        Frame frame(right, bottom);
        for (const CaptureRegionRect& rect : wanted) {
            const std::int32_t x0 = std::clamp(rect.StartX, 0, width);
            const std::int32_t y0 = std::clamp(rect.StartY, 0, height);
            const std::int32_t x1 = std::clamp(rect.StartX + rect.SizeX, 0, width);
            const std::int32_t y1 = std::clamp(rect.StartY + rect.SizeY, 0, height);
            if (x1 > x0 && y1 > y0 && !copy(frame, {x0, y0, x1 - x0, y1 - y0}))
                return std::nullopt;
        }
        return toCaptureBitmap(frame);
    }

private:
    // Copies a rectangle of the root window into the frame at the same place.
    bool copy(Frame& frame, const CaptureRegionRect& rect)
    {
        auto image = reply(xcb_get_image_reply(
            m_connection,
            xcb_get_image(m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP, m_screen->root, static_cast<std::int16_t>(rect.StartX),
                          static_cast<std::int16_t>(rect.StartY), static_cast<std::uint16_t>(rect.SizeX),
                          static_cast<std::uint16_t>(rect.SizeY), ~0u),
            nullptr));
        if (!image)
            return false;
        const std::uint8_t* data = xcb_get_image_data(image.get());
        const std::size_t rowBytes = static_cast<std::size_t>(rect.SizeX) * 4;
        // Only the common 32-bit layout (blue, green, red, unused).
        if (static_cast<std::size_t>(xcb_get_image_data_length(image.get())) < rowBytes * static_cast<std::size_t>(rect.SizeY))
            return false;
        for (std::int32_t y = 0; y < rect.SizeY; ++y) {
            const std::uint8_t* source = data + static_cast<std::size_t>(y) * rowBytes;
            std::uint8_t* target = frame.row(rect.StartY + y) + 3 * static_cast<std::size_t>(rect.StartX);
            for (std::int32_t x = 0; x < rect.SizeX; ++x)
                std::memcpy(target + 3 * x, source + 4 * x, 3);
        }
        return true;
    }

    xcb_atom_t atom(const char* name)
    {
        auto answer = reply(xcb_intern_atom_reply(
            m_connection, xcb_intern_atom(m_connection, 0, static_cast<std::uint16_t>(std::strlen(name)), name), nullptr));
        return answer ? answer->atom : xcb_atom_t{XCB_ATOM_NONE};
    }

    std::string property(xcb_window_t window, xcb_atom_t name, xcb_atom_t type)
    {
        auto answer = reply(xcb_get_property_reply(
            m_connection, xcb_get_property(m_connection, 0, window, name, type, 0, 1024), nullptr));
        if (!answer || answer->type == XCB_ATOM_NONE)
            return {};
        return std::string(static_cast<const char*>(xcb_get_property_value(answer.get())),
                           static_cast<std::size_t>(xcb_get_property_value_length(answer.get())));
    }

    std::string title(xcb_window_t window)
    {
        std::string name = property(window, m_netWmName, m_utf8);
        return name.empty() ? property(window, XCB_ATOM_WM_NAME, XCB_ATOM_STRING) : name;
    }

    bool viewable(xcb_window_t window)
    {
        auto attributes = reply(xcb_get_window_attributes_reply(
            m_connection, xcb_get_window_attributes(m_connection, window), nullptr));
        return attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE;
    }

    // Top-level windows sit under the root, or one level lower inside a window manager's frame.
    std::optional<xcb_window_t> findWindow(xcb_window_t parent, std::string_view wanted, int depth)
    {
        auto tree = reply(xcb_query_tree_reply(m_connection, xcb_query_tree(m_connection, parent), nullptr));
        if (!tree)
            return std::nullopt;
        const xcb_window_t* children = xcb_query_tree_children(tree.get());
        const int count = xcb_query_tree_children_length(tree.get());
        for (int i = count - 1; i >= 0; --i) // topmost first
            if (viewable(children[i]) && title(children[i]) == wanted)
                return children[i];
        if (depth >= 2)
            return std::nullopt;
        for (int i = count - 1; i >= 0; --i)
            if (auto found = findWindow(children[i], wanted, depth + 1))
                return found;
        return std::nullopt;
    }

    bool inFront(xcb_window_t window)
    {
        const std::string active = property(m_screen->root, m_activeWindow, XCB_ATOM_WINDOW);
        if (active.size() >= sizeof(xcb_window_t)) {
            xcb_window_t id = 0;
            std::memcpy(&id, active.data(), sizeof id);
            return id == window;
        }
        // No window manager: the input focus decides; "pointer root" means whatever is on top.
        auto focus = reply(xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));
        if (!focus)
            return false;
        if (focus->focus == XCB_INPUT_FOCUS_POINTER_ROOT || focus->focus == XCB_NONE)
            return topmost() == window;
        return focus->focus == window;
    }

    xcb_window_t topmost()
    {
        auto tree = reply(xcb_query_tree_reply(m_connection, xcb_query_tree(m_connection, m_screen->root), nullptr));
        if (!tree)
            return XCB_NONE;
        const xcb_window_t* children = xcb_query_tree_children(tree.get());
        for (int i = xcb_query_tree_children_length(tree.get()) - 1; i >= 0; --i)
            if (viewable(children[i]))
                return children[i];
        return XCB_NONE;
    }

    xcb_connection_t* m_connection;
    xcb_screen_t* m_screen;
    xcb_atom_t m_netWmName;
    xcb_atom_t m_utf8;
    xcb_atom_t m_activeWindow;
};

} // namespace

std::unique_ptr<GameScreen> makeGameScreen()
{
    int screenNumber = 0;
    xcb_connection_t* connection = xcb_connect(nullptr, &screenNumber);
    if (xcb_connection_has_error(connection)) {
        xcb_disconnect(connection);
        return nullptr;
    }
    xcb_screen_iterator_t it = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (int i = 0; i < screenNumber && it.rem > 0; ++i)
        xcb_screen_next(&it);
    return std::make_unique<X11GameScreen>(connection, it.data);
}

} // namespace tvx::platform
