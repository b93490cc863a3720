#pragma once

#include <cstdint>

namespace tvx {

// A control's place in its parent, in pixels.
struct PixelRect {
    std::int32_t left = 0;
    std::int32_t top = 0;
    std::int32_t width = 0;
    std::int32_t height = 0;

    bool contains(std::int32_t x, std::int32_t y) const
    {
        return x >= left && y >= top && x < left + width && y < top + height;
    }
    friend bool operator==(const PixelRect&, const PixelRect&) = default;
};

} // namespace tvx
