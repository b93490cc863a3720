#pragma once

#include "config/GlyphShape.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace tvx {

inline constexpr int kRegionCount = 3;   // 0 level, 1 experience, 2 money
inline constexpr int kPatternCount = 11; // digits 0..9 and the region's delimiter
inline constexpr int kDelimiterIndex = 10;

enum Region : int { RegionLevel = 0, RegionExp = 1, RegionMoney = 2 };

struct CaptureRegionRect {
    std::int32_t StartX = 0;
    std::int32_t StartY = 0;
    std::int32_t SizeX = 0;
    std::int32_t SizeY = 0;

    friend bool operator==(const CaptureRegionRect&, const CaptureRegionRect&) = default;
};

struct ReferenceCellSize {
    std::int32_t Width = 0;
    std::int32_t Height = 0;

    friend bool operator==(const ReferenceCellSize&, const ReferenceCellSize&) = default;
};

struct StartUpEntry {
    bool Enabled = false;
    std::string Path;

    friend bool operator==(const StartUpEntry&, const StartUpEntry&) = default;
};

// Whether the game runs full-screen or in a window; a window adds its frame to every region.
enum class ScreenMode { FullScreen, Window };

using PatternSet = std::array<std::string, kPatternCount>;

// How the screen is taken: copied directly (no Lag, the clipboard is left alone), or by
// pressing Print Screen and taking the clipboard's bitmap after Lag.
enum class CaptureMethod : std::int32_t { Direct = 0, PrintScreen = 1 };

// How a region's digits are matched: the exact walk over 16-row column groups with one
// template per digit, or by shape, for glyphs that differ by a pixel from one place to
// another (scaled or smoothed UIs, lossy pictures) or are taller than 16 rows.
enum class ReadingMode : std::int32_t { Exact = 0, Shapes = 1 };

struct RegionReading {
    ReadingMode Mode = ReadingMode::Exact;
    // Shapes: blank columns after a digit that end the number (0: only an end mark does).
    std::int32_t EndGap = 0;
    // Exact: the thousands separator's columns once learnt (the walk steps over it).
    std::string Separator;
    // Shapes: the columns from one digit to the next (in hundredths) where digits touch, so
    // that a piece of several is cut as it was when taught (0: none seen).
    std::int32_t Pitch = 0;
    // Shapes: how unlike a taught shape (in thousandths) a glyph may be and still be it.
    std::int32_t Tolerance = 0;
    // Shapes: every way each glyph was seen drawn.
    std::vector<GlyphShape> Shapes;

    friend bool operator==(const RegionReading&, const RegionReading&) = default;
};

// A window position not chosen yet.
inline constexpr std::int32_t kUnplaced = -32768;

// The one settings record. Regions are indexed 0..2 here; the user sees them as 1..3.
struct Settings {
    std::array<CaptureRegionRect, kRegionCount> CaptureRegion{};
    bool AutoStart = true;
    std::int32_t CaptureInterval = 6; // minutes
    std::int32_t CaptureBeep = 0;     // 0 silent, 1..5 a sound
    std::string SaveFolder;
    std::string SaveFile = "給与明細";
    bool SaveCsv = false;
    bool SaveMonthly = true;
    std::int32_t Lag = 500;        // milliseconds
    std::int32_t StartDelay = 15;  // seconds
    std::array<StartUpEntry, 2> StartUp{};
    std::int32_t StartUpDelay = 15; // seconds
    bool DoHLCheckExec = false;
    std::int32_t DoHLInterval = 1000; // milliseconds
    std::string SaveFormat = ".png";
    bool Gesture = false;
    std::int32_t GestureTime = 500; // milliseconds
    bool MoneyScan = false;
    std::int32_t MoneyWait = 1500; // milliseconds
    bool Graph = true;
    std::int32_t GraphTimeScale = 20;
    std::int32_t GraphAveNum = 10;
    std::array<std::int32_t, kRegionCount> BinaryThreshold{188, 133, 223};
    std::array<std::int32_t, kRegionCount> BinaryMask{34, -1, -1};
    std::array<ReferenceCellSize, kRegionCount> ReferenceSize{{{7, 9}, {5, 9}, {7, 9}}};
    std::array<PatternSet, kRegionCount> PatternStrings{};
    std::string SearchWindowName = "MapleStory";
    // Ours, stored after the 60 lines where an older reader never looks.
    CaptureMethod ScreenCapture = CaptureMethod::Direct;
    std::array<RegionReading, kRegionCount> Reading{};
    // The stall alarm: off by default; minutes without a valid reading or a gain.
    bool StallAlarm = false;
    std::int32_t StallMinutes = 15;
    // The rate window the time to the next level is taken at: 10, 30, 60 minutes, 0 the session.
    std::int32_t NextLevelWindow = 30;
    // The compact window: where it was left (kUnplaced until moved), how opaque (percent), and
    // whether it was open when the meter closed.
    std::int32_t CompactX = kUnplaced;
    std::int32_t CompactY = kUnplaced;
    std::int32_t CompactOpacity = 90;
    bool CompactShown = false;
    // The windows' language ("ja", "en", "ko"); empty until the first start chose the system's.
    std::string UiLanguage;

    friend bool operator==(const Settings&, const Settings&) = default;
};

// Makes the configured language the current one; with none configured, the system locale's,
// which the settings then keep.
void applyLanguage(Settings& settings, std::string_view systemLocale);

inline constexpr std::string_view kVersionText = "Ver.2.20";

// "Tallivex  for " + window name: the program's name as the version window heads it.
std::string programName(std::string_view searchWindowName);
// The name + four blanks + version; rebuilt after every load.
std::string programTitle(std::string_view searchWindowName);

const std::array<PatternSet, kRegionCount>& defaultPatternStrings();
std::array<CaptureRegionRect, kRegionCount> defaultCaptureRegions(ScreenMode mode);

// A record holding every default; the regions follow the given screen mode.
Settings defaultSettings(std::string_view programFolder, ScreenMode mode = ScreenMode::FullScreen);

// Restores every default except SearchWindowName, which keeps its value.
void restoreDefaults(Settings& settings, std::string_view programFolder, ScreenMode mode);

// Resets what the older settings file never held: the regions and the recognition
// parameters (thresholds, masks, reference sizes, templates).
void resetRecognitionDefaults(Settings& settings, ScreenMode mode);

} // namespace tvx
