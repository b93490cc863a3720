#include "config/GlyphShape.h"

#include "config/PatternColumns.h"

#include <bit>
#include <charconv>

namespace tvx {
namespace {

constexpr char kHex[] = "0123456789ABCDEF";

std::optional<std::int32_t> number(std::string_view text)
{
    std::int32_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc{} || end != text.data() + text.size() || text.empty())
        return std::nullopt;
    return value;
}

std::int32_t digitsPerRow(std::int32_t width)
{
    return (width + 3) / 4;
}

} // namespace

std::int32_t GlyphShape::ink() const
{
    std::int32_t count = 0;
    for (const std::uint64_t row : rows)
        count += std::popcount(row);
    return count;
}

std::string shapeText(const GlyphShape& shape)
{
    std::string text = std::to_string(shape.glyph) + ":" + std::to_string(shape.width) + "x" +
                       std::to_string(shape.height) + ":";
    const std::int32_t digits = digitsPerRow(shape.width);
    for (const std::uint64_t row : shape.rows)
        for (std::int32_t k = digits - 1; k >= 0; --k)
            text += kHex[(row >> (4 * k)) & 0xF];
    return text;
}

std::optional<GlyphShape> parseShape(std::string_view text)
{
    const std::size_t first = text.find(':');
    const std::size_t second = first == std::string_view::npos ? first : text.find(':', first + 1);
    if (second == std::string_view::npos)
        return std::nullopt;
    const std::string_view size = text.substr(first + 1, second - first - 1);
    const std::size_t by = size.find('x');
    const auto glyph = number(text.substr(0, first));
    const auto width = by == std::string_view::npos ? std::nullopt : number(size.substr(0, by));
    const auto height = by == std::string_view::npos ? std::nullopt : number(size.substr(by + 1));
    if (!glyph || !width || !height || *glyph < 0 || *glyph >= kShapeGlyphCount || *width < 1 ||
        *width > kMaxShapeWidth || *height < 1 || *height > kMaxShapeHeight)
        return std::nullopt;
    const std::string_view hex = text.substr(second + 1);
    const std::int32_t digits = digitsPerRow(*width);
    if (hex.size() != static_cast<std::size_t>(digits) * static_cast<std::size_t>(*height))
        return std::nullopt;
    GlyphShape shape{*glyph, *width, *height, {}};
    for (std::size_t y = 0; y < static_cast<std::size_t>(*height); ++y) {
        std::uint64_t row = 0;
        for (std::size_t k = 0; k < static_cast<std::size_t>(digits); ++k) {
            const int value = hexDigitValue(hex[y * static_cast<std::size_t>(digits) + k]);
            if (value < 0)
                return std::nullopt;
            row = row << 4 | static_cast<std::uint64_t>(value);
        }
        if (row >> *width)
            return std::nullopt;
        shape.rows.push_back(row);
    }
    return shape;
}

std::string shapesText(const std::vector<GlyphShape>& shapes)
{
    std::string text;
    for (const GlyphShape& shape : shapes) {
        if (!text.empty())
            text += ' ';
        text += shapeText(shape);
    }
    return text;
}

std::optional<std::vector<GlyphShape>> parseShapes(std::string_view text)
{
    std::vector<GlyphShape> shapes;
    std::size_t at = 0;
    while (at < text.size()) {
        if (text[at] == ' ') {
            ++at;
            continue;
        }
        const std::size_t end = std::min(text.find(' ', at), text.size());
        auto shape = parseShape(text.substr(at, end - at));
        if (!shape)
            return std::nullopt;
        shapes.push_back(*std::move(shape));
        at = end;
    }
    return shapes;
}

} // namespace tvx
