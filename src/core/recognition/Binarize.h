#pragma once

#include "config/Settings.h"
#include "recognition/PixelLevels.h"

#include <cstdint>
#include <string>

namespace tvx {

// Writes every pixel column of the region as four upper-case hex digits (bit y = row y is
// ink) into columnString. threshold and mask are on the 0..255 scale; a negative mask
// switches masking off, a mask below the threshold also counts very dark pixels as ink,
// one above it ends the ink band there. Rows from 16 on fall off the four digits; a
// column whose mask passes 31 bits raises RuntimeError(Overflow).
void BinarizeRegion(const PixelLevels& levels, int region, const CaptureRegionRect& rect, std::int32_t threshold,
                    std::int32_t mask, std::string& columnString);

} // namespace tvx
