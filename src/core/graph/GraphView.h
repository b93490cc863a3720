#pragma once

#include <cstdint>

namespace tvx {

// The graph's view: how many entries its right edge lies in the past and how far the
// value axis is zoomed. Every new entry puts it back.
struct GraphView {
    std::int32_t timeShift = 0;
    float zoom = 1.0f; // single precision, so repeated clicks round as they always have
};

} // namespace tvx
