#pragma once

#include "config/Settings.h"
#include "recognition/CaptureFile.h"

#include <optional>
#include <span>

namespace tvx {

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
    virtual bool pressPrintScreen() { return false; }
    virtual std::optional<CaptureBitmap> clipboardPicture() { return std::nullopt; }
};

} // namespace tvx
