#include "recognition/InkGrid.h"

#include "recognition/Binarize.h"

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <limits>

namespace tvx {
namespace {

constexpr std::int32_t kMinPieceInk = 3;
// Column masks are 64 bits, with room for a shift of a row either way.
constexpr std::int32_t kMaxCompareRows = 62;

std::int32_t tolerance(std::int32_t a, std::int32_t b)
{
    return std::max(1, std::max(a, b) / 5);
}

// The shape's columns, bit y for row y moved down by `down`.
std::vector<std::uint64_t> columnsOf(const GlyphShape& s, std::int32_t down)
{
    std::vector<std::uint64_t> columns(static_cast<std::size_t>(s.width), 0);
    for (std::int32_t y = 0; y < s.height; ++y)
        for (std::int32_t x = 0; x < s.width; ++x)
            if (s.rows[static_cast<std::size_t>(y)] >> x & 1)
                columns[static_cast<std::size_t>(x)] |= std::uint64_t{1} << (y + down);
    return columns;
}

// Pixels where two columns differ: twice over where the difference runs over two rows or
// more, once where it is a single row, as a stroke's edge moved by smoothing leaves it.
std::int32_t columnDifference(std::uint64_t a, std::uint64_t b)
{
    const std::uint64_t differ = a ^ b;
    const std::uint64_t runs = differ & (differ << 1 | differ >> 1);
    return 2 * std::popcount(runs) + std::popcount(differ & ~runs);
}

// Ink pixels that differ when the columns of a and b are paired in order, a column of
// either side allowed to stand for two of the other: a UI scaled by a fraction draws some
// columns of a glyph twice, depending on where the glyph falls.
std::int32_t warpedDifference(const std::vector<std::uint64_t>& a, const std::vector<std::uint64_t>& b)
{
    constexpr std::int32_t kFar = 1 << 28;
    constexpr std::int32_t kRepeatCost = 0;
    constexpr bool kBanded = false;
    const std::size_t n = a.size();
    const std::size_t m = b.size();
    std::vector<std::int32_t> previous(m + 1, kFar);
    std::vector<std::int32_t> current(m + 1, kFar);
    previous[0] = 0;
    // Pairs stay within a column of the diagonal, and each column drawn twice costs a
    // little, so that the pairing cannot fold a glyph's inside onto another's.
    const auto band = static_cast<std::int64_t>(std::max(n, m));
    for (std::size_t i = 1; i <= n; ++i) {
        current[0] = kFar;
        for (std::size_t j = 1; j <= m; ++j) {
            const std::int64_t off = static_cast<std::int64_t>(i * m) - static_cast<std::int64_t>(j * n);
            if (kBanded && (off > band || off < -band)) {
                current[j] = kFar;
                continue;
            }
            const std::int32_t cost = columnDifference(a[i - 1], b[j - 1]);
            current[j] = cost + std::min({previous[j - 1], previous[j] + kRepeatCost, current[j - 1] + kRepeatCost});
        }
        std::swap(previous, current);
    }
    return previous[m];
}

} // namespace

RegionLevels regionLevels(const PixelLevels& levels, int region, const CaptureRegionRect& rect)
{
    RegionLevels out;
    if (rect.SizeX <= 0 || rect.SizeY <= 0)
        return out;
    levels.checkFits(region, rect);
    out.width = rect.SizeX;
    out.height = rect.SizeY;
    out.levels.reserve(static_cast<std::size_t>(rect.SizeX) * static_cast<std::size_t>(rect.SizeY));
    for (std::int32_t y = 0; y < rect.SizeY; ++y) {
        const std::int32_t* row = levels.row(region, y);
        out.levels.insert(out.levels.end(), row, row + rect.SizeX);
    }
    return out;
}

InkGrid binarizeGrid(const RegionLevels& levels, std::int32_t threshold, std::int32_t mask)
{
    const InkRule rule = inkRule(threshold, mask);
    InkGrid grid(levels.width, levels.height);
    std::size_t i = 0;
    for (std::int32_t y = 0; y < levels.height; ++y)
        for (std::int32_t x = 0; x < levels.width; ++x)
            grid.set(x, y, rule.isInk(levels.levels[i++]) != 0);
    return grid;
}

InkPiece cellPiece(const InkGrid& grid, std::int32_t left, std::int32_t right)
{
    InkPiece piece;
    piece.left = left;
    piece.right = right;
    std::int32_t top = grid.height();
    std::int32_t bottom = -1;
    for (std::int32_t y = 0; y < grid.height(); ++y)
        for (std::int32_t c = left; c < right; ++c)
            if (grid.at(c, y)) {
                top = std::min(top, y);
                bottom = std::max(bottom, y);
            }
    if (bottom < 0)
        return piece;
    piece.top = top;
    piece.shape.width = right - left;
    piece.shape.height = bottom - top + 1;
    if (piece.shape.width <= kMaxShapeWidth && piece.shape.height <= kMaxShapeHeight)
        for (std::int32_t y = top; y <= bottom; ++y) {
            std::uint64_t row = 0;
            for (std::int32_t c = left; c < right; ++c)
                if (grid.at(c, y))
                    row |= std::uint64_t{1} << (c - left);
            piece.shape.rows.push_back(row);
        }
    return piece;
}

std::vector<InkPiece> inkPieces(const InkGrid& grid)
{
    const auto columnInk = [&](std::int32_t x) {
        for (std::int32_t y = 0; y < grid.height(); ++y)
            if (grid.at(x, y))
                return true;
        return false;
    };
    std::vector<InkPiece> pieces;
    for (std::int32_t x = 0; x < grid.width();) {
        if (!columnInk(x)) {
            ++x;
            continue;
        }
        const std::int32_t left = x;
        while (x < grid.width() && columnInk(x))
            ++x;
        InkPiece piece = cellPiece(grid, left, x);
        if (piece.shape.width > kMaxShapeWidth || piece.shape.ink() >= kMinPieceInk)
            pieces.push_back(std::move(piece));
    }
    return pieces;
}

std::vector<InkPiece> splitPiece(const InkGrid& grid, const InkPiece& piece, std::int32_t count)
{
    std::vector<InkPiece> out;
    const std::int32_t width = piece.right - piece.left;
    std::int32_t left = piece.left;
    for (std::int32_t k = 1; k <= count; ++k) {
        const std::int32_t cut = piece.left + (width * k + count / 2) / count;
        if (cut <= left)
            return {};
        out.push_back(cellPiece(grid, left, cut));
        left = cut;
    }
    return out;
}

double shapeDistance(const GlyphShape& a, const GlyphShape& b)
{
    if (a.rows.empty() || b.rows.empty() || std::abs(a.width - b.width) > tolerance(a.width, b.width) ||
        std::abs(a.height - b.height) > tolerance(a.height, b.height) || a.height > kMaxCompareRows ||
        b.height > kMaxCompareRows)
        return kIncomparable;
    const double total = a.ink() + b.ink();
    if (total == 0)
        return 0;
    // Both cut to their ink, so tops meet; a row either way covers a stroke drawn a row
    // lower or a glyph a row taller.
    const std::vector<std::uint64_t> ca = columnsOf(a, 1);
    std::int32_t best = std::numeric_limits<std::int32_t>::max();
    for (std::int32_t down = 0; down <= 2; ++down)
        best = std::min(best, warpedDifference(ca, columnsOf(b, down)));
    return std::min(1.0, best / (2 * total));
}

} // namespace tvx
