#pragma once

#include "base/Currency.h"

#include <array>
#include <cstdint>
#include <vector>

namespace tvx {

class clsGraphBuffer;
class StepTrap;

// A grid line in the picture's pixels.
struct GridLine {
    std::int32_t x1 = 0;
    std::int32_t y1 = 0;
    std::int32_t x2 = 0;
    std::int32_t y2 = 0;

    friend bool operator==(const GridLine&, const GridLine&) = default;
};

// The grid over the picture: linGraphX(0..4) divide the time axis in quarters (0 the left
// edge, 4 the right), linGraphY(0..8) the value axis in eighths (0 the top, 8 the bottom).
// Inner lines are a whole number of pixels apart; the last gap takes the remainder.
struct GraphGrid {
    std::array<GridLine, 5> linGraphX;
    std::array<GridLine, 9> linGraphY;

    friend bool operator==(const GraphGrid&, const GraphGrid&) = default;
};

GraphGrid graphGrid(std::int32_t scaleWidth, std::int32_t scaleHeight);

struct GraphPoint {
    double x = 0.0;
    double y = 0.0;

    friend bool operator==(const GraphPoint&, const GraphPoint&) = default;
};

struct GraphSegment {
    GraphPoint from;
    GraphPoint to;

    friend bool operator==(const GraphSegment&, const GraphSegment&) = default;
};

// What one redraw paints: solid rate curves and dotted average curves, experience blue
// and money red.
struct GraphCurves {
    std::vector<GraphSegment> rateE;
    std::vector<GraphSegment> rateAveE;
    std::vector<GraphSegment> rateM;
    std::vector<GraphSegment> rateAveM;

    friend bool operator==(const GraphCurves&, const GraphCurves&) = default;
};

struct GraphPlotInput {
    std::int32_t scaleWidth = 0;  // picGraph's inner size in pixels
    std::int32_t scaleHeight = 0;
    std::int32_t timeScale = 0;   // entries across the graph
    std::int32_t shift = 0;       // buffer position at the right edge
    Currency maxE;                // full scales; 0 leaves the series out
    Currency maxM;
    bool moneyScan = false;       // no money curves without it
};

// The vertical position of a rate: rounded to a whole pixel (half to even) and held
// within twice the height either way, so values far off the scale still draw a slope.
// The first point of a curve is neither rounded nor held.
double plotY(Currency rate, float pixelsPerUnit, std::int32_t height, bool firstPoint);

// Walks the visible entries, newest (the right edge) first. A rate of -1 is a gap the
// curve bridges; an entry the buffer does not hold is skipped and its error kept in trap.
GraphCurves plotGraphCurves(const clsGraphBuffer& buffer, const GraphPlotInput& input, StepTrap& trap);

} // namespace tvx
