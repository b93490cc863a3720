#pragma once

#include "config/Settings.h"
#include "recognition/CaptureFile.h"

#include <optional>
#include <span>

namespace tvx {

// Port: one fresh image of the whole screen in screen coordinates, 24 bits per pixel.
// `wanted` names the rectangles the caller will read; a back end may leave the rest of
// the image blank. An empty span asks for the whole screen. nullopt means no image
// could be had (nothing on the clipboard, no display).
class ScreenSource {
public:
    virtual ~ScreenSource() = default;
    virtual std::optional<CaptureBitmap> grab(std::span<const CaptureRegionRect> wanted) = 0;
};

} // namespace tvx
