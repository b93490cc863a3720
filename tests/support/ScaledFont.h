#pragma once

#include "support/BitmapFont.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace tvx::test {

// How a UI draws the test font: scaled, from a sub-pixel origin, smoothed or not, optionally another "1".
struct ScaledDrawing {
    double scale = 1.0;
    double originX = 0.0; // screen columns from the region's left edge
    double originY = 0.0;
    bool smooth = false;
    bool narrowOne = false; // "1" three columns wide instead of five
    std::string_view label; // ink before the number, as columns of the font ("" for none)
    bool builtIn = false;   // the meter's own experience glyphs, which touch: no spacing columns
};

// A mid-grey screen with the text in one region, light on dark: bit y of column x covers [x, x+1) x [y, y+1).
inline CaptureBitmap scaledScreen(const CaptureRegionRect& rect, std::string_view text, const ScaledDrawing& how)
{
    static const std::map<char, std::array<std::string_view, 7>> letters{
        {'E', {"####", "#...", "#...", "###.", "#...", "#...", "####"}},
        {'X', {"#...#", "#...#", ".#.#.", "..#..", ".#.#.", "#...#", "#...#"}},
        {'P', {"####.", "#...#", "#...#", "####.", "#....", "#....", "#...."}},
        {':', {".", "#", ".", ".", ".", "#", "."}},
    };
    std::vector<std::uint16_t> columns;
    for (const char c : text) {
        std::vector<std::uint16_t> glyph = letters.contains(c) ? glyphFromRows(letters.at(c), 1) : fontGlyph(c);
        if (how.builtIn && ((c >= '0' && c <= '9') || c == ']'))
            glyph = *decodePatternColumns(
                defaultPatternStrings()[RegionExp][c == ']' ? kDelimiterIndex : static_cast<std::size_t>(c - '0')]);
        if (c == '1' && how.narrowOne)
            glyph = glyphFromRows({".#", "##", ".#", ".#", ".#", ".#", ".#"}, 1);
        columns.insert(columns.end(), glyph.begin(), glyph.end());
    }
    const auto ink = [&](double fx, double fy) {
        const auto x = static_cast<std::int64_t>(std::floor(fx));
        const auto y = static_cast<std::int64_t>(std::floor(fy));
        if (x < 0 || y < 0 || y > 15 || x >= static_cast<std::int64_t>(columns.size()))
            return 0.0;
        return static_cast<double>(columns[static_cast<std::size_t>(x)] >> y & 1);
    };
    Frame frame(rect.StartX + rect.SizeX + 8, rect.StartY + rect.SizeY + 8);
    std::fill(frame.bytes().begin(), frame.bytes().end(), std::uint8_t{90});
    // Smoothed, the coverage of a 4 x 4 grid of samples; else the pixel's centre alone.
    const int samples = how.smooth ? 4 : 1;
    for (std::int32_t y = 0; y < rect.SizeY; ++y)
        for (std::int32_t x = 0; x < rect.SizeX; ++x) {
            double cover = 0;
            for (int sy = 0; sy < samples; ++sy)
                for (int sx = 0; sx < samples; ++sx)
                    cover += ink((x + (sx + 0.5) / samples - how.originX) / how.scale,
                                 (y + (sy + 0.5) / samples - how.originY) / how.scale);
            const auto level = static_cast<std::uint8_t>(std::lround(30 + cover * 210 / (samples * samples)));
            frame.setPixel(rect.StartX + x, rect.StartY + y, level, level, level);
        }
    return toCaptureBitmap(frame);
}

} // namespace tvx::test
