#include "GameScreen.h"

#include "SharedImage.h"
#include "XcbReply.h"

#include <xcb/xcb.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <span>
#include <string>
#include <utility>
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
        const auto window = findWindow(m_screen->root, title);
        if (!window)
            return GameWindowState::Missing;
        return inFront(*window) ? GameWindowState::Front : GameWindowState::Background;
    }

    // The whole screen, or only the wanted rectangles on a black image that ends where the
    // furthest rectangle does. The rectangles' requests go out together, so a capture
    // waits for one round trip and moves a few kilobytes.
    std::optional<CaptureBitmap> grab(std::span<const CaptureRegionRect> wanted) override
    {
        const std::int32_t width = m_screen->width_in_pixels;
        const std::int32_t height = m_screen->height_in_pixels;
        if (wanted.empty())
            return grabWhole(width, height);
        const ClippedRegions clipped = clipToScreen(wanted, width, height);
        std::vector<CaptureRegionRect> rects;
        for (const CaptureRegionRect& rect : clipped.rects)
            if (rect.SizeX > 0 && rect.SizeY > 0)
                rects.push_back(rect);
        std::vector<xcb_get_image_cookie_t> cookies;
        for (const CaptureRegionRect& rect : rects)
            cookies.push_back(requestImage(rect));
        CaptureBitmap bitmap = blankCapture(clipped.right, clipped.bottom);
        bool complete = !bitmap.pixels.empty();
        for (std::size_t i = 0; i < rects.size(); ++i) { // every reply is taken, even after a failure
            auto image = reply(xcb_get_image_reply(m_connection, cookies[i], nullptr));
            complete = image && complete &&
                       put(bitmap, rects[i], xcb_get_image_data(image.get()),
                           static_cast<std::size_t>(xcb_get_image_data_length(image.get())));
        }
        return complete ? std::optional(std::move(bitmap)) : std::nullopt;
    }

    // The whole screen converted to the file's rows band by band, handed over a few rows
    // at a time through one small buffer that the screen keeps: nothing of a screen's size
    // is made and dropped each reading. Without MIT-SHM the caller grabs the screen whole
    // by a plain request.
    bool grabRows(ScreenRows& sink) override
    {
        const std::int32_t width = m_screen->width_in_pixels;
        const std::int32_t height = m_screen->height_in_pixels;
        if (width <= 0 || height <= 0)
            return false;
        const std::size_t stride = bitmapStride24(width);
        const auto chunkRows = static_cast<std::int32_t>(std::clamp<std::size_t>(kPackBytes / stride, 1, static_cast<std::size_t>(height)));
        // Zeros, the rows' padding among them, which the packing leaves alone.
        m_packed.assign(stride * static_cast<std::size_t>(chunkRows), 0);
        bool begun = false;
        return walkBands(width, height, [&](std::int32_t top, std::int32_t count, const std::uint8_t* rows) {
            if (!begun) {
                sink.begin(width, height);
                begun = true;
            }
            // The file's order: the bottom rows first.
            for (std::int32_t end = count; end > 0;) {
                const std::int32_t n = std::min(chunkRows, end);
                for (std::int32_t i = 0; i < n; ++i)
                    packRow(rows + static_cast<std::size_t>(end - 1 - i) * static_cast<std::size_t>(width) * 4,
                            m_packed.data() + static_cast<std::size_t>(i) * stride, width);
                end -= n;
                sink.rows(top + end, n, m_packed.data());
            }
        });
    }

private:
    // One row of 32-bit pixels (blue, green, red, unused; the common layout and the only one
    // taken) as three bytes each. Four bytes a pixel, the unused one overwritten by the next
    // pixel: one move each instead of three, over two million pixels a screen.
    static void packRow(const std::uint8_t* source, std::uint8_t* target, std::int32_t width)
    {
        if (width <= 0)
            return;
        const std::int32_t last = width - 1;
        for (std::int32_t x = 0; x < last; ++x)
            std::memcpy(target + 3 * x, source + 4 * x, 4);
        std::memcpy(target + 3 * last, source + 4 * last, 3);
    }

    // The screen through shared memory (8 MB at 1920x1080 need not pass through the socket)
    // a band of rows at a time from the bottom up, each handed to `use` as its top row, its
    // row count and its rows top first at 32 bits a pixel. The segment holds two bands, so
    // the server fills the next while this one is used, and lives for one walk: the meter
    // keeps no segment mapped in the minutes between readings. False without MIT-SHM or
    // when a band could not be had.
    template <typename Use>
    bool walkBands(std::int32_t width, std::int32_t height, Use use)
    {
        const std::size_t rowBytes = static_cast<std::size_t>(width) * 4;
        const auto bandRows = static_cast<std::int32_t>(
            std::clamp<std::size_t>(kBandBytes / rowBytes, 1, static_cast<std::size_t>(height)));
        const std::size_t bandBytes = rowBytes * static_cast<std::size_t>(bandRows);
        const auto shm = SharedImage::attach(m_connection, 2 * bandBytes);
        if (!shm)
            return false;
        const std::int32_t bands = (height + bandRows - 1) / bandRows;
        const auto band = [&](std::int32_t k) {
            const std::int32_t bottom = height - k * bandRows;
            const std::int32_t top = std::max(0, bottom - bandRows);
            return CaptureRegionRect{0, top, width, bottom - top};
        };
        const auto request = [&](std::int32_t k) {
            return shm->request(m_screen->root, band(k), static_cast<std::size_t>(k % 2) * bandBytes);
        };
        auto pending = request(0);
        bool complete = pending.has_value();
        for (std::int32_t k = 0; pending; ++k) { // every request is waited for, even after a failure
            const xcb_shm_get_image_cookie_t cookie = *pending;
            pending = complete && k + 1 < bands ? request(k + 1) : std::nullopt;
            complete = shm->wait(cookie) && complete;
            if (complete) {
                const CaptureRegionRect rect = band(k);
                use(rect.StartY, rect.SizeY, shm->data() + static_cast<std::size_t>(k % 2) * bandBytes);
            }
        }
        return complete;
    }

    // The whole screen by the bands when the server offers them, else by a plain request.
    std::optional<CaptureBitmap> grabWhole(std::int32_t width, std::int32_t height)
    {
        const CaptureRegionRect all{0, 0, width, height};
        CaptureBitmap bitmap = blankCapture(width, height);
        if (bitmap.pixels.empty())
            return std::nullopt;
        const bool banded = walkBands(width, height, [&](std::int32_t top, std::int32_t count, const std::uint8_t* rows) {
            put(bitmap, {0, top, width, count}, rows, static_cast<std::size_t>(width) * 4 * static_cast<std::size_t>(count));
        });
        if (banded)
            return bitmap;
        auto image = reply(xcb_get_image_reply(m_connection, requestImage(all), nullptr));
        if (!image || !put(bitmap, all, xcb_get_image_data(image.get()),
                           static_cast<std::size_t>(xcb_get_image_data_length(image.get()))))
            return std::nullopt;
        return bitmap;
    }

    xcb_get_image_cookie_t requestImage(const CaptureRegionRect& rect)
    {
        return xcb_get_image(m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP, m_screen->root,
                             static_cast<std::int16_t>(rect.StartX), static_cast<std::int16_t>(rect.StartY),
                             static_cast<std::uint16_t>(rect.SizeX), static_cast<std::uint16_t>(rect.SizeY), ~0u);
    }

    // Copies a rectangle of 32-bit pixels (blue, green, red, unused; the common layout and
    // the only one taken) into the capture at the same place.
    static bool put(CaptureBitmap& bitmap, const CaptureRegionRect& rect, const std::uint8_t* data, std::size_t length)
    {
        const std::size_t rowBytes = static_cast<std::size_t>(rect.SizeX) * 4;
        if (length < rowBytes * static_cast<std::size_t>(rect.SizeY))
            return false;
        for (std::int32_t y = 0; y < rect.SizeY; ++y)
            packRow(data + static_cast<std::size_t>(y) * rowBytes,
                    bitmap.screenRow(rect.StartY + y) + 3 * static_cast<std::size_t>(rect.StartX), rect.SizeX);
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
        return propertyText(requestProperty(window, name, type));
    }

    xcb_get_property_cookie_t requestProperty(xcb_window_t window, xcb_atom_t name, xcb_atom_t type)
    {
        return xcb_get_property(m_connection, 0, window, name, type, 0, 1024);
    }

    std::string propertyText(xcb_get_property_cookie_t cookie)
    {
        auto answer = reply(xcb_get_property_reply(m_connection, cookie, nullptr));
        if (!answer || answer->type == XCB_ATOM_NONE)
            return {};
        return std::string(static_cast<const char*>(xcb_get_property_value(answer.get())),
                           static_cast<std::size_t>(xcb_get_property_value_length(answer.get())));
    }

    // Which of the windows are shown, asked all at once: one round trip, not one a window.
    std::vector<bool> viewable(std::span<const xcb_window_t> windows)
    {
        std::vector<xcb_get_window_attributes_cookie_t> cookies;
        for (const xcb_window_t window : windows)
            cookies.push_back(xcb_get_window_attributes(m_connection, window));
        std::vector<bool> shown;
        for (const auto cookie : cookies) {
            auto attributes = reply(xcb_get_window_attributes_reply(m_connection, cookie, nullptr));
            shown.push_back(attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE);
        }
        return shown;
    }

    // The topmost shown window of these titled `wanted` (its UTF-8 name, else its older
    // name), the questions for all of them sent together.
    std::optional<xcb_window_t> titled(std::span<const xcb_window_t> windows, std::string_view wanted)
    {
        std::vector<xcb_get_property_cookie_t> names;
        for (const xcb_window_t window : windows)
            names.push_back(requestProperty(window, m_netWmName, m_utf8));
        const std::vector<bool> shown = viewable(windows);
        std::vector<std::string> titles;
        for (const auto cookie : names)
            titles.push_back(propertyText(cookie));
        std::vector<std::pair<std::size_t, xcb_get_property_cookie_t>> older;
        for (std::size_t i = 0; i < windows.size(); ++i)
            if (shown[i] && titles[i].empty())
                older.emplace_back(i, requestProperty(windows[i], XCB_ATOM_WM_NAME, XCB_ATOM_STRING));
        for (const auto& [i, cookie] : older)
            titles[i] = propertyText(cookie);
        for (std::size_t i = windows.size(); i-- > 0;) // topmost first
            if (shown[i] && titles[i] == wanted)
                return windows[i];
        return std::nullopt;
    }

    std::span<const xcb_window_t> children(const xcb_query_tree_reply_t& tree)
    {
        return {xcb_query_tree_children(&tree), static_cast<std::size_t>(xcb_query_tree_children_length(&tree))};
    }

    // Top-level windows sit under the root, or one level lower inside a window manager's
    // frame. Each level's questions go out together; the game is looked for every second
    // while the level watch runs, on desktops of many windows.
    std::optional<xcb_window_t> findWindow(xcb_window_t parent, std::string_view wanted)
    {
        auto tree = reply(xcb_query_tree_reply(m_connection, xcb_query_tree(m_connection, parent), nullptr));
        return tree ? findWindow(*tree, wanted, 0) : std::nullopt;
    }

    std::optional<xcb_window_t> findWindow(const xcb_query_tree_reply_t& tree, std::string_view wanted, int depth)
    {
        const std::span<const xcb_window_t> windows = children(tree);
        if (auto found = titled(windows, wanted))
            return found;
        if (depth >= 2)
            return std::nullopt;
        std::vector<xcb_query_tree_cookie_t> trees;
        for (const xcb_window_t window : windows)
            trees.push_back(xcb_query_tree(m_connection, window));
        // Every reply is taken, the ones after a find too; the search goes topmost first.
        std::vector<Reply<xcb_query_tree_reply_t>> below;
        for (const auto cookie : trees)
            below.push_back(reply(xcb_query_tree_reply(m_connection, cookie, nullptr)));
        for (std::size_t i = below.size(); i-- > 0;)
            if (below[i])
                if (auto found = findWindow(*below[i], wanted, depth + 1))
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
        const std::span<const xcb_window_t> windows = children(*tree);
        const std::vector<bool> shown = viewable(windows);
        for (std::size_t i = windows.size(); i-- > 0;)
            if (shown[i])
                return windows[i];
        return XCB_NONE;
    }

    // A band of 68 rows at 1920 pixels; the segment holds two.
    static constexpr std::size_t kBandBytes = std::size_t{512} << 10;
    // Packed rows handed on at a time: small enough to stay in the cache and in the heap.
    static constexpr std::size_t kPackBytes = std::size_t{64} << 10;

    xcb_connection_t* m_connection;
    xcb_screen_t* m_screen;
    xcb_atom_t m_netWmName;
    xcb_atom_t m_utf8;
    xcb_atom_t m_activeWindow;
    std::vector<std::uint8_t> m_packed;
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
