#pragma once

#include "config/Settings.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tvx {

// No screen is wider or taller; a region or glyph beyond it cannot be meant.
inline constexpr std::int32_t kMaxScreenSide = 16384;
// Rows a region may have: glyphs of a 4K screen or a scaled UI are read whole by shape.
inline constexpr std::int32_t kMaxRegionRows = 256;
// Pixels of the largest region: a screen-wide line of text of 62 rows.
inline constexpr std::int64_t kMaxRegionCells = std::int64_t{kMaxScreenSide + 1} * 62;

// The ranges of our settings after the 60 lines; a value outside keeps the default.
inline constexpr std::pair<std::int32_t, std::int32_t> kStallMinutesRange{1, 600};
inline constexpr std::pair<std::int32_t, std::int32_t> kCompactOpacityRange{20, 100};
inline constexpr std::array<std::int32_t, 4> kRateWindowChoices{10, 30, 60, 0};

// What a value outside its range read from the configuration file means.
enum class OutOfRange {
    Damaged, // the file is damaged: back-up, the unreadable-file message, defaults
    Clamped, // the nearest bound is taken, with a line in the debug log
};

struct SettingRange {
    std::string_view name; // "#" stands for the region, numbered as the user sees it
    std::size_t count; // 1, or one value per region
    std::int32_t& (*field)(Settings&, std::size_t index);
    std::int32_t low;
    std::int32_t high;
    OutOfRange rule;
};

// Every integer setting with its valid range and rule. Two texts are checked as well:
// PatternStrings(r, 0..10) are raised to upper case; one that is empty, not hexadecimal or
// not 4 x ReferenceSize(r).Width digits long is kept as it is (the region then reads only
// what its whole templates can tell) and logged; SaveFormat must be one of the four image
// formats (anything else becomes ".png" and is logged).
std::span<const SettingRange> settingRanges();

// "Lag", "BinaryThreshold(2)", "CaptureRegion(1).SizeX".
std::string settingName(const SettingRange& range, std::size_t index);

// Applies the ranges to settings just read. Clamps what may be clamped and returns one
// debug-log line per clamped value; a value that marks the file as damaged raises
// RuntimeError naming the setting.
std::vector<std::string> enforceSettingRanges(Settings& settings);

} // namespace tvx
