#pragma once

#include "config/Settings.h"
#include "recognition/CaptureFile.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace tvx {

// Capture regions cut to a screen of this size (a region wholly off it becomes empty, its
// place in the list kept), and the size of the picture a grab of them gives: black but for
// them, ending where the furthest does, at least one pixel.
struct ClippedRegions {
    std::vector<CaptureRegionRect> rects;
    std::int32_t right = 1;
    std::int32_t bottom = 1;
};
inline ClippedRegions clipToScreen(std::span<const CaptureRegionRect> regions, std::int32_t width, std::int32_t height)
{
    ClippedRegions clipped;
    for (const CaptureRegionRect& rect : regions) {
        const std::int32_t x0 = std::clamp(rect.StartX, 0, width);
        const std::int32_t y0 = std::clamp(rect.StartY, 0, height);
        const std::int32_t x1 = std::clamp(rect.StartX + rect.SizeX, 0, width);
        const std::int32_t y1 = std::clamp(rect.StartY + rect.SizeY, 0, height);
        clipped.right = std::max(clipped.right, x1);
        clipped.bottom = std::max(clipped.bottom, y1);
        clipped.rects.push_back({x0, y0, std::max(0, x1 - x0), std::max(0, y1 - y0)});
    }
    return clipped;
}

// Takes a whole screen a band of rows at a time, in the order a bitmap file keeps them.
class ScreenRows {
public:
    virtual ~ScreenRows() = default;
    // The screen's size, before any rows.
    virtual void begin(std::int32_t width, std::int32_t height) = 0;
    // Screen rows top .. top + count - 1, the bottom one first, bitmapStride24(width) bytes
    // each: blue, green, red a pixel, then zeros. The bottom band comes first.
    virtual void rows(std::int32_t top, std::int32_t count, const std::uint8_t* data) = 0;
};

// Port: the screen, in screen coordinates at 24 bits per pixel, by two routes.
//
// The direct route: `grab` copies the screen now. `wanted` names the rectangles the
// caller will read; a back end may leave the rest of the image blank. An empty span asks
// for the whole screen. nullopt means no image could be had (no display).
//
// The Print Screen route: `pressPrintScreen` presses the key so that the system puts the
// screen on the clipboard; after the caller's wait, `clipboardPicture` takes that bitmap
// converted to 24 bits. A platform without the route returns false and nullopt.
class ScreenSource {
public:
    virtual ~ScreenSource() = default;
    virtual std::optional<CaptureBitmap> grab(std::span<const CaptureRegionRect> wanted) = 0;
    // The whole screen of the direct route handed to `sink` in bands, for a caller that
    // writes it out and reads only some rectangles, so that the screen is never held
    // whole. False when the source does not offer it or the screen could not be had
    // (rows already handed over are then to be dropped): the caller grabs it whole.
    virtual bool grabRows(ScreenRows& /*sink*/) { return false; }
    virtual bool pressPrintScreen() { return false; }
    virtual std::optional<CaptureBitmap> clipboardPicture() { return std::nullopt; }
};

} // namespace tvx
