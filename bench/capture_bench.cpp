// One capture-and-read on this machine's screen: take the screen by a route, then fill,
// binarise and recognise the three default regions. Run it against the practice target
// (or the game) on the display in $DISPLAY; prints the median milliseconds per capture
// for each route and what was read, so a wrong reading cannot pass for a fast one.
// Besides the meter's own routes it times the alternatives on raw xcb, to keep the
// choice honest: the regions one request after another, their bounding box in one
// request, and the bounding box through MIT-SHM.
#include "GameScreen.h"
#include "x11/SharedImage.h"
#include "x11/XcbReply.h"

#include "recognition/ScreenRecognizer.h"

#include <xcb/xcb.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <span>
#include <vector>

namespace {

struct Reading {
    double medianMs = 0;
    std::string text;
};

template <typename Take>
Reading measure(const tvx::Settings& settings, Take take, int runs)
{
    tvx::ScreenRecognizer recognizer(settings);
    std::vector<double> times;
    std::string text;
    for (int i = 0; i < runs; ++i) {
        const auto start = std::chrono::steady_clock::now();
        const std::optional<tvx::CaptureBitmap> image = take();
        text.clear();
        if (image) {
            for (int r = 0; r < tvx::kRegionCount; ++r) {
                recognizer.fill(r, *image);
                recognizer.binarize(r);
                text += recognizer.recognize(r).digits + (r + 1 < tvx::kRegionCount ? " / " : "");
            }
        } else {
            text = "no image";
        }
        times.push_back(std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count());
    }
    std::sort(times.begin(), times.end());
    return {times[times.size() / 2], text};
}

namespace raw {

using tvx::CaptureRegionRect;

struct Display {
    xcb_connection_t* connection = nullptr;
    xcb_screen_t* screen = nullptr;
    ~Display() { xcb_disconnect(connection); }
};

void put(tvx::CaptureBitmap& bitmap, const CaptureRegionRect& rect, const std::uint8_t* data)
{
    for (std::int32_t y = 0; y < rect.SizeY; ++y) {
        const std::uint8_t* source = data + static_cast<std::size_t>(y) * static_cast<std::size_t>(rect.SizeX) * 4;
        std::uint8_t* target = bitmap.screenRow(rect.StartY + y) + 3 * static_cast<std::size_t>(rect.StartX);
        for (std::int32_t x = 0; x < rect.SizeX; ++x)
            std::memcpy(target + 3 * x, source + 4 * x, 3);
    }
}

xcb_get_image_cookie_t request(const Display& d, const CaptureRegionRect& r)
{
    return xcb_get_image(d.connection, XCB_IMAGE_FORMAT_Z_PIXMAP, d.screen->root, static_cast<std::int16_t>(r.StartX),
                         static_cast<std::int16_t>(r.StartY), static_cast<std::uint16_t>(r.SizeX),
                         static_cast<std::uint16_t>(r.SizeY), ~0u);
}

CaptureRegionRect boundingBox(std::span<const CaptureRegionRect> rects)
{
    std::int32_t x0 = rects[0].StartX, y0 = rects[0].StartY, x1 = 0, y1 = 0;
    for (const auto& r : rects) {
        x0 = std::min(x0, r.StartX);
        y0 = std::min(y0, r.StartY);
        x1 = std::max(x1, r.StartX + r.SizeX);
        y1 = std::max(y1, r.StartY + r.SizeY);
    }
    return {x0, y0, x1 - x0, y1 - y0};
}

tvx::CaptureBitmap blankFor(std::span<const CaptureRegionRect> rects)
{
    const CaptureRegionRect box = boundingBox(rects);
    return tvx::blankCapture(box.StartX + box.SizeX, box.StartY + box.SizeY);
}

// One request per region, each waiting for its reply.
std::optional<tvx::CaptureBitmap> oneByOne(const Display& d, std::span<const CaptureRegionRect> rects)
{
    tvx::CaptureBitmap bitmap = blankFor(rects);
    for (const auto& r : rects) {
        auto image = tvx::platform::reply(xcb_get_image_reply(d.connection, request(d, r), nullptr));
        if (!image)
            return std::nullopt;
        put(bitmap, r, xcb_get_image_data(image.get()));
    }
    return bitmap;
}

// The bounding box of the regions in one request.
std::optional<tvx::CaptureBitmap> box(const Display& d, std::span<const CaptureRegionRect> rects)
{
    const CaptureRegionRect all = boundingBox(rects);
    tvx::CaptureBitmap bitmap = blankFor(rects);
    auto image = tvx::platform::reply(xcb_get_image_reply(d.connection, request(d, all), nullptr));
    if (!image)
        return std::nullopt;
    put(bitmap, all, xcb_get_image_data(image.get()));
    return bitmap;
}

// The bounding box through shared memory.
std::optional<tvx::CaptureBitmap> sharedBox(const Display& d, tvx::platform::SharedImage& shm,
                                            std::span<const CaptureRegionRect> rects)
{
    const CaptureRegionRect all = boundingBox(rects);
    tvx::CaptureBitmap bitmap = blankFor(rects);
    if (!shm.get(d.screen->root, all))
        return std::nullopt;
    put(bitmap, all, shm.data());
    return bitmap;
}

} // namespace raw

} // namespace

int main()
{
    const auto screen = tvx::platform::makeGameScreen();
    if (!screen) {
        std::fprintf(stderr, "no screen to capture (is DISPLAY set?)\n");
        return 1;
    }
    const tvx::Settings settings = tvx::defaultSettings("");
    const int runs = 200;
    const Reading regions = measure(settings, [&] { return screen->grab(settings.CaptureRegion); }, runs);
    const Reading whole = measure(settings, [&] { return screen->grab({}); }, runs);
    std::printf("direct, capture regions only: %8.3f ms  read %s\n", regions.medianMs, regions.text.c_str());
    std::printf("direct, whole screen:         %8.3f ms  read %s\n", whole.medianMs, whole.text.c_str());

    raw::Display display;
    display.connection = xcb_connect(nullptr, nullptr);
    display.screen = xcb_setup_roots_iterator(xcb_get_setup(display.connection)).data;
    const std::span<const tvx::CaptureRegionRect> rects = settings.CaptureRegion;
    const raw::CaptureRegionRect box = raw::boundingBox(rects);
    std::printf("(screen %dx%d, regions' bounding box %dx%d at %d,%d)\n", display.screen->width_in_pixels,
                display.screen->height_in_pixels, box.SizeX, box.SizeY, box.StartX, box.StartY);
    const Reading oneByOne = measure(settings, [&] { return raw::oneByOne(display, rects); }, runs);
    std::printf("  regions one request each:   %8.3f ms  read %s\n", oneByOne.medianMs, oneByOne.text.c_str());
    const Reading boxed = measure(settings, [&] { return raw::box(display, rects); }, runs);
    std::printf("  bounding box, one request:  %8.3f ms  read %s\n", boxed.medianMs, boxed.text.c_str());
    const auto shm = tvx::platform::SharedImage::attach(
        display.connection, static_cast<std::size_t>(display.screen->width_in_pixels) * display.screen->height_in_pixels * 4);
    if (shm) {
        const Reading shared = measure(settings, [&] { return raw::sharedBox(display, *shm, rects); }, runs);
        std::printf("  bounding box, MIT-SHM:      %8.3f ms  read %s\n", shared.medianMs, shared.text.c_str());
    } else {
        std::printf("  bounding box, MIT-SHM:      not offered by this display\n");
    }
    const tvx::CaptureRegionRect screenRect{0, 0, display.screen->width_in_pixels, display.screen->height_in_pixels};
    const Reading plainWhole = measure(settings, [&] { return raw::oneByOne(display, {&screenRect, 1}); }, runs);
    std::printf("  whole screen, one request:  %8.3f ms  read %s\n", plainWhole.medianMs, plainWhole.text.c_str());
    if (screen->pressPrintScreen()) {
        const Reading key = measure(settings, [&] { screen->pressPrintScreen(); return screen->clipboardPicture(); }, 20);
        std::printf("Print Screen key + clipboard: %8.3f ms (without Lag)  read %s\n", key.medianMs, key.text.c_str());
    } else {
        std::printf("Print Screen key + clipboard: not offered by this platform\n");
    }
    return 0;
}
