#pragma once

#include "base/Currency.h"

#include <array>
#include <cstdint>
#include <string>

namespace tvx {

class StepTrap;

// The full scale of the value axis for a maximum rate: the first step the amount is
// strictly below, 100000 above 100000, and 0 (series not drawn) from 95000 to 100000.
Currency ScaleStep(Currency amount);

// The values the four scale labels mark, top (full scale) to bottom (a quarter).
std::array<Currency, 4> scaleMarks(Currency scale);

// Left column: "     #,##0" cut to its last six characters, so right-aligned in six.
std::string expScaleLabel(Currency value);
// Right column: "#,##0", not cut.
std::string moneyScaleLabel(Currency value);

// "経過時間(N分間隔)" with N the minutes per vertical grid division (a quarter of the
// graph). Throws RuntimeError(Overflow) when the minutes leave 32 bits.
std::string timeAxisTitle(std::int32_t captureInterval, std::int32_t timeScale);
// The same for captures every few seconds (a demonstration's interval): "経過時間(N秒間隔)",
// or the minutes form when a division is whole minutes.
std::string timeAxisTitleSeconds(std::int32_t captureSeconds, std::int32_t timeScale);

// Texts and scales of one redraw. A failing step leaves its defaults (0, empty).
struct GraphScaleTexts {
    Currency maxE;
    Currency maxM;
    std::string lblGraph_Tt;
    std::array<std::string, 4> lblGraph_El;
    std::array<std::string, 4> lblGraph_Ml;
};

// captureSeconds, when above 0, stands for the interval in place of captureInterval minutes.
GraphScaleTexts graphScaleTexts(Currency maxRateE, Currency maxRateM, float zoom, std::int32_t captureInterval,
                                std::int32_t timeScale, StepTrap& trap, std::int32_t captureSeconds = 0);

// Zoom clicks: one tenth per click, computed in double and kept in single precision,
// within 0.2 .. 2.0.
inline constexpr float kZoomMax = 2.0f;
inline constexpr float kZoomMin = 0.2f;
float zoomIn(float zoom);
float zoomOut(float zoom);

// Time-shift clicks: a quarter of the visible entries per click. Towards the past the
// shift stops where the visible range would reach the end of the buffer; a time scale as
// long as the buffer gives a negative shift, which is kept.
std::int32_t shiftToPast(std::int32_t shift, std::int32_t timeScale, std::int32_t bufferLength);
std::int32_t shiftToPresent(std::int32_t shift, std::int32_t timeScale);

} // namespace tvx
