#include "view/FormMainLayout.h"

#include "graph/GraphLayout.h"

namespace tvx {
namespace {

constexpr std::int32_t kMargin = 8;
constexpr std::int32_t kTableTop = 8;
constexpr std::int32_t kRowHeight = 18;
constexpr std::int32_t kCaptionWidth = 36;
// Time, level, experience, per cent, money: wide enough for "2026/12/31 23:59:59", a level
// of three digits, and amounts of eleven digits.
constexpr std::array<std::int32_t, 5> kValueWidths{124, 28, 88, 56, 96};
constexpr std::int32_t kGap = 6;
constexpr std::int32_t kButtonHeight = 24;
constexpr std::int32_t kTxtLogTop = kTableTop + 4 * kRowHeight + kButtonHeight + 10;

} // namespace

FormMainLayout formMainLayout(std::int32_t clientHeight, bool debugMode, std::int32_t txtLogHeightBefore,
                              StepTrap& trap)
{
    FormMainLayout layout;
    std::int32_t x = kMargin + kCaptionWidth + kGap;
    for (std::size_t field = 0; field < kValueWidths.size(); ++field) {
        layout.headers[field] = {x, kTableTop, kValueWidths[field], kRowHeight};
        for (std::size_t row = 0; row < kResultRows.size(); ++row) {
            const std::int32_t top = kTableTop + static_cast<std::int32_t>(row + 1) * kRowHeight;
            layout.values[row][field] = {x, top, kValueWidths[field], kRowHeight};
            layout.rowCaptions[row] = {kMargin, top, kCaptionWidth, kRowHeight};
        }
        x += kValueWidths[field] + kGap;
    }
    const std::int32_t buttonTop = kTableTop + 4 * kRowHeight + 4;
    layout.cmdTempStop = {kMargin, buttonTop, kCaptionWidth + kGap + kValueWidths[0], kButtonHeight};
    for (std::size_t region = 0; region < 3; ++region) {
        const PixelRect& under = layout.values[0][kCaptureFields[region]];
        layout.lblCapture[region] = {under.left, buttonTop + 4, under.width, kRowHeight};
    }

    // The live lines take the foot of the panel; the log box and the debug area stand above.
    const std::int32_t aboveLive = clientHeight - kLiveLinesHeight;
    layout.lblLiveRates = {kMargin, aboveLive, kTxtLogWidth, kRowHeight};
    layout.lblLiveOutlook = {kMargin, aboveLive + kRowHeight, kTxtLogWidth, kRowHeight};
    const DebugItemLayout debug = debugItemLayout(debugMode, aboveLive, kFrmDebugHeight, kTxtLogTop, trap);
    layout.txtLog = {kMargin, kTxtLogTop, kTxtLogWidth, debug.txtLogHeight.value_or(txtLogHeightBefore)};
    layout.frmDebugVisible = debug.frmDebugVisible;
    const std::int32_t debugTop = debug.frmDebugTop.value_or(aboveLive - kFrmDebugHeight - 8);
    layout.frmDebug = {kMargin, debugTop, kTxtLogWidth, kFrmDebugHeight};
    const std::int32_t pictureWidth = (kTxtLogWidth - 4 * kGap) / 3;
    for (std::size_t region = 0; region < 3; ++region) {
        const std::int32_t left = kMargin + kGap + static_cast<std::int32_t>(region) * (pictureWidth + kGap);
        layout.picCapture[region] = {left, debugTop + kGap, pictureWidth, kButtonHeight};
    }
    const std::int32_t buttonRow = debugTop + kGap + kButtonHeight + kGap + 4;
    layout.cmdCapture = {layout.picCapture[0].left, buttonRow, pictureWidth, kButtonHeight};
    layout.cmdRecognize = {layout.picCapture[1].left, buttonRow, pictureWidth, kButtonHeight};
    layout.lblElapse = {layout.picCapture[2].left, buttonRow + 4, pictureWidth, kRowHeight};
    return layout;
}

} // namespace tvx
