#pragma once

#include "config/Settings.h"
#include "recognition/CaptureFile.h"
#include "recognition/InkGrid.h"
#include "recognition/Recognizer.h"

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

// The most rows a preview shows; a taller region is shown from its ink's top, halved or more.
inline constexpr int kPreviewMaxRows = 16;

// What a failed reading says: which digits are not taught, when that is why.
std::string failureText(const Settings& settings, int region, const RecognitionResult& result);
// "完全一致" or "字形".
std::string readingModeName(ReadingMode mode);
// A binarised region as at most 16-row columns for the glyph views; rows tells how many.
std::vector<std::uint16_t> previewColumns(const InkGrid& grid, int& rows);

// A region of a screen (none: no capture yet) as the settings binarise and read it.
RegionPreview previewRegion(const CaptureBitmap* screen, const Settings& settings, int region);

// The region of a capture as 0xRRGGBB pixels row by row; pixels outside the bitmap are black.
std::vector<std::uint32_t> regionPixels(const CaptureBitmap& bitmap, const CaptureRegionRect& rect);

} // namespace tvx
