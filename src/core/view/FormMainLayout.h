#pragma once

#include "base/Language.h"
#include "view/PixelRect.h"

#include <array>
#include <cstdint>
#include <string_view>

namespace tvx {

class StepTrap;

// The account's table: a header row, then one row each for start, end and increase,
// whose labels are named prefix + field ("lblStartLv", "lblElapseMoney", ...).
// Captions are Japanese, shown through tr().
inline constexpr std::array<std::string_view, 5> kResultHeaders{N_("時刻"), N_("Lv"), N_("Exp"), N_("％"), N_("メル")};
inline constexpr std::array<std::string_view, 5> kResultFields{"Time", "Lv", "Exp", "ExpPS", "Money"};
struct ResultRowDesign {
    std::string_view caption;
    std::string_view prefix;
};
inline constexpr std::array<ResultRowDesign, 3> kResultRows{
    {{N_("開始"), "lblStart"}, {N_("終了"), "lblEnd"}, {N_("増加"), "lblElapse"}}};
// The capture regions read level, experience and money; each one's caption stands under
// its own column of the account.
inline constexpr std::array<std::size_t, 3> kCaptureFields{1, 2, 4};
inline constexpr std::string_view kTempStopCaption = N_("一時停止");
inline constexpr std::string_view kTestCaptureCaption = N_("テストキャプチャ");
inline constexpr std::string_view kTestRecognizeCaption = N_("テスト認識");

// The left panel of the main window in pixels of its client area: the account, the test
// pause button with the recogniser's captions beside it, the log box and, in debug mode,
// the debug area under it with the capture previews and the test buttons.
struct FormMainLayout {
    std::array<PixelRect, 5> headers;
    std::array<PixelRect, 3> rowCaptions;
    std::array<std::array<PixelRect, 5>, 3> values; // [row][field]
    PixelRect cmdTempStop;
    std::array<PixelRect, 3> lblCapture;
    PixelRect txtLog;
    bool frmDebugVisible = false;
    PixelRect frmDebug;
    std::array<PixelRect, 3> picCapture; // inside frmDebug's place, in client pixels
    PixelRect cmdCapture;
    PixelRect cmdRecognize;
    PixelRect lblElapse;
    // The live figures, two lines at the foot of the panel: EXP per hour by window, then
    // level and money per hour and the next level.
    PixelRect lblLiveRates;
    PixelRect lblLiveOutlook;
};

inline constexpr std::int32_t kFrmDebugHeight = 72;
inline constexpr std::int32_t kLiveLinesHeight = 2 * 18 + 2;

// The log box keeps its last height when the window is too low for a positive one.
FormMainLayout formMainLayout(std::int32_t clientHeight, bool debugMode, std::int32_t txtLogHeightBefore,
                              StepTrap& trap);

} // namespace tvx
