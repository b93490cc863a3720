#pragma once

#include "base/Language.h"
#include "config/Settings.h"
#include "measurement/LiveFigures.h"
#include "view/PixelRect.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tvx {

// The state of the readings at a glance.
enum class ReadingState { Stopped, Waiting, Reading, Failed, Suspended, Stalled };

// One line of a live panel: a caption and its value.
struct LiveLine {
    std::string caption;
    std::string value;
};

// What the main window's live line and the compact window show, worked out once for both
// front ends.
struct LiveView {
    ReadingState state = ReadingState::Stopped;
    std::string stateText;
    std::uint32_t stateColour = 0; // 0xRRGGBB of the state's mark
    std::string levelText;         // "Lv 137  45.23％"
    std::vector<LiveLine> compact; // the compact window's lines under the level
    std::string rates;             // the main window's first live line: EXP per hour by window
    std::string outlook;           // its second: level and money per hour, the next level
};

struct LiveContext {
    bool running = false;
    bool suspended = false;
    bool stallAlarm = false; // a stall is shown only when the alarm is on
    std::int32_t nextLevelWindow = 30;
};

LiveView liveView(const LiveFigures& figures, const LiveContext& context);

inline constexpr std::string_view kCompactTitle = N_("Tallivex 小窓"); // shown through tr()
inline constexpr std::int32_t kCompactWidth = 232;
inline constexpr std::int32_t kCompactLineHeight = 18;
inline constexpr std::int32_t kCompactMargin = 6;
// Opacities the compact window offers, in percent.
inline constexpr std::array<std::int32_t, 5> kCompactOpacities{100, 90, 75, 60, 40};

// The compact window's place on a screen of the given size: where it was left, kept on the
// screen, or the top right corner the first time. Its height follows its lines.
PixelRect compactWindowRect(const Settings& settings, std::int32_t screenWidth, std::int32_t screenHeight,
                            std::size_t lines);

} // namespace tvx
