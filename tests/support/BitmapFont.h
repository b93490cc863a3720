#pragma once

#include "config/PatternColumns.h"
#include "support/GameScreen.h"

#include <string_view>
#include <vector>

namespace tvx::test {

// A digit font the program has never shipped: five columns of ink in rows 1 to 7 and one of spacing (a pitch
// of 6 where the built-in fonts have 7 and 5), a comma between thousands, and "]" ending a number.
inline constexpr std::int32_t kFontPitch = 6;

inline std::vector<std::uint16_t> glyphFromRows(const std::array<std::string_view, 7>& rows, std::size_t spacing)
{
    std::vector<std::uint16_t> columns(rows[0].size() + spacing, 0);
    for (std::size_t y = 0; y < rows.size(); ++y)
        for (std::size_t x = 0; x < rows[y].size(); ++x)
            if (rows[y][x] == '#')
                columns[x] = static_cast<std::uint16_t>(columns[x] | (1u << (y + 1)));
    return columns;
}

inline std::vector<std::uint16_t> fontGlyph(char c)
{
    static const std::array<std::array<std::string_view, 7>, 10> digits{{
        {".###.", "#...#", "#..##", "#.#.#", "##..#", "#...#", ".###."},
        {"..#..", ".##..", "..#..", "..#..", "..#..", "..#..", ".###."},
        {".###.", "#...#", "....#", "...#.", "..#..", ".#...", "#####"},
        {"####.", "....#", "....#", ".###.", "....#", "....#", "####."},
        {"...#.", "..##.", ".#.#.", "#..#.", "#####", "...#.", "...#."},
        {"#####", "#....", "####.", "....#", "....#", "#...#", ".###."},
        {"..##.", ".#...", "#....", "####.", "#...#", "#...#", ".###."},
        {"#####", "....#", "...#.", "..#..", ".#...", ".#...", ".#..."},
        {".###.", "#...#", "#...#", ".###.", "#...#", "#...#", ".###."},
        {".###.", "#...#", "#...#", ".####", "....#", "...#.", ".##.."},
    }};
    if (c >= '0' && c <= '9')
        return glyphFromRows(digits[static_cast<std::size_t>(c - '0')], 1);
    if (c == ']')
        return glyphFromRows({"###", "..#", "..#", "..#", "..#", "..#", "###"}, 1);
    if (c == ',') // below the digits' baseline: rows 7 and 8
        return {static_cast<std::uint16_t>(0x180), 0};
    return std::vector<std::uint16_t>(kFontPitch, 0); // a blank
}

// Writes a text in the font ("1,234]") into a region, from column `first` on, in the region's colours.
inline void paintFontText(Frame& frame, const CaptureRegionRect& rect, int region, std::int32_t first,
                          std::string_view text)
{
    std::vector<std::uint16_t> columns;
    for (const char c : text) {
        const std::vector<std::uint16_t> glyph = fontGlyph(c);
        columns.insert(columns.end(), glyph.begin(), glyph.end());
    }
    const InkColors colours = defaultInkColors(region);
    paintRegionBackground(frame, rect, colours);
    paintColumns(frame, rect, first, encodePatternColumns(columns), colours);
}

// A noisy screen, the default full-screen regions written in the font with the end mark ("" leaves one blank).
inline Frame fontScreen(const std::array<std::string, kRegionCount>& texts, std::uint32_t seed = 1)
{
    Frame frame = gameScreen({"", "", ""}, ScreenMode::FullScreen, seed, 800, 600);
    const Settings settings = defaultSettings("");
    for (int r = 0; r < kRegionCount; ++r) {
        const auto i = static_cast<std::size_t>(r);
        paintFontText(frame, settings.CaptureRegion[i], r, 2 + r, texts[i].empty() ? "" : texts[i] + "]");
    }
    return frame;
}

} // namespace tvx::test
