#pragma once

#include "config/Settings.h"
#include "recognition/CaptureFile.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tvx {

// One capture region of a screen as the settings binarise and read it: what the options
// window and the calibration window show beside each region.
struct RegionPreview {
    int width = 0; // the region's pixels, 0xRRGGBB row by row; empty without a screen
    int height = 0;
    std::vector<std::uint32_t> pixels;
    int rows = 0; // the binarised columns (bit y = row y) and how many rows they have
    std::vector<std::uint16_t> columns;
    std::string reading; // the digits read, or why there are none
    bool read = false;
};

// Rows from 16 on never reach a column group.
inline constexpr int kPreviewMaxRows = 16;

// A region of a screen (none: no capture yet) as the settings binarise and read it.
RegionPreview previewRegion(const CaptureBitmap* screen, const Settings& settings, int region);

// The region of a capture as 0xRRGGBB pixels row by row; pixels outside the bitmap are black.
std::vector<std::uint32_t> regionPixels(const CaptureBitmap& bitmap, const CaptureRegionRect& rect);

} // namespace tvx
