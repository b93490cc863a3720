#pragma once

#include "config/Settings.h"
#include "recognition/PixelLevels.h"

#include <cstdint>
#include <string>

namespace tvx {

// Which levels are ink, as one band [low, high) or everything outside it. The mask
// replaces the levels on one side of it by a constant (0 when it lies above the threshold,
// 1020 otherwise), so ink is always of this shape. Levels lie in 0..1020, so the bounds are
// clamped to 0..1021 and the test runs in 32 bits, which vectorises.
struct InkRule {
    std::int32_t low;
    std::int32_t high;
    std::uint32_t outside;

    std::uint32_t isInk(std::int32_t level) const
    {
        return (static_cast<std::uint32_t>(level >= low) & static_cast<std::uint32_t>(level < high)) ^ outside;
    }
};

// The ink rule of a threshold and mask on the 0..255 scale; RuntimeError(Overflow) when
// four times either does not fit 32 bits.
InkRule inkRule(std::int32_t threshold, std::int32_t mask);

// Writes every pixel column of the region as four upper-case hex digits (bit y = row y is
// ink) into columnString. threshold and mask are on the 0..255 scale; a negative mask
// switches masking off, a mask below the threshold also counts very dark pixels as ink,
// one above it ends the ink band there. Rows from 16 on fall off the four digits; a
// column whose mask passes 31 bits raises RuntimeError(Overflow).
void BinarizeRegion(const PixelLevels& levels, int region, const CaptureRegionRect& rect, std::int32_t threshold,
                    std::int32_t mask, std::string& columnString);

} // namespace tvx
