#include "recognition/ShapeReader.h"

#include <algorithm>
#include <array>
#include <bit>
#include <limits>
#include <optional>

namespace tvx {
namespace {

// How much nearer to its glyph than to any other a piece must be.
constexpr double kClearRatio = 2.0;
constexpr double kClearMargin = 0.02;
constexpr double kWholeSetShare = 0.5;
constexpr double kUntaughtShare = 0.5;
constexpr double kWholeSetRatio = 1.5;
// Pieces this near a shape may be told from its close neighbour by the pixels between them.
constexpr double kCloseDistance = 0.12;

constexpr int kGroup = 3;

std::string glyphLabel(int glyph)
{
    if (glyph >= 0 && glyph < 10)
        return std::to_string(glyph);
    switch (glyph) {
    case kShapeEndMark: return "end";
    case kShapeSeparator: return "separator";
    case kShapeOther: return "label";
    default: return "?";
    }
}

bool groupedInThrees(const std::vector<std::size_t>& groups)
{
    if (groups.size() < 2)
        return true;
    if (groups.front() < 1 || groups.front() > kGroup)
        return false;
    return std::all_of(groups.begin() + 1, groups.end(), [](std::size_t n) { return n == kGroup; });
}

ShapeReading failed(ShapeReading reading, ShapeFailure why, std::int32_t column, std::string line)
{
    reading.digits.clear();
    reading.failure = why;
    reading.column = column;
    reading.trace.push_back(std::move(line));
    return reading;
}

} // namespace

std::int32_t cellsIn(const InkPiece& piece, std::int32_t pitch)
{
    if (pitch <= 0)
        return 1;
    return std::max(1, static_cast<std::int32_t>((100 * (piece.right - piece.left) + pitch / 2) / pitch));
}

std::int32_t edgeRoom(std::int32_t innerGap)
{
    return std::max(2, innerGap + 1);
}

double toleranceOf(const RegionReading& reading)
{
    return reading.Tolerance / 1000.0;
}

namespace {

// The shape's rows in a frame of the given height, moved right by x and down by y.
std::vector<std::uint64_t> placedRows(const GlyphShape& s, std::int32_t frameHeight, std::int32_t x, std::int32_t y)
{
    std::vector<std::uint64_t> rows(static_cast<std::size_t>(frameHeight), 0);
    for (std::int32_t r = 0; r < s.height; ++r)
        rows[static_cast<std::size_t>(r + y)] = s.rows[static_cast<std::size_t>(r)] << x;
    return rows;
}

// Where a piece lies between two glyphs that differ by a stroke or so: on the pixels where
// their shapes differ in blocks (not along an edge, which a pixel of smoothing moves), the
// piece must agree with the first almost everywhere.
bool sidesWith(const GlyphShape& piece, const GlyphShape& first, const GlyphShape& second)
{
    constexpr std::int32_t kMargin = 2;
    constexpr std::int32_t kLeastBlock = 4;
    constexpr double kAgreement = 0.85;
    const std::int32_t width = std::max({piece.width, first.width, second.width}) + 2 * kMargin;
    const std::int32_t height = std::max({piece.height, first.height, second.height}) + 2 * kMargin;
    if (width > 64)
        return false;
    const auto centred = [&](const GlyphShape& s, std::int32_t dx, std::int32_t dy) {
        return placedRows(s, height, kMargin + (width - 2 * kMargin - s.width) / 2 + dx,
                          kMargin + (height - 2 * kMargin - s.height) / 2 + dy);
    };
    const std::vector<std::uint64_t> p = centred(piece, 0, 0);
    const auto aligned = [&](const GlyphShape& s) {
        std::vector<std::uint64_t> best;
        std::int32_t fewest = std::numeric_limits<std::int32_t>::max();
        for (std::int32_t dy = -1; dy <= 1; ++dy)
            for (std::int32_t dx = -1; dx <= 1; ++dx) {
                std::vector<std::uint64_t> rows = centred(s, dx, dy);
                std::int32_t differ = 0;
                for (std::size_t y = 0; y < rows.size(); ++y)
                    differ += std::popcount(rows[y] ^ p[y]);
                if (differ < fewest) {
                    fewest = differ;
                    best = std::move(rows);
                }
            }
        return best;
    };
    const std::vector<std::uint64_t> a = aligned(first);
    const std::vector<std::uint64_t> b = aligned(second);
    std::int32_t block = 0;
    std::int32_t agree = 0;
    for (std::size_t y = 1; y + 1 < p.size(); ++y) {
        const std::uint64_t d = a[y] ^ b[y];
        const std::uint64_t vertical = (a[y - 1] ^ b[y - 1]) | (a[y + 1] ^ b[y + 1]);
        const std::uint64_t solid = d & vertical & (d << 1 | d >> 1);
        block += std::popcount(solid);
        agree += std::popcount(solid & ~(p[y] ^ a[y]));
    }
    return block >= kLeastBlock && agree >= kAgreement * block;
}

} // namespace

ShapeMatch matchShape(const GlyphShape& piece, const std::vector<GlyphShape>& shapes, double tolerance)
{
    std::array<double, kShapeGlyphCount> nearest;
    std::array<const GlyphShape*, kShapeGlyphCount> nearestShape{};
    nearest.fill(kIncomparable);
    std::array<bool, 10> digitTaught{};
    for (const GlyphShape& shape : shapes) {
        if (shape.glyph < 0 || shape.glyph >= kShapeGlyphCount)
            continue;
        if (shape.glyph < 10)
            digitTaught[static_cast<std::size_t>(shape.glyph)] = true;
        const double d = shapeDistance(piece, shape);
        if (d < nearest[static_cast<std::size_t>(shape.glyph)]) {
            nearest[static_cast<std::size_t>(shape.glyph)] = d;
            nearestShape[static_cast<std::size_t>(shape.glyph)] = &shape;
        }
    }
    ShapeMatch match;
    for (int g = 0; g < kShapeGlyphCount; ++g) {
        const double d = nearest[static_cast<std::size_t>(g)];
        if (d < match.distance) {
            match.runnerUp = match.distance;
            match.distance = d;
            match.glyph = g;
        } else if (d < match.runnerUp) {
            match.runnerUp = d;
        }
    }
    if (match.distance >= kIncomparable) {
        match.glyph = -1;
        return match;
    }
    // With every digit taught, the shape matched may be strayed from by half of what sets
    // it apart from every other glyph's shapes: nearer that, the piece is nearer to it.
    // Until then a digit not taught may look like one that was, or like the end mark: only
    // a piece close to a shape taught is taken for it.
    double allowed = kUntaughtShare * tolerance;
    if (std::all_of(digitTaught.begin(), digitTaught.end(), [](bool t) { return t; })) {
        allowed = tolerance;
        const GlyphShape& matched = *nearestShape[static_cast<std::size_t>(match.glyph)];
        double apart = kIncomparable;
        for (const GlyphShape& shape : shapes)
            if (shape.glyph != matched.glyph)
                apart = std::min(apart, shapeDistance(matched, shape));
        allowed = std::max(allowed, kWholeSetShare * apart);
    }
    const bool everyDigit = allowed > tolerance * kUntaughtShare;
    const double ratio = everyDigit ? kWholeSetRatio : kClearRatio;
    match.clear = match.distance <= allowed && match.runnerUp > tolerance &&
                  match.runnerUp >= ratio * match.distance + kClearMargin;
    // Digits a stroke apart, every digit taught: the pixels that tell the nearest from each
    // of the others as near decide, and none of those may be anything but a digit.
    if (!match.clear && everyDigit && match.glyph < 10 && match.distance <= kCloseDistance) {
        const GlyphShape& nearestOne = *nearestShape[static_cast<std::size_t>(match.glyph)];
        bool told = true;
        for (int g = 0; g < kShapeGlyphCount && told; ++g) {
            const double d = nearest[static_cast<std::size_t>(g)];
            if (g == match.glyph || d >= ratio * match.distance + kClearMargin)
                continue;
            const GlyphShape& other = *nearestShape[static_cast<std::size_t>(g)];
            told = g < 10 && sidesWith(piece, nearestOne, other) && !sidesWith(piece, other, nearestOne);
        }
        match.clear = told;
    }
    return match;
}

namespace {

struct MatchedPiece {
    InkPiece piece;
    ShapeMatch match;
};

double nearestDistance(const GlyphShape& shape, const std::vector<GlyphShape>& shapes)
{
    double nearest = kIncomparable;
    for (const GlyphShape& s : shapes)
        nearest = std::min(nearest, shapeDistance(shape, s));
    return nearest;
}

// Equal shares of a piece of touching digits can be a column off where the ends of the piece
// were smoothed: each cut moves by a column where the cells on either side then look more
// like glyphs taught.
std::vector<InkPiece> refinedCells(const InkGrid& grid, std::vector<InkPiece> cells, const std::vector<GlyphShape>& shapes)
{
    for (std::size_t i = 1; i < cells.size(); ++i) {
        InkPiece& before = cells[i - 1];
        InkPiece& after = cells[i];
        std::int32_t bestCut = after.left;
        double best = kIncomparable * 2;
        for (std::int32_t cut = after.left - 1; cut <= after.left + 1; ++cut) {
            if (cut <= before.left + 1 || cut >= after.right - 1)
                continue;
            const double cost = nearestDistance(cellPiece(grid, before.left, cut).shape, shapes) +
                                nearestDistance(cellPiece(grid, cut, after.right).shape, shapes);
            if (cost < best - 1e-9) {
                best = cost;
                bestCut = cut;
            }
        }
        before = cellPiece(grid, before.left, bestCut);
        after = cellPiece(grid, bestCut, after.right);
    }
    return cells;
}

// The pieces with what each is nearest to, a piece too wide for any one glyph cut into cells.
std::vector<MatchedPiece> matchedPieces(const InkGrid& grid, const RegionReading& reading)
{
    const double tolerance = toleranceOf(reading);
    std::vector<MatchedPiece> out;
    for (const InkPiece& piece : inkPieces(grid)) {
        // Touching digits, cut as they were when taught.
        const std::int32_t count = cellsIn(piece, reading.Pitch);
        std::vector<InkPiece> cells = count > 1 ? splitPiece(grid, piece, count) : std::vector<InkPiece>{};
        if (count > 1 && cells.size() == static_cast<std::size_t>(count)) {
            for (const InkPiece& cell : refinedCells(grid, std::move(cells), reading.Shapes))
                out.push_back({cell, matchShape(cell.shape, reading.Shapes, tolerance)});
            continue;
        }
        out.push_back({piece, matchShape(piece.shape, reading.Shapes, tolerance)});
    }
    return out;
}

} // namespace

ShapeReading readShapes(const InkGrid& grid, const RegionReading& reading)
{
    ShapeReading out;
    std::vector<std::size_t> groups;
    bool inNumber = false;
    bool separatorPending = false;
    std::int32_t lastRight = 0;
    std::int32_t innerGap = 0;
    const auto endsByGap = [&](std::int32_t nextLeft) {
        return reading.EndGap > 0 && nextLeft - lastRight >= reading.EndGap;
    };
    bool endedByGap = false;
    for (const auto& [piece, match] : matchedPieces(grid, reading)) {
        if (inNumber && !separatorPending && endsByGap(piece.left)) {
            endedByGap = true;
            break;
        }
        out.trace.push_back(std::to_string(piece.left) + ":" + glyphLabel(match.glyph) + (match.clear ? "" : "?"));
        if (!match.clear) {
            // Before the number an unclear piece could be its first digit.
            return failed(std::move(out), ShapeFailure::Unclear, piece.left, " 字形不明 ");
        }
        const int g = match.glyph;
        if (inNumber)
            innerGap = std::max(innerGap, piece.left - lastRight);
        else {
            if (g >= 10)
                continue; // a label, or what ends a number before this one
            inNumber = true;
            groups.push_back(0);
        }
        if (g < 10) {
            out.digits += static_cast<char>('0' + g);
            ++groups.back();
            separatorPending = false;
        } else if (g == kShapeSeparator && !separatorPending) {
            groups.push_back(0);
            separatorPending = true;
        } else if (g == kShapeEndMark && !separatorPending) {
            if (!groupedInThrees(groups))
                return failed(std::move(out), ShapeFailure::Grouping, piece.left, " 桁区切り不正 ");
            out.trace.push_back(" 認識:デリミタ");
            return out;
        } else {
            return failed(std::move(out), ShapeFailure::Unclear, piece.left, " 字形不明 ");
        }
        lastRight = piece.right;
    }
    if (!inNumber)
        return failed(std::move(out), ShapeFailure::NoDigit, -1, " 数値が見つかりませんでした");
    // The region's edge ends the number when the player left room after it: more blank
    // than inside the number, and at least two columns.
    if (!endedByGap && (separatorPending || reading.EndGap == 0 || grid.width() - lastRight < edgeRoom(innerGap)))
        return failed(std::move(out), ShapeFailure::NoEnd, lastRight, " デリミタ未検出 ");
    if (!groupedInThrees(groups))
        return failed(std::move(out), ShapeFailure::Grouping, lastRight, " 桁区切り不正 ");
    out.trace.push_back(" 認識:空白");
    return out;
}

RecognitionResult shapeRecognition(int region, const InkGrid& grid, const RegionReading& reading, bool trace)
{
    ShapeReading read = readShapes(grid, reading);
    RecognitionResult result;
    result.digits = read.digits;
    if (!read.digits.empty())
        result.caption = read.digits;
    else
        result.caption = read.failure == ShapeFailure::NoDigit ? kCaptionNotFound : kCaptionFailed;
    if (trace) {
        std::string line = "category" + std::to_string(region) + " 字形 :";
        for (const std::string& step : read.trace)
            line += " " + step;
        result.trace.push_back(std::move(line));
    }
    return result;
}

std::string missingShapeDigits(const RegionReading& reading)
{
    std::string missing;
    for (int d = 0; d < 10; ++d)
        if (std::none_of(reading.Shapes.begin(), reading.Shapes.end(),
                         [d](const GlyphShape& s) { return s.glyph == d; }))
            missing += static_cast<char>('0' + d);
    return missing;
}

} // namespace tvx
