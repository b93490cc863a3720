#pragma once

#include "config/Settings.h"
#include "recognition/Frame.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace tvx {

struct Bgr {
    std::uint8_t blue = 0;
    std::uint8_t green = 0;
    std::uint8_t red = 0;
};

// Colours that the default binarisation of a region reads as ink and as background.
struct InkColors {
    Bgr ink;
    Bgr background;
};

InkColors defaultInkColors(int region);

// The column groups of a number drawn with a template set: the digits' templates one after
// another, then the delimiter when asked for.
std::string numberColumns(const PatternSet& patterns, std::string_view digits, bool withDelimiter);

// Fills the region with its background colour.
void paintRegionBackground(Frame& frame, const CaptureRegionRect& rect, const InkColors& colors);

// Draws column groups ("007C00FE...") into the region from its column `firstColumn` on,
// bit y of a group being row y; columns past the region's right edge are dropped.
// Returns the column after the last one drawn.
std::int32_t paintColumns(Frame& frame, const CaptureRegionRect& rect, std::int32_t firstColumn,
                          std::string_view groups, const InkColors& colors);

// Draws the three regions of a screen as the game shows them: each region's background
// and, unless its text is empty, the number in that region's glyphs from its second column.
void paintStatusNumbers(Frame& frame, const Settings& settings, const std::array<std::string, kRegionCount>& numbers);

} // namespace tvx
