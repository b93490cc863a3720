// The X11 back end on a screen whose rows need padding: bands, whole screen and regions'
// grab are one picture, and the game window is found by its title wherever it sits.
#include "support/Processes.h"

#include "GameScreen.h"
#include "support/TempFolder.h"
#include "view/RegionPreview.h"

#include <gtest/gtest.h>

#include <xcb/xcb.h>

#include <cstring>

namespace tvx {
namespace {

// The bands as a bitmap file's rows, in the order they came: bottom first, without gaps, they equal the whole grab.
class CollectedRows final : public ScreenRows {
public:
    void begin(std::int32_t width, std::int32_t) override { stride = bitmapStride24(width); }
    void rows(std::int32_t, std::int32_t count, const std::uint8_t* data) override
    {
        bytes.insert(bytes.end(), data, data + stride * static_cast<std::size_t>(count));
    }

    std::size_t stride = 0;
    ZeroedBytes bytes;
};

TEST(X11Screen, BandsWholeScreenAndRegionsAreOnePictureAndTheGameIsFoundByTitle)
{
    test::TempFolder folder;
    const test::VirtualScreen xvfb = test::startVirtualScreen("1023x700x24", folder.path().string());
    ASSERT_FALSE(xvfb.display.empty()) << "Xvfb or xdotool is missing, or the server did not start";
    xcb_connection_t* painter = xcb_connect(xvfb.display.c_str(), nullptr);
    ASSERT_EQ(xcb_connection_has_error(painter), 0);
    setenv("DISPLAY", xvfb.display.c_str(), 1);
    // A round trip: everything asked before is done.
    const auto sync = [&] { std::free(xcb_get_input_focus_reply(painter, xcb_get_input_focus(painter), nullptr)); };

    // Coloured blocks at uneven places, among them across the last column and the bottom row.
    xcb_screen_t* root = xcb_setup_roots_iterator(xcb_get_setup(painter)).data;
    const std::pair<std::uint32_t, xcb_rectangle_t> blocks[] = {
        {0x00C03010, {0, 0, 1023, 700}},  {0x0010E0F0, {5, 3, 300, 211}},   {0x00FF00FF, {700, 650, 323, 50}},
        {0x00123456, {1022, 0, 1, 700}}, {0x00FEDCBA, {0, 699, 1023, 1}}, {0x00000001, {400, 300, 7, 77}},
    };
    for (const auto& [colour, rect] : blocks) {
        const xcb_gcontext_t gc = xcb_generate_id(painter);
        xcb_create_gc(painter, gc, root->root, XCB_GC_FOREGROUND | XCB_GC_SUBWINDOW_MODE,
                      std::vector<std::uint32_t>{colour, XCB_SUBWINDOW_MODE_INCLUDE_INFERIORS}.data());
        xcb_poly_fill_rectangle(painter, root->root, gc, 1, &rect);
        xcb_free_gc(painter, gc);
    }
    sync();

    const std::unique_ptr<platform::GameScreen> screen = platform::makeGameScreen();
    ASSERT_TRUE(screen);
    const std::optional<CaptureBitmap> whole = screen->grab({});
    ASSERT_TRUE(whole);
    ASSERT_EQ(std::pair(whole->infoHeader.biWidth, whole->rows), std::pair(1023, std::int64_t{700}));
    CollectedRows bands;
    ASSERT_TRUE(screen->grabRows(bands)) << "MIT-SHM is offered by Xvfb";
    EXPECT_EQ(bands.bytes, whole->pixels);
    const std::tuple<std::int32_t, std::int32_t, std::uint32_t> pixels[] = {
        {0, 0, 0xC03010},    {304, 213, 0x10E0F0}, {305, 214, 0xC03010}, {1022, 5, 0x123456}, {1022, 699, 0xFEDCBA},
        {406, 376, 0x000001}};
    for (const auto& [x, y, colour] : pixels)
        EXPECT_EQ(regionPixels(*whole, {x, y, 1, 1}), std::vector<std::uint32_t>{colour}) << x << "," << y;

    const std::vector<CaptureRegionRect> regions{{3, 1, 10, 5}, {1000, 640, 23, 60}, {398, 310, 12, 9}};
    const std::optional<CaptureBitmap> some = screen->grab(regions);
    ASSERT_TRUE(some);
    for (const CaptureRegionRect& rect : regions)
        EXPECT_EQ(regionPixels(*some, rect), regionPixels(*whole, rect));

    // The game window by its title: under the root, or inside a frame as a window manager
    // puts it; a hidden one does not count, the newer UTF-8 name goes before the older one.
    const auto window = [&](xcb_window_t parent, const char* oldName, const char* utf8Name, bool shown) {
        const xcb_window_t id = xcb_generate_id(painter);
        xcb_create_window(painter, XCB_COPY_FROM_PARENT, id, parent, 10, 10, 50, 40, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                          root->root_visual, 0, nullptr);
        if (oldName != nullptr)
            xcb_change_property(painter, XCB_PROP_MODE_REPLACE, id, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8,
                                static_cast<std::uint32_t>(std::strlen(oldName)), oldName);
        if (utf8Name != nullptr) {
            const auto atom = [&](const char* name) {
                auto* answer = xcb_intern_atom_reply(
                    painter, xcb_intern_atom(painter, 0, static_cast<std::uint16_t>(std::strlen(name)), name), nullptr);
                const xcb_atom_t value = answer->atom;
                std::free(answer);
                return value;
            };
            xcb_change_property(painter, XCB_PROP_MODE_REPLACE, id, atom("_NET_WM_NAME"), atom("UTF8_STRING"), 8,
                                static_cast<std::uint32_t>(std::strlen(utf8Name)), utf8Name);
        }
        if (shown)
            xcb_map_window(painter, id);
        return id;
    };
    const xcb_window_t frame = window(root->root, nullptr, nullptr, true);
    const xcb_window_t inner = window(window(frame, nullptr, nullptr, true), "Framed", nullptr, true);
    const xcb_window_t top = window(root->root, "Old", "メイプル", true);
    window(root->root, "Hidden", nullptr, false);
    xcb_set_input_focus(painter, XCB_INPUT_FOCUS_POINTER_ROOT, top, XCB_CURRENT_TIME);
    sync();
    EXPECT_EQ(screen->state("メイプル"), GameWindowState::Front);
    EXPECT_EQ(screen->state("Old"), GameWindowState::Missing) << "the UTF-8 name is the title";
    EXPECT_EQ(screen->state("Framed"), GameWindowState::Background);
    EXPECT_EQ(screen->state("Hidden"), GameWindowState::Missing);
    xcb_set_input_focus(painter, XCB_INPUT_FOCUS_POINTER_ROOT, inner, XCB_CURRENT_TIME);
    sync();
    EXPECT_EQ(screen->state("Framed"), GameWindowState::Front);
    xcb_disconnect(painter);
}

} // namespace
} // namespace tvx
