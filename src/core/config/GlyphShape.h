#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tvx {

// Glyph indices of a shape set: the digits, the end mark, the thousands separator and ink
// that is no part of a number (a label before it).
inline constexpr int kShapeEndMark = 10;
inline constexpr int kShapeSeparator = 11;
inline constexpr int kShapeOther = 12;
inline constexpr int kShapeGlyphCount = 13;
// Wider ink is no glyph: a shape's row is one 64-bit word, with room to shift it.
inline constexpr std::int32_t kMaxShapeWidth = 60;
inline constexpr std::int32_t kMaxShapeHeight = 256;

// One glyph as drawn once, cut to its ink: row y, bit x set where column x is ink.
struct GlyphShape {
    std::int32_t glyph = 0;
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::vector<std::uint64_t> rows;

    std::int32_t ink() const;
    friend bool operator==(const GlyphShape&, const GlyphShape&) = default;
};

// "G:WxH:" and the rows, each as ceil(W/4) hexadecimal digits, bit 0 in the last digit.
std::string shapeText(const GlyphShape& shape);
// nullopt for anything else, a size out of range or ink outside the width.
std::optional<GlyphShape> parseShape(std::string_view text);

// A list of shapes as one line, separated by blanks; nullopt when any shape is malformed.
std::string shapesText(const std::vector<GlyphShape>& shapes);
std::optional<std::vector<GlyphShape>> parseShapes(std::string_view text);

} // namespace tvx
