#pragma once

#include "config/Settings.h"
#include "recognition/CaptureFile.h"

#include <array>
#include <cstdint>
#include <vector>

namespace tvx {

// Brightness B + 2G + R (0..1020) of every pixel of the three capture regions, indexed
// [region][x][y]. Rows are stored contiguously so copying and binarising run along memory.
// Levels come from three bytes and always lie in 0..1020; binarisation relies on that.
class PixelLevels {
public:
    // (Re)allocates the array to the largest region and clears it. A negative size, or one
    // beyond what a screen's line of text can be, is a subscript error (RuntimeError), as
    // is any later access outside the array.
    void SecurePixels(const std::array<CaptureRegionRect, kRegionCount>& regions);

    std::int32_t columns() const { return m_columns; }
    std::int32_t rows() const { return m_rows; }

    std::int32_t at(int region, std::int32_t x, std::int32_t y) const { return m_levels[index(region, x, y)]; }
    std::int32_t& at(int region, std::int32_t x, std::int32_t y) { return m_levels[index(region, x, y)]; }
    const std::int32_t* row(int region, std::int32_t y) const { return &m_levels[index(region, 0, y)]; }
    std::int32_t* row(int region, std::int32_t y) { return &m_levels[index(region, 0, y)]; }

    // Throws RuntimeError(SubscriptOutOfRange) unless a region of this size fits.
    void checkFits(int region, const CaptureRegionRect& rect) const;

private:
    std::size_t index(int region, std::int32_t x, std::int32_t y) const
    {
        return (static_cast<std::size_t>(region) * static_cast<std::size_t>(m_rows) + static_cast<std::size_t>(y)) *
                   static_cast<std::size_t>(m_columns) +
               static_cast<std::size_t>(x);
    }

    std::int32_t m_columns = 0;
    std::int32_t m_rows = 0;
    std::vector<std::int32_t> m_levels;
};

// Copies one region of the capture file into the levels. A region reaching outside the
// bitmap raises RuntimeError(SubscriptOutOfRange) before anything is written.
void FillPixelLevels(PixelLevels& levels, int region, const CaptureRegionRect& rect, const CaptureBitmap& bitmap);

} // namespace tvx
