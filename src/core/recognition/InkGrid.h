#pragma once

#include "config/GlyphShape.h"
#include "config/Settings.h"
#include "recognition/PixelLevels.h"

#include <cstdint>
#include <vector>

namespace tvx {

// A region binarised whole, whatever its height: one flag per pixel, row by row.
class InkGrid {
public:
    InkGrid() = default;
    InkGrid(std::int32_t width, std::int32_t height)
        : m_width(width), m_height(height),
          m_cells(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), 0)
    {
    }

    std::int32_t width() const { return m_width; }
    std::int32_t height() const { return m_height; }
    bool at(std::int32_t x, std::int32_t y) const { return m_cells[index(x, y)] != 0; }
    void set(std::int32_t x, std::int32_t y, bool ink) { m_cells[index(x, y)] = ink ? 1 : 0; }

private:
    std::size_t index(std::int32_t x, std::int32_t y) const
    {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(m_width) + static_cast<std::size_t>(x);
    }

    std::int32_t m_width = 0;
    std::int32_t m_height = 0;
    std::vector<std::uint8_t> m_cells;
};

// The brightness levels of one region, row by row, kept so that it can be binarised again
// with another threshold.
struct RegionLevels {
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::vector<std::int32_t> levels;
};

RegionLevels regionLevels(const PixelLevels& levels, int region, const CaptureRegionRect& rect);
// The same binarisation as the column string's, for every row.
InkGrid binarizeGrid(const RegionLevels& levels, std::int32_t threshold, std::int32_t mask);

// A run of columns with ink between blank ones, cut to its ink.
struct InkPiece {
    std::int32_t left = 0;
    std::int32_t right = 0; // one past the last column
    std::int32_t top = 0;
    GlyphShape shape;       // rows empty when wider than a glyph can be
};

// Pieces of two ink pixels or fewer are specks of noise and left out.
std::vector<InkPiece> inkPieces(const InkGrid& grid);
// The ink of the columns [left, right) as a piece, cut to its rows.
InkPiece cellPiece(const InkGrid& grid, std::int32_t left, std::int32_t right);
// A piece holding `count` glyphs drawn touching, cut into equal shares of its width: the
// digits of most fonts share one width.
std::vector<InkPiece> splitPiece(const InkGrid& grid, const InkPiece& piece, std::int32_t count);

// How unlike two glyphs are: the ink pixels that differ, as a part of both glyphs' ink
// (0 the same, 1 nothing in common), with their columns paired so that a column drawn
// twice or once, as a scaled UI does depending on where a glyph falls, costs nothing, and
// with a row of vertical play. Shapes whose sizes differ by more than a fifth, or taller
// than 62 rows, cannot be compared (kIncomparable).
inline constexpr double kIncomparable = 2.0;
double shapeDistance(const GlyphShape& a, const GlyphShape& b);

} // namespace tvx
