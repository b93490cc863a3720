#pragma once

#include <array>
#include <cstdint>
#include <optional>

namespace tvx {

class StepTrap;

// Controls inside the graph frame are placed in twips at a fixed 15 per pixel, whatever
// the display; window sizes are written back in twips the same way.
inline constexpr std::int32_t kTwipsPerPixel = 15;

// Nearest whole pixel, halves away from zero.
std::int32_t twipsToPixels(std::int32_t twips);

struct TwipSize {
    std::int32_t width = 0;
    std::int32_t height = 0;
};

struct TwipRect {
    std::int32_t left = 0;
    std::int32_t top = 0;
    std::int32_t width = 0;
    std::int32_t height = 0;

    friend bool operator==(const TwipRect&, const TwipRect&) = default;
};

// What the graph frame's layout reads: the frame in pixels, the picture's present size
// (kept when the frame is too small for a new one) and the sizes of the time labels.
struct GraphFrameInput {
    std::int32_t frameWidth = 0;  // pixels
    std::int32_t frameHeight = 0;
    TwipSize picGraph;
    TwipSize lblGraph_Tt;
    TwipSize lblGraph_Tl0;
    TwipSize lblGraph_Tl1;
};

// Positions in twips, relative to the frame.
struct GraphFrameLayout {
    std::optional<TwipRect> picGraph; // absent when the frame is too small (step failed)
    std::int32_t scaleLeftE = 0;     // lblGraph_El(0..3), lblGraph_Et
    std::int32_t scaleLeftM = 0;     // lblGraph_Ml(0..3), lblGraph_Mt
    std::array<std::int32_t, 4> scaleTop{}; // index 0 at the top (full scale)
    std::int32_t axisTitleTop = 0;   // lblGraph_Et, lblGraph_Mt
    std::int32_t lblGraph_TtLeft = 0;
    std::int32_t lblGraph_Tl0Left = 0; // centred on the picture's right edge
    std::int32_t lblGraph_Tl1Left = 0; // centred on its left edge
    std::int32_t timeLabelTop = 0;     // lblGraph_Tt and both lblGraph_Tl
};

inline constexpr TwipRect kPicGraphOrigin{570, 90, 0, 0};

GraphFrameLayout graphFrameLayout(const GraphFrameInput& input, StepTrap& trap);

// The main window's resize handling. With the graph the client area is kept at least
// 710 x 300 and the graph frame takes what the 488-pixel left panel leaves; without it
// the window is held at the panel's width.
inline constexpr std::int32_t kMinClientHeight = 300;
inline constexpr std::int32_t kWindowChromeHeight = 46; // frame and menu bar, fixed
inline constexpr std::int32_t kMinGraphClientWidth = 710;
inline constexpr std::int32_t kPanelClientWidth = 488;
inline constexpr std::int32_t kGraphFrameWidthMargin = 490;
inline constexpr std::int32_t kGraphFrameHeightMargin = 6;
inline constexpr std::int32_t kTxtLogWidth = 465;

struct FormResizeLayout {
    std::int32_t clientWidth = 0;  // pixels, after snapping back
    std::int32_t clientHeight = 0;
    // The window's outer size to write back (twips), only when it snapped back. The
    // client size is written as the outer size; the small difference is accepted.
    std::optional<std::int32_t> outerWidthTwips;
    std::optional<std::int32_t> outerHeightTwips;
    bool frmGraphVisible = false;
    std::int32_t frmGraphWidth = 0; // pixels; only when visible
    std::int32_t frmGraphHeight = 0;
    std::int32_t txtLogWidth = kTxtLogWidth;
};

FormResizeLayout formResizeLayout(std::int32_t clientWidth, std::int32_t clientHeight, bool graph);

// The debug area under the log box: shown, it stands 8 pixels above the bottom and the
// log box ends 8 pixels above it; hidden, the log box reaches 8 pixels above the bottom.
struct DebugItemLayout {
    bool frmDebugVisible = false;
    std::optional<std::int32_t> frmDebugTop;  // only when shown
    std::optional<std::int32_t> txtLogHeight; // absent when it would be negative (step failed)
};

DebugItemLayout debugItemLayout(bool show, std::int32_t clientHeight, std::int32_t frmDebugHeight,
                                std::int32_t txtLogTop, StepTrap& trap);

} // namespace tvx
