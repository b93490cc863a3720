#include "recognition/GlyphPainter.h"

#include "config/PatternColumns.h"

#include <algorithm>
#include <array>

namespace tvx {
namespace {

bool insideFrame(const Frame& frame, std::int32_t x, std::int32_t y)
{
    return x >= 0 && y >= 0 && x < frame.width() && y < frame.height();
}

void put(Frame& frame, std::int32_t x, std::int32_t y, const Bgr& colour)
{
    if (insideFrame(frame, x, y))
        frame.setPixel(x, y, colour.blue, colour.green, colour.red);
}

} // namespace

InkColors defaultInkColors(int region)
{
    // Level: white strokes on mid grey (the dark-outline mask leaves grey alone).
    // Experience: light yellow on dark blue. Money: its glyphs are inverted, so the "ink"
    // is the bright plate around dark digit strokes.
    static const std::array<InkColors, kRegionCount> colours{{
        {{255, 255, 255}, {110, 110, 110}},
        {{170, 255, 255}, {90, 40, 20}},
        {{245, 245, 245}, {40, 30, 30}},
    }};
    return colours.at(static_cast<std::size_t>(region));
}

std::string numberColumns(const PatternSet& patterns, std::string_view digits, bool withDelimiter)
{
    std::string groups;
    for (const char c : digits) {
        if (c >= '0' && c <= '9')
            groups += patterns[static_cast<std::size_t>(c - '0')];
    }
    if (withDelimiter)
        groups += patterns[kDelimiterIndex];
    return groups;
}

void paintRegionBackground(Frame& frame, const CaptureRegionRect& rect, const InkColors& colors)
{
    for (std::int32_t y = 0; y < rect.SizeY; ++y)
        for (std::int32_t x = 0; x < rect.SizeX; ++x)
            put(frame, rect.StartX + x, rect.StartY + y, colors.background);
}

std::int32_t paintColumns(Frame& frame, const CaptureRegionRect& rect, std::int32_t firstColumn,
                          std::string_view groups, const InkColors& colors)
{
    std::int32_t column = firstColumn;
    for (std::size_t i = 0; i + 4 <= groups.size(); i += 4, ++column) {
        if (column < 0 || column >= rect.SizeX)
            continue;
        int mask = 0;
        for (std::size_t k = 0; k < 4; ++k)
            mask = mask * 16 + std::max(0, hexDigitValue(groups[i + k]));
        for (std::int32_t y = 0; y < rect.SizeY; ++y) {
            const bool ink = y < 16 && (mask >> y & 1) != 0;
            put(frame, rect.StartX + column, rect.StartY + y, ink ? colors.ink : colors.background);
        }
    }
    return column;
}

void paintStatusNumbers(Frame& frame, const Settings& settings, const std::array<std::string, kRegionCount>& numbers)
{
    for (int region = 0; region < kRegionCount; ++region) {
        const auto i = static_cast<std::size_t>(region);
        const InkColors colours = defaultInkColors(region);
        paintRegionBackground(frame, settings.CaptureRegion[i], colours);
        if (!numbers[i].empty())
            paintColumns(frame, settings.CaptureRegion[i], 1 + region,
                         numberColumns(settings.PatternStrings[i], numbers[i], true), colours);
    }
}

} // namespace tvx
